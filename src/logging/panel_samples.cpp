#include <fmt/format.h>

#include <array>

#include "logging/panel.h"
#include "logging/panel_layout.h"

// The widest texts of every panel field. Numbers are as wide as the instrument's records can make them, in
// the figure that is widest where a font has figures of several widths.
namespace kalmira {
namespace {

using Texts = std::vector<std::string>;

// Four digits of the record, with its largest factor.
constexpr float kFourDigits = -8888.88F;
constexpr float kThreeDigits = -888.88F;
constexpr float kTwoDigits = -88.88F;
constexpr float kTeskTimesTen = -88888.88F;
constexpr float kMirkaWidest = -248888.88F;
constexpr float kAuxiliaryWidest = 20888.88F;

bool hasTrigger(Kind kind) {
  return kind != Kind::glaco;
}

// The dipole's name in the range line, and the ranges behind it.
Texts dipoleRanges(std::string_view range, bool wide) {
  return {wide ? fmt::format("Horizontal Dipoles   Range:{}", range) : fmt::format("Horizontal  G{}", range)};
}

Texts rangeTexts(const PanelSpace& space) {
  const bool wide = space.wideLayout;
  switch (space.kind) {
    case Kind::orla:
      if (!space.iceOption) return dipoleRanges("1000", wide);
      return {"Battery Levels", wide ? "Mode:H  R:1000" : "H G1000"};
    case Kind::teskb:
      return {wide ? "Horizontal    GnC:1000  GnI:1000" : "Horizontal G1000,1000"};
    case Kind::teskdd:
      if (wide) return {"Conductivity [mS/m]  Range:1000", "      Inphase [ppt]  Range:1000"};
      return {"Conductivity  G1000", "Inphase  G1000"};
    case Kind::tesk:
      return dipoleRanges("10000", wide);
    case Kind::vardo:
      return dipoleRanges("1000", wide);
    default:
      return {};
  }
}

Texts modeTexts(Kind kind) {
  switch (kind) {
    case Kind::vardo:
      return {"M:H40", "Rdgs:6"};
    case Kind::mirka:
    case Kind::glaco:
      return {};
    default:
      return {"Mode:V", "Mode:H", "Mode:B", "Mode:C"};
  }
}

Texts orlaValues(const PanelSpace& space, int value) {
  const bool wide = space.wideLayout;
  const auto volts = valueText("B", kTwoDigits, "Volt", wide);
  if (value == 1) return {valueText("C", kFourDigits, "mS/m", wide), volts};
  if (value == 2) return {valueText("I", kFourDigits, "ppt", wide), volts};
  if (value != 3 || !space.iceOption) return {};
  if (wide) return {"Th: N/A in mode V", "Th: Out of Range", "Th: 888.88  ft", "Th: 888.88  m"};
  return {"T:N/A in V", "T:Off Range", "T[ft]:888.88", "T[m]:888.88"};
}

Texts tesk2Values(int value, bool wide) {
  switch (value) {
    case 1:
      return {valueText("C", kFourDigits, "mS/m", wide)};
    case 2:  // a calibration shows it with the other unit
      return {valueText("I", kFourDigits, "ppt", wide), valueText("I", kFourDigits, "mS/m", wide)};
    case 3:
      return {valueText("c", kFourDigits, "mS/m", wide)};
    case 4:
      return {valueText("i", kFourDigits, "ppt", wide)};
    case 5:
      return {valueText("T", kAuxiliaryWidest, "", wide)};
    default:
      return {valueText("t", kAuxiliaryWidest, "", wide)};
  }
}

// The first and the second value of the kinds that show two.
Texts twoValues(int value, std::string first, std::string second) {
  if (value == 1) return {std::move(first)};
  return value == 2 ? Texts{std::move(second)} : Texts{};
}

Texts valueTextsOf(const PanelSpace& space, int value) {
  const bool wide = space.wideLayout;
  const auto conductivity = valueText("C", kFourDigits, "mS/m", wide);
  switch (space.kind) {
    case Kind::orla:
      return orlaValues(space, value);
    case Kind::teskb:
      return twoValues(value, conductivity, valueText("I", kThreeDigits, "ppt", wide));
    case Kind::teskdd: {
      static constexpr std::array<std::string_view, 4> kLabels{"CV", "CH", "IV", "IH"};
      Texts texts;  // alike for all four, so that they stand in columns
      if (value > 4) return texts;
      for (const auto label : kLabels) texts.push_back(valueText(label, kFourDigits, "", wide));
      return texts;
    }
    case Kind::tesk:
      return twoValues(value, valueText("C", kTeskTimesTen, "mS/m", wide),
                       valueText("I", kFourDigits, "ppt", wide));
    case Kind::vardo:
      return twoValues(value, conductivity, "Sep:40 m");
    case Kind::mirka:
      return twoValues(value, valueText("C", kMirkaWidest, "", wide), "Sep:-888.88  m");
    case Kind::glaco:
      return twoValues(value, "Th:-8.88", "IP:888.00");
    case Kind::tesk2:
      return tesk2Values(value, wide);
  }
  return {};
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
    case PanelField::gpsActivity:
      return {"/", "\\"};
    case PanelField::gpsCount:
      return {"888888"};  // a day of ten positions a second
    case PanelField::satellites:
      return {"88", "??"};
    case PanelField::fix:
      return {"NO FIX", "CODE", "DGPS", "AGPS", "RTK8"};
    default:
      return {"888.8", "N/A"};
  }
}

Texts textsOf(const PanelSpace& space, PanelField field) {
  const Kind kind = space.kind;
  switch (field) {
    case PanelField::file:  // names of wide letters alone are drawn narrower
      return {"File:AREA8888"};
    case PanelField::state:
      return {"Stand By", "Logging", "Monitor"};
    case PanelField::battery:
      return {"100%"};
    case PanelField::triggerMode:
      return {"Manual", "Wheel", "Auto"};
    case PanelField::stationLabel:
      return {"Stn:", "S  :M"};
    case PanelField::station:
      return {stationText(-88888.88)};
    case PanelField::line:  // as lines are numbered; a long name is drawn narrower
      return {"-88888.88"};
    case PanelField::repeat:
      return kind == Kind::mirka || kind == Kind::glaco ? Texts{} : Texts{"8"};
    case PanelField::mode:
      return modeTexts(kind);
    case PanelField::range:
      return rangeTexts(space);
    case PanelField::marker:
      return hasTrigger(kind) ? Texts{"M"} : Texts{};
    case PanelField::message:  // of a system's error words the usual ones
      return {"Please Wait...", hasTrigger(kind) ? "Sample 888 of 888" : "Disk full", "Input/output error"};
    case PanelField::calibration:
      return kind == Kind::tesk2 ? calibrationTexts(space.wideLayout) : Texts{};
    case PanelField::gpsNote:
      return space.gps ? Texts{} : Texts{"GPS  Input  disabled"};
    case PanelField::value1:
    case PanelField::value2:
    case PanelField::value3:
    case PanelField::value4:
    case PanelField::value5:
    case PanelField::value6:
      return valueTextsOf(space, static_cast<int>(field) - static_cast<int>(PanelField::value1) + 1);
    default:
      return space.gps ? gpsTexts(field) : Texts{};
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
