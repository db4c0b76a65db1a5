#include "ui/shots/shots.h"

#include <fmt/format.h>

#include <QApplication>
#include <QDialog>
#include <QElapsedTimer>
#include <QMenu>
#include <QPainter>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <atomic>
#include <cctype>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <memory>
#include <string>

#include "link/port.h"
#include "logging/calibration.h"
#include "logging/commands.h"
#include "logging/keys.h"
#include "sim/survey.h"
#include "ui/gps/monitor_window.h"
#include "ui/screen/theme.h"
#include "ui/session/logging_window.h"
#include "ui/shell/chooser_dialog.h"
#include "ui/shell/main_window.h"
#include "ui/shell/program_actions.h"
#include "ui/shots/simulated_port.h"
#include "ui/viewer/font_window.h"
#include "ui/viewer/view_files_window.h"

namespace kalmira::shots {
namespace {

// By night two will do: they differ in colours alone.
constexpr std::array kNightKinds{Kind::orla, Kind::tesk2};

constexpr std::uint64_t kRecords = 260;  // more than a chart is wide
constexpr std::uint64_t kFirstRecords = 40;
constexpr int kSettling_ms = 150;
constexpr int kSignsSettling_ms = 700;  // until the session is looked after again, and a moment
constexpr int kPatience_ms = 10000;

// Two devices, as an adapter and a receiver are named.
const std::vector<SerialDevice> kDevices{
    {.path = "/dev/ttyACM0", .stablePath = {}, .description = "GPS receiver"},
    {.path = "/dev/ttyUSB0", .stablePath = {}, .description = "USB serial adapter"}};

struct Shot {
  RememberedKind instrument;
  QSize size;
  bool night = false;
  bool largeText = false;
};

// Or the pictures would show flashes in place of tones.
class HeardByNobody final : public SoundDevice {
 public:
  bool play(std::span<const std::int16_t>) override { return true; }
};

std::string nameOf(const Shot& shot, std::string_view what) {
  std::string kind(instrumentOf(shot.instrument.kind).name);
  std::transform(kind.begin(), kind.end(), kind.begin(),
                 [](char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); });
  return fmt::format("{}{}-{}{}{}.png", kind, shot.instrument.ice ? "-ice" : "", what, shot.night ? "-night" : "",
                     shot.largeText ? "-large-text" : "");
}

// Settings that show much of a kind: GPS on, readings as fast as the instrument sends them, and scales that hold the
// simulated ground.
Settings surveySettings(RememberedKind instrument) {
  Settings settings;
  settings.audio = 0;
  settings.gpsInput = 1;
  settings.readingsInterval = static_cast<float>(instrumentOf(instrument.kind).recordPeriodMs / 1000.0);
  settings.traceWidth.fill(2);
  settings.lineName = "14 N";
  settings.iceDisplay = 1;
  settings.iceQuantity = 1;
  settings.iceMinimum = 0.0F;
  const auto& row = instrumentOf(instrument.kind);
  settings.surveyListA = row.listA(kModeAuto).usual;
  const bool ice = row.firstAxisIsThickness;
  settings.conductivityMaximum = ice ? 8.0F : 60.0F;
  settings.inphaseMinimum = ice ? 0.0F : -5.0F;
  settings.inphaseMaximum = ice ? 500.0F : 5.0F;
  return settings;
}

// One instrument's program on one size of screen, without devices.
class Stage {
 public:
  Stage(const Shot& shot, const std::filesystem::path& folder)
      : shot_(shot),
        folder_(folder),
        settings_(surveySettings(shot.instrument)),
        plan_(sim::naturalPlan(shot.instrument.kind, 12)),
        actions_(hostOfActions()),
        window_(windowHost()) {
    plan_.sentencePeriod_s = 0.2;
    window_.resize(shot.size);
    window_.show();
  }

  void takeAll();
  const std::string& problem() const { return problem_; }

 private:
  MainWindowHost windowHost();
  LoggingHost hostOfLogging();
  ActionsHost hostOfActions();
  void save(std::string_view what) { save(window_.grab(), what); }
  void save(const QPixmap& picture, std::string_view what);
  void saveWith(std::string_view what, const QWidget& above);
  // Takes a picture of the dialog or menu that `open` opens, and closes it.
  void runAndSave(const std::function<void()>& open, std::string_view what);
  void runCodeAndSave(int code, std::string_view what) {
    runAndSave([this, code] { window_.logging().runCode(code); }, what);
  }
  void takeSetup();
  void takeMonitor();
  void takeViewer(const std::filesystem::path& file);
  void settle(int milliseconds = kSettling_ms);
  bool waitFor(const std::function<bool()>& happened);
  void takeQuestion();
  void takeSigns();
  void takeCalibration();

