#include "ui/shell/program_actions.h"

#include <QApplication>
#include <QTimer>
#include <system_error>
#include <utility>

#include "platform/files.h"
#include "settings/settings_file.h"
#include "ui/screen/message_dialog.h"

namespace kalmira {
namespace {

constexpr int kTryAgain_ms = 300;

}  // namespace

MenuActions ProgramActions::actions() {
  MenuActions actions;
  const auto set = [&actions](MenuCommand command, std::function<void(QWidget*)> action) {
    actions[static_cast<std::size_t>(command)] = std::move(action);
  };
  set(MenuCommand::surveySetup, [this](QWidget* parent) { runSurveySetup(parent); });
  set(MenuCommand::loggerSetup, [this](QWidget* parent) { runLoggerSetup(parent); });
  set(MenuCommand::setGpsPort, [this](QWidget* parent) { runGpsSetup(parent); });
  set(MenuCommand::displayOptions, [this](QWidget* parent) { runDisplayOptions(parent); });
  set(MenuCommand::viewFiles, [this](QWidget* parent) { viewFiles(parent); });
  return actions;
}

SetupFrame ProgramActions::frameFor(const QWidget* parent) const {
  const auto instrument = host_.instrument();
  const auto size = parent->window()->size();
  return {.kind = instrument.kind,
          .iceOption = instrument.ice,
          .portrait = size.height() >= size.width(),
          .storageClass = host_.storageClass};
}

std::string ProgramActions::deviceOf(int comNumber) const {
  if (comNumber < 1 || comNumber > kComPorts) return {};
  return resolveComDevices(host_.assigned, host_.presentDevices())[static_cast<std::size_t>(comNumber - 1)];
}

PortLists ProgramActions::machinePorts() {
  return {.deviceLine =
              [this](int comNumber) {
                return deviceTextOf(deviceOf(comNumber), host_.presentDevices(), host_.lookAtDevice);
              },
          .assignDevices = [this](QWidget* parent) { assignDevices(parent); }};
}

void ProgramActions::take(const std::optional<Settings>& changed) {
  if (!changed) return;
  host_.settings() = *changed;
  host_.saveSettings(*changed);
}

void ProgramActions::runLoggerSetup(QWidget* parent) {
  take(runLoggerSetupDialog(parent, frameFor(parent), host_.settings(), machinePorts()));
}

void ProgramActions::runSurveySetup(QWidget* parent) {
  take(runSurveySetupDialog(parent, frameFor(parent), host_.settings(), [this](QWidget* above) { editNotes(above); }));
}

// What a new survey will begin with. A file that is broken is told, and what can be read of it is shown.
void ProgramActions::editNotes(QWidget* parent) {
  const auto instrument = host_.instrument();
  const auto path = lastNotesPath(
      {.kind = instrument.kind, .iceOption = instrument.ice, .storageClass = host_.storageClass, .root = host_.root});
  const auto tell = [parent](const std::string& problem) {
    if (!problem.empty()) tellMessage(parent, {.title = "WARNING", .text = problem, .icon = Icon::exclamation});
  };
  std::string problem;
  const auto last = readNotes(path, problem);
  tell(problem);
  const auto notes = runSurveyNotesDialog(parent, last.value_or(SurveyNotes{}));
  if (!notes) return;
  (void)makeFolders(path.parent_path());  // a folder that cannot be made shows when the file cannot be written
  tell(writeNotes(path, askedNotes(*notes)));
}

void ProgramActions::runDisplayOptions(QWidget* parent) {
  take(runDisplayOptionsDialog(parent, frameFor(parent), host_.theme(), host_.settings()));
}

std::optional<Settings> ProgramActions::runSessionDisplayOptions(QWidget* parent, const Settings& settings) {
  auto frame = frameFor(parent);
  frame.iceOption = frame.iceOption && settings.iceDisplay == 1;
  return runDisplayOptionsDialog(parent, frame, host_.theme(), settings);
}

void ProgramActions::runGpsSetup(QWidget* parent) {
  const ReceiverAccess access{.deviceOf = [this](int comNumber) { return deviceOf(comNumber); },
                              .portFactory = host_.portFactory,
                              .clock = &host_.clock};
  const auto outcome = runGpsPortSetupDialog(parent, host_.settings(), machinePorts(), access);
  switch (outcome.how) {
    case GpsSetupOutcome::How::cancelled: return;
    case GpsSetupOutcome::How::saved: return take(outcome.settings);
    case GpsSetupOutcome::How::monitor:
      // Tried out, not made permanent: the file keeps what it holds until something is saved.
      host_.settings() = outcome.settings;
      if (outcome.settings.gpsInput == 1) openMonitor(parent);
      return;
  }
}

void ProgramActions::assignDevices(QWidget* parent) {
  const auto changed = runDevicesDialog(parent, {.com = host_.assigned, .mirror = host_.mirror},
                                        {.present = host_.presentDevices, .look = host_.lookAtDevice});
  if (!changed) return;
  host_.rememberDevices(*changed);
  host_.assigned = changed->com;
  host_.mirror = changed->mirror;
}

void ProgramActions::openMonitor(QWidget* parent) {
  auto* monitor = new MonitorGPSWnd({.settings = host_.settings(),
                                     .clock = host_.clock,
                                     .deviceOf = [this](int comNumber) { return deviceOf(comNumber); },
                                     .portFactory = host_.portFactory,
                                     .onLeft = [this] { uncover(); }},
                                    host_.theme(), parent);
  covering_ = monitor;
  if (monitor->open()) {
    host_.cover(monitor);
  } else {
    monitor->deleteLater();
  }
}

void ProgramActions::viewFiles(QWidget* parent) { openViewer(parent); }

ViewFilesWnd& ProgramActions::openViewer(QWidget* parent) {
  auto* viewer = new ViewFilesWnd(
      {.place = {.kind = host_.instrument().kind, .storageClass = host_.storageClass, .root = host_.root},
       .extract = {.teskRangeTimes10 = host_.teskRangeTimes10},
       .settingsFor = [this](Kind kind, bool ice) { return settingsFor(kind, ice); },
       .takeSettings = [this](Kind kind, bool ice, const Settings& changed) { takeSettings(kind, ice, changed); },
       .confirmedScales = confirmed_scales_,
       .onLeft = [this] { uncover(); },
       .concern = host_.concern},
      host_.theme(), parent);
  covering_ = viewer;
  viewer->open();
  host_.cover(viewer);
  return *viewer;
}

void ProgramActions::showFile(QWidget* parent, const std::filesystem::path& file) {
  const bool covered = covering_ != nullptr && covering_->isVisible();
  auto* viewer = covered ? dynamic_cast<ViewFilesWnd*>(covering_.data()) : nullptr;
  const bool popup = QApplication::activePopupWidget() != nullptr;
  if (QApplication::activeModalWidget() != nullptr || popup || (covered && viewer == nullptr)) {
    QTimer::singleShot(kTryAgain_ms, parent, [this, parent, file] { showFile(parent, file); });
    return;
  }
  const bool fresh = viewer == nullptr;
  if (fresh) viewer = &openViewer(parent);
  const QPointer<ViewFilesWnd> there(viewer);
  const bool opened = viewer->openFile(file);
  if (there == nullptr) return;
  std::error_code ignored;
  const auto logged = host_.loggedFile();
  if (opened && !logged.empty() && std::filesystem::equivalent(file, logged, ignored)) viewer->showEnd();
  if (!opened && fresh) viewer->leave();
}

void ProgramActions::showFonts(QWidget* parent) {
  auto* fonts = new FontWnd([this] { uncover(); }, host_.theme(), parent);
  covering_ = fonts;
  fonts->open();
  host_.cover(fonts);
}

void ProgramActions::uncover() {
  host_.cover(nullptr);
  covering_->deleteLater();
}

bool ProgramActions::isInUse(Kind kind, bool ice) const {
  const auto used = host_.instrument();
  return used.kind == kind && used.ice == ice;
}

// Another instrument's file is shown as that instrument's own settings have it, where there are any. Nothing is made
// for an instrument that is only looked at.
Settings ProgramActions::settingsFor(Kind kind, bool ice) const {
  if (isInUse(kind, ice)) return host_.settings();
  Settings settings;
  const auto file =
      settingsFileOf({.kind = kind, .iceOption = ice, .storageClass = host_.storageClass, .root = host_.root});
  if (const auto text = readSmallFile(file)) parseSettings(*text, kind, ice, settings);
  return settings;
}

// Another instrument's scales hold as long as its file is shown.
void ProgramActions::takeSettings(Kind kind, bool ice, const Settings& changed) {
  if (!isInUse(kind, ice)) return;
  host_.settings() = changed;
  host_.saveSettings(changed);
}

}  // namespace kalmira
