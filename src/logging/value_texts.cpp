#include "logging/value_texts.h"

#include <fmt/format.h>

#include <array>

#include "logging/panel.h"

namespace kalmira {
namespace {

constexpr double kMetresPerFoot = 0.3048;

std::string_view dipoleWord(char orientation) {
  return orientation == 'V' ? "Vertical" : "Horizontal";
}

std::string dipoleRangeText(const AsciiReading& reading, bool wide) {
  return wide ? fmt::format("{} Dipoles   Range:{:<4}", dipoleWord(reading.orientation), reading.range)
              : fmt::format("{}  G{:<4}", dipoleWord(reading.orientation), reading.range);
}

std::string thicknessText(const ShownReading& shown, bool feet, bool wide) {
  if (shown.reading.orientation == 'V') return wide ? "Th: N/A in mode V" : "T:N/A in V";
  if (shown.thickness < 0.0F) return wide ? "T: Out of Range" : "T:Off Range";
  const double metres = static_cast<double>(shown.thickness);
  if (feet)
    return fmt::format(fmt::runtime(wide ? "Th: {:<8.2f}ft" : "T[ft]:{:<8.2f}"), metres / kMetresPerFoot);
  return fmt::format(fmt::runtime(wide ? "Th: {:<8.2f}m" : "T[m]:{:<8.2f}"), metres);
}

PanelTexts orlaTexts(const Session& session, const ShownReading& shown) {
  const auto& reading = shown.reading;
  const bool wide = session.setup.wideLayout;
  if (reading.odd != 0) {
    return {{PanelField::value1, valueText("B", reading.conductivity, "Volt", wide)},
            {PanelField::value2, valueText("B", reading.inphase, "Volt", wide)},
            {PanelField::value3, ""},
            {PanelField::range, "Battery Levels"}};
  }
  PanelTexts texts;
  texts.emplace_back(PanelField::value1,
                     orlaAltInphase(session) ? "" : valueText("C", reading.conductivity, "mS/m", wide));
  texts.emplace_back(PanelField::value2, valueText("I", reading.inphase, "ppt", wide));
  if (!session.iceOption) {
    texts.emplace_back(PanelField::range, dipoleRangeText(reading, wide));
    return texts;
  }
  texts.emplace_back(PanelField::value3, thicknessText(shown, session.settings.lengthUnits == 1, wide));
  texts.emplace_back(PanelField::range,
                     wide ? fmt::format("Mode:{}  R:{:<4}", reading.orientation, reading.range)
                          : fmt::format("{} G{:<4}", reading.orientation, reading.range));
  return texts;
}

PanelTexts teskbTexts(const AsciiReading& reading, bool wide) {
  const auto word = dipoleWord(reading.orientation);
  return {{PanelField::value1, valueText("C", reading.conductivity, "mS/m", wide)},
          {PanelField::value2, valueText("I", reading.inphase, "ppt", wide)},
          {PanelField::range,
           wide ? fmt::format("{}    GnC:{:<4}  GnI:{:<4}", word, reading.range, reading.secondRange)
                : fmt::format("{} G{:<4},{:<4}", word, reading.range, reading.secondRange)}};
}

PanelTexts teskddTexts(const AsciiReading& reading, bool wide) {
  const bool conductivity = reading.recordType == 2;
  const std::string range =
      conductivity
          ? fmt::format(fmt::runtime(wide ? "Conductivity [mS/m]  Range:{:<4}" : "Conductivity  G{:<4}"),
                        reading.range)
          : fmt::format(fmt::runtime(wide ? "      Inphase [ppt]  Range:{:<4}" : "Inphase  G{:<4}"),
                        reading.range);
  return {{conductivity ? PanelField::value1 : PanelField::value3,
           valueText(conductivity ? "CV" : "IV", reading.conductivity, "", wide)},
          {conductivity ? PanelField::value2 : PanelField::value4,
           valueText(conductivity ? "CH" : "IH", reading.inphase, "", wide)},
          {PanelField::range, range}};
}

PanelTexts teskTexts(const AsciiReading& reading, bool wide) {
  if (reading.recordType == 2) {
    return {{PanelField::value1, valueText("C", reading.conductivity, "mS/m", wide)},
            {PanelField::range, dipoleRangeText(reading, wide)}};
  }
  return {{PanelField::value2, valueText("I", reading.inphase, "ppt", wide)},
          {PanelField::range, dipoleRangeText(reading, wide)}};
}

}  // namespace

std::string modeText(const Session& session) {
  const auto& settings = session.settings;
  switch (session.instrument.kind) {
    case Kind::orla:
    case Kind::teskb:
    case Kind::tesk:
      return dipoleModeText(settings);
    case Kind::teskdd: {
      static constexpr std::string_view kComponents = "BIC";
      return fmt::format("Mode:{}",
                         kComponents[static_cast<std::size_t>(indexOr(settings.surveyListA, 3, 0))]);
    }
    case Kind::vardo: {
      static constexpr std::array<std::string_view, 6> kCoils{"V10", "V20", "V40", "H10", "H20", "H40"};
      const int setting = indexOr(settings.surveyListB, 6, 0);
      if (session.surveyMode() == kModeManual) return fmt::format("Rdgs:{}", setting + 1);
      return fmt::format("M:{}", kCoils[static_cast<std::size_t>(setting)]);
    }
    default:
      return {};
  }
}

PanelTexts valueTexts(const Session& session, const ShownReading& shown) {
  const auto& reading = shown.reading;
  const bool wide = session.setup.wideLayout;
  switch (session.instrument.kind) {
    case Kind::orla:
      return orlaTexts(session, shown);
    case Kind::teskb:
      return teskbTexts(reading, wide);
    case Kind::teskdd:
      return teskddTexts(reading, wide);
    case Kind::tesk:
      return teskTexts(reading, wide);
    case Kind::vardo:
      return {{PanelField::value1, valueText("C", reading.conductivity, "mS/m", wide)},
              {PanelField::value2, fmt::format("Sep:{:2.0f} m", static_cast<double>(reading.inphase))},
              {PanelField::range, dipoleRangeText(reading, wide)}};
    case Kind::mirka:
      return {{PanelField::value1, valueText("C", reading.conductivity, "", wide)},
              {PanelField::value2, fmt::format("Sep:{:<8.2f} m", static_cast<double>(reading.inphase))}};
    default:
      return {};
  }
}

}  // namespace kalmira