  Shot shot_;
  std::filesystem::path folder_;
  QTemporaryDir root_;
  SurveyClock clock_;
  LocalDisk disk_;
  Settings settings_;
  sim::SurveyPlan plan_;
  Allowance allowance_;
  std::string problem_;
  ComAssignments assigned_;
  std::filesystem::path mirror_;
  ProgramActions actions_;
  MainWindow window_;
};

LoggingHost Stage::hostOfLogging() {
  return {
      .setup = {.kind = shot_.instrument.kind, .iceChosen = shot_.instrument.ice, .root = root_.path().toStdString()},
      .settings = settings_,
      .clock = clock_,
      .disk = disk_,
      .deviceOf = [](int com) { return std::string(com == 1 ? "instrument" : "gps"); },
      .portFactory =
          [this] {
            return std::make_unique<SimulatedPort>(plan_, allowance_, shot_.instrument.ice ? iceRecordAt : nullptr);
          },
      .saveSettings = [](const Settings&) { return std::string{}; },
      .takeSettingsProblem = {},
      .onLeft = {},
      .endProgram = {},
      .sound = [] { return std::make_unique<HeardByNobody>(); },
      .displayOptions = [](QWidget*, const Settings&) { return std::optional<Settings>(); }};
}

MainWindowHost Stage::windowHost() {
  return {.clock = clock_,
          .instrument = shot_.instrument,
          .night = shot_.night,
          .open = [this](RememberedKind) { return hostOfLogging(); },
          .sessionBegins = [] {},
          .rememberInstrument = [](RememberedKind) {},
          .rememberNight = [](bool) {},
          .endProgram = [] {},
          .actions = actions_.actions(),
          .showFonts = [](QWidget*) {}};
}

ActionsHost Stage::hostOfActions() {
  return {.clock = clock_,
          .storageClass = kDefaultStorageClass,
          .instrument = [this] { return shot_.instrument; },
          .settings = [this]() -> Settings& { return settings_; },
          .saveSettings = [](const Settings&) {},
          .theme = [this]() -> const Theme& { return shot_.night ? nightTheme() : dayTheme(); },
          .assigned = assigned_,
          .mirror = mirror_,
          .presentDevices = [] { return kDevices; },
          .lookAtDevice = [](const std::string&) { return std::nullopt; },
          .rememberDevices = [](const DeviceSetup&) {},
          .portFactory = [this] { return std::make_unique<SimulatedPort>(plan_, allowance_); },
          .cover = [this](QWidget* window) { window_.cover(window); }};
}

bool Stage::waitFor(const std::function<bool()>& happened) {
  QElapsedTimer timer;
  timer.start();
  while (!happened() && timer.elapsed() < kPatience_ms) {
    QApplication::processEvents(QEventLoop::AllEvents, 20);
  }
  return happened();
}

void Stage::save(const QPixmap& picture, std::string_view what) {
  const auto path = folder_ / nameOf(shot_, what);
  if (!picture.save(qtText(path.string()))) problem_ = "cannot write " + path.string();
}

// The window with what stands above it.
void Stage::saveWith(std::string_view what, const QWidget& above) {
  auto picture = window_.grab();
  QPainter painter(&picture);
  const auto place = above.mapToGlobal(QPoint(0, 0)) - window_.mapToGlobal(QPoint(0, 0));
  painter.drawPixmap(place, const_cast<QWidget&>(above).grab());
  painter.setPen(QPen(Qt::gray, 1));
  painter.drawRect(QRect(place, above.size()));
  painter.end();
  save(picture, what);
}

void Stage::runAndSave(const std::function<void()>& open, std::string_view what) {
  QTimer watch;
  QObject::connect(&watch, &QTimer::timeout, [&] {
    if (auto* popup = QApplication::activePopupWidget()) {
      saveWith(what, *popup);
      popup->close();
    } else if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
      saveWith(what, *dialog);
      dialog->reject();
    }
  });
  watch.start(60);
  open();
}

void Stage::takeSetup() {
  const auto press = [this](MenuCommand command, std::string_view what) {
    runAndSave([&] { actions_.actions()[static_cast<std::size_t>(command)](&window_); }, what);
  };
  press(MenuCommand::surveySetup, "survey-setup");
  const SurveyNotes notes{.project = "Peat cover", .site = "Moor, north", .operatorName = "N. N.", .antennaUp = 1.8};
  runAndSave([&] { runSurveyNotesDialog(&window_, notes); }, "survey-notes");
  press(MenuCommand::loggerSetup, "logger-setup");
  press(MenuCommand::setGpsPort, "gps-port-setup");
  press(MenuCommand::displayOptions, "display-options");
  const DeviceSight sight{.present = [] { return kDevices; }, .look = [](const std::string&) { return std::nullopt; }};
  runAndSave([&] { runDevicesDialog(&window_, {.com = assigned_}, sight); }, "devices");
}

