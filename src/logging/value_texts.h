#pragma once

#include <string>
#include <utility>
#include <vector>

#include "instruments/decode.h"
#include "logging/session.h"

namespace kalmira {

// What the panel shows of one decoded reading of kinds 0 to 5.
struct ShownReading {
  AsciiReading reading;
  float thickness = kIceBelowTable;  // ORLA with the ice option: metres, below 0 when there is none
};

using PanelTexts = std::vector<std::pair<PanelField, std::string>>;

// The mode field; empty for a kind that has none.
std::string modeText(const Session& session);
// Value and range fields, each of them with its text; "" clears a field.
PanelTexts valueTexts(const Session& session, const ShownReading& shown);

}  // namespace kalmira
