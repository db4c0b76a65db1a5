#pragma once

// Makes the compiled-in files known to Qt: a static library's do not register themselves. Once, before the
// first dialog or drawing is asked for.
void initResources();