void Stage::takeMonitor() {
  MonitorGPSWnd monitor({.settings = settings_,
                         .clock = clock_,
                         .deviceOf = [](int) { return std::string("gps"); },
                         .portFactory = [this] { return std::make_unique<SimulatedPort>(plan_, allowance_); },
                         .onLeft = {}},
                        shot_.night ? nightTheme() : dayTheme(), &window_);
  allowance_.sentences = 9;
  monitor.open();
  settle();
  save("gps-monitor");
  monitor.leave();
}

void Stage::settle(int milliseconds) {
  QElapsedTimer settling;
  settling.start();
  waitFor([&] { return settling.elapsed() > milliseconds; });
}

void Stage::takeQuestion() {
  const Message lost{.title = "No Connection/Instrument OFF",
                     .text = "Fix the problem and\r\npress YES to try.\r\nPress NO to exit Logging Mode.\r\n",
                     .icon = Icon::exclamation};
  auto& view = window_.logging().session()->view;
  runAndSave([&] { view.ask(Question::linkLost, lost); }, "link-lost");
}

// Each sign that all is not well.
void Stage::takeSigns() {
  constexpr std::uint64_t kLittleRoom = 300000;  // bytes
  auto& session = *window_.logging().session();
  const auto settings = settings_;
  settings_.conductivityMaximum = settings_.inphaseMaximum = settings_.conductivityMinimum + 1;
  session.view.redrawProfile();
  save("8-off-scale");
  window_.logging().runCode(kFit);
  save("8-fitted");
  settings_ = settings;
  session.view.redrawProfile();
  session.saving.freeBytes = kLittleRoom;
  settle(kSignsSettling_ms);
  save("8-disk-nearly-full");
  session.saving.freeBytes.reset();
  constexpr int kSilence_ms = 4300;
  clock_.advance(kSilence_ms);
  allowance_.sentences += 2;
  settle(kSignsSettling_ms);
  save("8-no-data");
  takeQuestion();
  clock_.advance(kSilence_ms);
  session.link.lastRecordTick = clock_.tick();
  settle(kSignsSettling_ms);
  save("8-no-gps-data");
}

void Stage::takeCalibration() {
  auto& session = *window_.logging().session();
  auto& calibration = session.calibration;
  if (!session.instrument.calibrated) return;
  session.link.lastRecordTick = clock_.tick();
  calibration.calibrationPhase = -1;
  calibration.calibrationActive = 2;
  calibration.calibrationTick = clock_.tick() - 2200;
  session.view.show(PanelField::calibration, "Rotate to Horiz. Mode within 60 s");
  for (const auto& [step, what] : {std::pair{calibration_step::kWaitForHorizontal, "9-calibration-turn"},
                                   std::pair{calibration_step::kMeasuring, "9-calibration-measuring"},
                                   std::pair{calibration_step::kNotDetected, "9-calibration-failed"}}) {
    calibration.calibrationStep = step;
    calibration.calibrationTick = clock_.tick() - 800;
    settle(kSignsSettling_ms);
    save(what);
  }
  abandonCalibration(session);
}

void Stage::takeAll() {
  QApplication::processEvents();
  save("1-menu");
  takeSetup();
  takeMonitor();
  allowance_.records = kFirstRecords;  // a TESK is listened to before the session begins
  if (window_.logging().startLogging() != StartOutcome::started) {
    problem_ = "no session for " + nameOf(shot_, "");
    return;
  }
  auto& session = *window_.logging().session();
  allowance_.sentences = 6;
  settle();
  save("2-monitor");
  runCodeAndSave(0, "create-file");
  const auto name = session.setup.root / ("SHOT" + std::string(session.instrument.extension));
  beginDataFile(session, [&](const std::string&) { return std::optional(name); });
  save("3-stand-by");
  window_.logging().runCode(0);
  allowance_.sentences = 60;
  allowance_.records = kFirstRecords + kRecords;
  if (!waitFor([&] { return session.counts.readings >= kRecords - 20; })) {
    problem_ = fmt::format("{}: only {} readings", nameOf(shot_, "logging"), session.counts.readings);
  }
  settle(kSignsSettling_ms);
  showMessage(session, "");  // of the receiver's fix
  save("4-logging");
  window_.logging().runCode(0);
  runCodeAndSave(1, "new-line");
  runCodeAndSave(2, "new-station");
  runCodeAndSave(3, "comment");
  runCodeAndSave(101, "scale");
  runCodeAndSave(4, "popup-menu");
  runCodeAndSave(5, "exit");
  takeSigns();
  takeCalibration();
  window_.logging().leaveAtOnce();
  takeViewer(name);
}

