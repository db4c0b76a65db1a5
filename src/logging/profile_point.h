#pragma once

#include <array>
#include <string_view>

#include "logging/session.h"

namespace kalmira {

// ORLA with the ice option: the thickness, in metres, of a reading with horizontal dipoles; kIceBelowTable
// where there is none. Goes into `channels` as well where thickness is what the session keeps.
float iceThicknessOf(const Session& session, const AsciiReading& reading, Channels& channels);

// A recorded reading's channels: the file's text decoded with the session's options and the TESK2 calibration
// factors given. The profile shows what stands in the file, live as well as afterwards. `text` may be any
// bytes. newStation is the caller's to set.
ProfilePoint profilePointOf(const Session& session, std::string_view text,
                            const std::array<float, 6>& factors);

}  // namespace kalmira
