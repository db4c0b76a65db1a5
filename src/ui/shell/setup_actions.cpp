#include "ui/shell/setup_actions.h"

#include <utility>

#include "ui/setup/display_options_dialog.h"
#include "ui/setup/logger_setup_dialog.h"
#include "ui/setup/survey_setup_dialog.h"
#include "ui/shell/devices_dialog.h"

namespace kalmira {

MenuActions SetupActions::menuActions() {
  MenuActions actions;
  const auto set = [&actions](MenuCommand command, std::function<void(QWidget*)> action) {
    actions[static_cast<std::size_t>(command)] = std::move(action);
  };
  set(MenuCommand::surveySetup, [this](QWidget* parent) { runSurveySetup(parent); });
  set(MenuCommand::loggerSetup, [this](QWidget* parent) { runLoggerSetup(parent); });
  set(MenuCommand::setGpsPort, [this](QWidget* parent) { runGpsSetup(parent); });
  set(MenuCommand::displayOptions, [this](QWidget* parent) { runDisplayOptions(parent); });
  return actions;
}

SetupFrame SetupActions::frameFor(const QWidget* parent) const {
  const auto instrument = host_.instrument();
  const auto size = parent->window()->size();
  return {.kind = instrument.kind,
          .iceOption = instrument.ice,
          .portrait = size.height() >= size.width(),
          .storageClass = host_.storageClass};
}

std::string SetupActions::deviceOf(int comNumber) const {
  if (comNumber < 1 || comNumber > kComPorts) return {};
  return resolveComDevices(host_.assigned, host_.presentDevices())[static_cast<std::size_t>(comNumber - 1)];
}

PortLists SetupActions::portLists() {
  return {.deviceLine =
              [this](int comNumber) {
                auto [text, trouble] =
                    deviceText(deviceOf(comNumber), host_.presentDevices(), host_.lookAtDevice);
                return DeviceLine{.text = std::move(text), .trouble = trouble};
              },
          .assignDevices = [this](QWidget* parent) { assignDevices(parent); }};
}

void SetupActions::take(const std::optional<Settings>& changed) {
  if (!changed) return;
  host_.settings() = *changed;
  host_.saveSettings(*changed);
}

void SetupActions::runLoggerSetup(QWidget* parent) {
  take(runLoggerSetupDialog(parent, frameFor(parent), host_.settings(), portLists()));
}

void SetupActions::runSurveySetup(QWidget* parent) {
  take(runSurveySetupDialog(parent, frameFor(parent), host_.settings()));
}

void SetupActions::runDisplayOptions(QWidget* parent) {
  take(runDisplayOptionsDialog(parent, frameFor(parent), host_.theme(), host_.settings()));
}

std::optional<Settings> SetupActions::runSessionDisplayOptions(QWidget* parent, const Settings& settings) {
  auto frame = frameFor(parent);
  frame.iceOption = frame.iceOption && settings.iceDisplay == 1;
  return runDisplayOptionsDialog(parent, frame, host_.theme(), settings);
}

void SetupActions::runGpsSetup(QWidget* parent) {
  const ReceiverAccess access{.deviceOf = [this](int comNumber) { return deviceOf(comNumber); },
                              .portFactory = host_.portFactory,
                              .clock = &host_.clock};
  const auto outcome = runGpsPortSetupDialog(parent, host_.settings(), portLists(), access);
  switch (outcome.how) {
    case GpsSetupOutcome::How::cancelled:
      return;
    case GpsSetupOutcome::How::saved:
      return take(outcome.settings);
    case GpsSetupOutcome::How::monitor:
      // Tried out, not made permanent: the file keeps what it holds until something is saved.
      host_.settings() = outcome.settings;
      if (outcome.settings.gpsInput == 1) openMonitor(parent);
      return;
  }
}

void SetupActions::assignDevices(QWidget* parent) {
  const auto changed =
      runDevicesDialog(parent, host_.assigned, {.present = host_.presentDevices, .look = host_.lookAtDevice});
  if (!changed) return;
  host_.rememberDevices(*changed);
  host_.assigned = *changed;
}

void SetupActions::openMonitor(QWidget* parent) {
  monitor_ = new MonitorGPSWnd({.settings = host_.settings(),
                                .clock = host_.clock,
                                .deviceOf = [this](int comNumber) { return deviceOf(comNumber); },
                                .portFactory = host_.portFactory,
                                .onLeft =
                                    [this] {
                                      host_.cover(nullptr);
                                      monitor_->deleteLater();
                                    }},
                               host_.theme(), parent);
  if (monitor_->open()) {
    host_.cover(monitor_);
  } else {
    monitor_->deleteLater();
  }
}

}  // namespace kalmira