// The survey that was just logged, and the fonts.
void Stage::takeViewer(const std::filesystem::path& file) {
  const auto& theme = shot_.night ? nightTheme() : dayTheme();
  const DataPlace place{.kind = shot_.instrument.kind, .root = root_.path().toStdString()};
  std::bitset<kKindCount> confirmed;
  std::string concern;
  ViewFilesWnd viewer({.place = place,
                       .extract = {},
                       .settingsFor = [this](Kind, bool) { return settings_; },
                       .takeSettings = [](Kind, bool, const Settings&) {},
                       .confirmedScales = confirmed,
                       .onLeft = {},
                       .concern = [&concern] { return concern; }},
                      theme, &window_);
  viewer.open();
  save("5-viewer-empty");
  if (!viewer.openFile(file)) problem_ = "cannot view " + file.string();
  viewer.run(ViewCommand::barRight);
  save("6-viewer");
  viewer.run(kZoomOut);
  save("6-viewer-whole");
  for (int i = 0; i < 3; ++i) viewer.run(kZoomIn);
  save("6-viewer-wide");
  const Settings usual = settings_;
  settings_.conductivityMaximum = settings_.conductivityMinimum + 10;
  settings_.inphaseMaximum = 0;
  confirmed.set();
  viewer.openFile(file);
  save("6-viewer-off-scale");
  settings_ = usual;
  confirmed.reset();
  concern = "No data from the instrument";
  waitFor([&viewer] { return viewer.findChild<QWidget*>("concern")->isVisible(); });
  save("6-viewer-concern");
  concern.clear();
  viewer.openFile(file);
  runAndSave([&] { viewer.run(ViewCommand::openFile); }, "view-open");
  runAndSave([&] { viewer.run(ViewCommand::scale); }, "view-scale");
  runAndSave([&] { viewer.run(ViewCommand::help); }, "view-help");
  runAndSave([&] { viewer.run(kSavePicture); }, "view-picture");
  runAndSave([&] { viewer.run(kExport); }, "view-export");
  viewer.leave();
  FontWnd fonts([] {}, theme, &window_);
  fonts.open();
  save("7-fonts");
}

std::string takeChooser(const std::filesystem::path& folder, QSize size, bool night) {
  QWidget parent;
  parent.resize(size);
  parent.show();
  QTimer watch;
  std::string problem;
  QObject::connect(&watch, &QTimer::timeout, [&] {
    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (dialog == nullptr) return;
    const auto path = folder / (night ? "chooser-night.png" : "chooser.png");
    if (!dialog->grab().save(qtText(path.string()))) problem = "cannot write " + path.string();
    dialog->reject();
  });
  watch.start(60);
  const Theme& theme = night ? nightTheme() : dayTheme();
  QApplication::setPalette(paletteOf(theme));
  runChooserDialog(&parent, theme, std::nullopt);
  return problem;
}

std::string take(const Shot& shot, const std::filesystem::path& folder) {
  Stage stage(shot, folder);
  stage.takeAll();
  return stage.problem();
}

// As somebody has it who sees badly.
std::string takeLargeText(const std::filesystem::path& folder, QSize size) {
  constexpr double kLarger = 1.6;
  const QFont usual = QApplication::font();
  QFont large = usual;
  large.setPointSizeF(usual.pointSizeF() * kLarger);
  QApplication::setFont(large);
  auto problem = take({.instrument = {}, .size = size, .largeText = true}, folder);
  QApplication::setFont(usual);
  return problem;
}

}  // namespace

std::string takeShots(const std::filesystem::path& folder, QSize size) {
  std::vector<RememberedKind> instruments;
  instruments.reserve(kKindCount + 1);
  for (int kind = 0; kind < kKindCount; ++kind) instruments.push_back({.kind = static_cast<Kind>(kind)});
  instruments.insert(instruments.begin() + 1, {.kind = Kind::orla, .ice = true});
  for (const bool night : {false, true}) {
    if (auto problem = takeChooser(folder, size, night); !problem.empty()) return problem;
    for (const auto& instrument : instruments) {
      // By night two will do: they differ in colours alone.
      if (night && std::ranges::find(kNightKinds, instrument.kind) == kNightKinds.end()) continue;
      const Shot shot{.instrument = instrument, .size = size, .night = night};
      if (auto problem = take(shot, folder); !problem.empty()) return problem;
    }
  }
  return takeLargeText(folder, size);
}

}  // namespace kalmira::shots
