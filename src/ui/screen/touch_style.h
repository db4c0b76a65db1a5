#pragma once

class QStyle;

namespace kalmira {

// The desktop's style, with check boxes and the arrows of lists of touch height. For QApplication::setStyle, which
// takes it over.
QStyle* makeTouchStyle();

}  // namespace kalmira
