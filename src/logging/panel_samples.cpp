#include <fmt/format.h>

#include <algorithm>

#include "logging/panel.h"
#include "logging/panel_layout.h"

// The widest texts of every panel field.
namespace kalmira {
namespace {

using Texts = std::vector<std::string>;

bool isValue(PanelField field) { return field >= PanelField::value1 && field <= PanelField::value4; }

// Numbers of lists that a setting may hold, and one more.
constexpr int kListValues = 7;

void addOnce(Texts& texts, const std::string& text) {
  if (!text.empty() && std::find(texts.begin(), texts.end(), text) == texts.end()) texts.push_back(text);
}

// The texts that the instrument gives its widest readings, in whichever state the panel may show them.
Texts readingTexts(const PanelSpace& space, PanelField field) {
  const auto& instrument = instrumentOf(space.kind);
  Texts texts;
  for (const bool measuring : {false, true}) {
    if (measuring && !instrument.calibrated) continue;
    for (const bool feet : {false, true}) {
      const PanelStyle style{
          .wide = space.wideLayout, .iceOption = space.iceOption, .feet = feet, .measuring = measuring};
      for (const auto& reading : instrument.widestReadings) {
        for (const auto& [shown, text] : instrument.panelTexts(reading, style)) {
          if (shown == field || (instrument.valuesAlike && isValue(shown) && isValue(field))) addOnce(texts, text);
        }
      }
    }
  }
  return texts;
}

Texts modeTexts(const Instrument& instrument) {
  Texts texts;
  if (instrument.modeText == nullptr) return texts;
  for (const int mode : {kModeAuto, kModeWheel, kModeManual}) {
    for (int choice = 0; choice < kListValues; ++choice) addOnce(texts, instrument.modeText(mode, choice, choice));
  }
  return texts;
}

Texts calibrationTexts(bool wide) {
  if (wide) {
    return {"Rotate to Horiz. Mode within 60 s",     "Preparing for Horizontal Calibration",
            "Calibration Completed - Wait for Beep", "Vert. Mode Failed - Wait for Beep",
            "Hor. Mode Failed - Wait for Beep",      "Hor. Mode Not Detected - Wait for Beep"};
  }
  return {"Rotate to Horizontal Mode within 60 seconds", "Calibration Completed - Wait for Beep",
          "Horizontal Mode Failed - Wait for Beep", "Horizontal Mode Not Detected - Wait for Beep"};
}

Texts gpsTexts(PanelField field) {
  switch (field) {
    case PanelField::gpsActivity: return {"/", "\\"};
    case PanelField::gpsCount: return {"888888"};  // a day of ten positions a second
    case PanelField::satellites: return {"88", "??"};
    case PanelField::fix: return {"NO FIX", "CODE", "DGPS", "AGPS", "RTK8"};
    default: return {"888.8", "N/A"};
  }
}

Texts textsOf(const PanelSpace& space, PanelField field) {
  const auto& instrument = instrumentOf(space.kind);
  switch (field) {
    case PanelField::file:  // names of wide letters alone are drawn narrower
      return {"File:AREA8888"};
    case PanelField::state: return {"Stand By", "Logging", "Monitor"};
    case PanelField::battery: return {"100%"};
    case PanelField::triggerMode: return {"Manual", "Wheel", "Auto"};
    case PanelField::stationLabel: return {"Stn:", "S  :M"};
    case PanelField::station: return {stationText(-88888.88)};
    case PanelField::line:  // as lines are numbered; a long name is drawn narrower
      return {"-88888.88"};
    case PanelField::repeat: return instrument.readingsAtStation == nullptr ? Texts{} : Texts{"8"};
    case PanelField::mode: return modeTexts(instrument);
    case PanelField::range: return readingTexts(space, field);
    case PanelField::marker: return instrument.hasTrigger ? Texts{"M"} : Texts{};
    case PanelField::message:  // of a system's error words the usual ones
      return {"Please Wait...", instrument.hasTrigger ? "Sample 888 of 888" : "Disk full", "Input/output error"};
    case PanelField::calibration: return instrument.calibrated ? calibrationTexts(space.wideLayout) : Texts{};
    case PanelField::gpsNote: return space.gps ? Texts{} : Texts{"GPS  Input  disabled"};
    case PanelField::value1:
    case PanelField::value2:
    case PanelField::value3:
    case PanelField::value4:
    case PanelField::value5:
    case PanelField::value6: return readingTexts(space, field);
    default: return space.gps ? gpsTexts(field) : Texts{};
  }
}

}  // namespace

std::vector<std::string> widestTexts(const PanelSpace& space, PanelField field) {
  auto texts = textsOf(space, field);
  // Blanks at the end need no room.
  for (auto& text : texts) text.resize(text.find_last_not_of(' ') + 1);
  return texts;
}

}  // namespace kalmira
