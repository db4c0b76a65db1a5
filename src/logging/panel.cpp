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
    case kModeAuto: return "Auto";
    case kModeWheel: return session.instrument.hasTrigger ? "Wheel" : "Manual";
    default: return "Manual";
  }
}

// A reading is asked for at the station, by those that wait for a trigger.
bool manualStations(const Session& session) {
  return session.triggerMode == kModeManual && session.instrument.hasTrigger;
}

}  // namespace

void showFile(Session& session) {
  if (!session.file.isOpen()) return session.view.show(PanelField::file, "");
  const auto name = firstCharacters(baseNameOf(session.file.path()), kShownFileName);
  session.view.show(PanelField::file, "File:" + name);
}

void showState(Session& session) { session.view.show(PanelField::state, stateWord(session.loggingState)); }

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

void showMode(Session& session) {
  const auto& settings = session.settings;
  const auto modeText = session.instrument.modeText;
  if (modeText == nullptr) return;
  session.view.show(PanelField::mode, modeText(session.surveyMode(), settings.surveyListA, settings.surveyListB));
}

void showValues(Session& session, const Reading& reading, bool measuring) {
  const PanelStyle style{.wide = session.setup.wideLayout || session.setup.units,
                         .iceOption = session.iceOption,
                         .feet = session.settings.lengthUnits == 1,
                         .listA = session.settings.surveyListA,
                         .measuring = measuring};
  for (const auto& [field, text] : session.instrument.panelTexts(reading, style)) {
    session.view.show(field, text);
  }
}

}  // namespace kalmira
