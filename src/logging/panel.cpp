#include "logging/panel.h"

#include <fmt/format.h>

#include "platform/text.h"

namespace kalmira {
namespace {

constexpr std::size_t kShownFileName = 8;

std::string_view stateWord(int loggingState) {
  if (loggingState == kNoFile) return "Monitor";
  return loggingState == kLogging ? "Logging" : "Stand By";
}

std::string_view triggerModeWord(const Session& session) {
  switch (session.triggerMode) {
    case kModeAuto:
      return "Auto";
    case kModeWheel:
      return session.instrument.kind == Kind::glaco ? "Manual" : "Wheel";
    default:
      return "Manual";
  }
}

// A reading is asked for at the station, but a GLACO never waits for a trigger.
bool manualStations(const Session& session) {
  return session.triggerMode == kModeManual && session.instrument.kind != Kind::glaco;
}

}  // namespace

void showFile(Session& session) {
  if (!session.file.isOpen()) return session.view.show(PanelField::file, "");
  const auto name = firstCharacters(baseNameOf(session.file.path()), kShownFileName);
  session.view.show(PanelField::file, "File:" + name);
}

void showState(Session& session) {
  session.view.show(PanelField::state, stateWord(session.loggingState));
}

void showLineAndStation(Session& session) {
  session.view.show(PanelField::line, session.settings.lineName);
  session.view.show(PanelField::station, stationText(session.station));
}

void showTriggerMode(Session& session) {
  session.view.show(PanelField::triggerMode, triggerModeWord(session));
  session.view.show(PanelField::stationLabel, manualStations(session) ? "S  :M" : "Stn:");
}

void paintPanel(Session& session) {
  showFile(session);
  showState(session);
  showBattery(session);
  showTriggerMode(session);
  showLineAndStation(session);
  session.view.show(PanelField::gpsNote, session.gpsEnabled() ? "" : "GPS  Input  disabled");
}

std::string valueText(std::string_view label, float value, std::string_view unit, bool wide) {
  return fmt::format("{}:{:<8.2f}{}", label, static_cast<double>(value), wide ? unit : std::string_view{});
}

std::string dipoleModeText(const Settings& settings) {
  static constexpr std::string_view kModes = "VHB";
  return fmt::format("Mode:{}", kModes[static_cast<std::size_t>(indexOr(settings.surveyListB, 3, 0))]);
}

}  // namespace kalmira
