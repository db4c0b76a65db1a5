#include "ui/shell/program.h"

#include <fmt/format.h>

#include <QApplication>
#include <QGuiApplication>
#include <QScreen>
#include <QSettings>
#include <QSocketNotifier>
#include <csignal>
#include <memory>
#include <utility>

#include "datafile/disk.h"
#include "datafile/record_reader.h"
#include "link/device_claim.h"
#include "link/network_port.h"
#include "platform/command_line.h"
#include "platform/file_writer.h"
#include "platform/power.h"
#include "platform/terminate.h"
#include "settings/settings_file.h"
#include "ui/screen/message_dialog.h"
#include "ui/screen/touch_style.h"
#include "ui/shell/chooser_dialog.h"
#include "ui/shell/main_menu.h"
#include "ui/shell/main_window.h"
#include "ui/shell/program_actions.h"
#include "ui/shell/single_instance.h"

namespace kalmira {
namespace {

std::string takeCom(ProgramOptions& options, const std::string& value) {
  const auto equals = value.find('=');
  if (equals == std::string::npos) return "--com takes NUMBER=DEVICE";
  const auto number = wholeNumber<int>(value.substr(0, equals));
  if (!number || *number < 1 || *number > kComPorts) return "--com takes a number from 1 to 12";
  const auto device = value.substr(equals + 1);
  if (device.empty()) return fmt::format("--com {}= lacks the device", *number);
  options.com[static_cast<std::size_t>(*number - 1)] = device;
  return {};
}

std::string takeFile(ProgramOptions& options, const std::string& value) {
  if (!options.file.empty()) return fmt::format("\"{}\" is one file too many", value);
  options.file = value;
  return {};
}

std::string check(ProgramOptions& options) {
  // There is but one instrument for ice work with an option.
  if (options.ice && !options.kind) options.kind = Kind::orla;
  return startContradiction(options);
}

// An instrument's settings, as long as it is the one in use.
class InstrumentSettings {
 public:
  explicit InstrumentSettings(SettingsPlace place) : place_(std::move(place)) {
    problem_ = loadSettings(place_, settings_).problem;
  }

  RememberedKind instrument() const { return {.kind = place_.kind, .ice = place_.iceOption}; }
  Settings& settings() { return settings_; }
  void save(const Settings& current) {
    writer_.write(settingsFileOf(place_), formatSettings(current, place_.kind, place_.iceOption));
  }
  // Why the file could not be read or written, once.
  std::string takeProblem() {
    auto problem = std::exchange(problem_, {});
    if (problem.empty()) problem = writer_.takeProblem();
    // The same again at every dialog would only be in the way.
    if (problem == told_) return {};
    if (!problem.empty()) told_ = problem;
    return problem;
  }
  void finish() { writer_.finish(); }
  // What went wrong with the settings of the instrument used before is told with these.
  void takeOver(std::string problem) {
    if (problem_.empty()) problem_ = std::move(problem);
  }

 private:
  SettingsPlace place_;
  Settings settings_;
  std::string problem_;
  std::string told_;
  FileWriter writer_{"settings"};
};

// One run of the program: everything the windows are given, in the order in which it comes to life.
class Program {
 public:
  explicit Program(const ProgramOptions& options)
      : options_(options),
        file_(options.file),
        store_("kalmira", "kalmira"),
        clock_(options.tickBase),
        assigned_(rememberedComDevices(store_)),
        mirror_(options.mirror.empty() ? rememberedMirror(store_) : options.mirror),
        actions_(hostOfActions()) {
    for (std::size_t i = 0; i < assigned_.size(); ++i) {
      if (!options_.com[i].empty()) assigned_[i] = options_.com[i];
    }
  }
  int run();

 private:
  std::optional<RememberedKind> instrumentToUse();
  std::optional<RememberedKind> instrumentOfFile() const;
  void lookAtFile();
  bool nightToUse();
  MainWindowHost windowHost(RememberedKind instrument, bool night);
  LoggingHost openInstrument(RememberedKind instrument);
  ActionsHost hostOfActions();
  void rememberDevices(const DeviceSetup& changed);
  SessionSetup setupOf(RememberedKind instrument) const;
  void showWindow();
  std::string finishSettings();
  void end();

  const ProgramOptions& options_;
  std::filesystem::path file_;  // to be shown; empty: none
  TerminateSignals terminate_;
  QSettings store_;
  SystemClock clock_;
  LocalDisk disk_;
  ComAssignments assigned_;       // what the operator gave the COM numbers
  std::filesystem::path mirror_;  // folder of the second copy; empty: none
  ComAssignments devices_;        // as they were when the session began: what comes and goes renumbers nothing
  std::unique_ptr<InstrumentSettings> instrument_settings_;
  ProgramActions actions_;
  std::unique_ptr<MainWindow> window_;
  bool night_ = false;
  bool ended_ = false;
};

std::optional<RememberedKind> Program::instrumentToUse() {
  std::optional<RememberedKind> instrument;
  if (options_.kind) {
    instrument = RememberedKind{.kind = *options_.kind, .ice = options_.ice};
  } else if (const auto ofFile = instrumentOfFile()) {
    return ofFile;  // looked at, not remembered
  } else {
    instrument = lastInstrument(store_);
    if (!instrument) {
      instrument = runChooserDialog(nullptr, nightToUse() ? nightTheme() : dayTheme(), std::nullopt);
    }
  }
  if (instrument) rememberKind(store_, *instrument);
  return instrument;
}

// One that cannot be opened is told; then the program goes on as without it.
void Program::lookAtFile() {
  RecordReader reader;
  if (file_.empty()) return;
  const auto error = reader.open(file_);
  if (error.kind == FileErrorKind::none) return;
  QApplication::setPalette(paletteOf(nightToUse() ? nightTheme() : dayTheme()));
  const auto text = fmt::format("{}\r\n{}", file_.string(), error.text);
  tellMessage(nullptr, {.title = "View Files", .text = text, .icon = Icon::exclamation});
  file_.clear();
}

// Of the data file to be viewed; nothing without one.
std::optional<RememberedKind> Program::instrumentOfFile() const {
  RecordReader reader;
  if (file_.empty() || reader.open(file_).kind != FileErrorKind::none) return std::nullopt;
  return RememberedKind{.kind = reader.header().kind, .ice = reader.header().iceOption};
}

bool Program::nightToUse() {
  if (options_.night) rememberNight(store_, *options_.night);
  return options_.night.value_or(rememberedNight(store_));
}

// What the command line gave for this run only is not kept unless the operator changed it.
void Program::rememberDevices(const DeviceSetup& changed) {
  auto kept = rememberedComDevices(store_);
  for (std::size_t i = 0; i < kept.size(); ++i) {
    if (changed.com[i] != assigned_[i]) kept[i] = changed.com[i];
  }
  rememberComDevices(store_, kept);
  if (changed.mirror != mirror_) rememberMirror(store_, changed.mirror);
}

ActionsHost Program::hostOfActions() {
  return {.clock = clock_,
          .storageClass = options_.storageClass,
          .instrument = [this] { return instrument_settings_->instrument(); },
          .settings = [this]() -> Settings& { return instrument_settings_->settings(); },
          .saveSettings = [this](const Settings& changed) { instrument_settings_->save(changed); },
          .theme = [this]() -> const Theme& { return night_ ? nightTheme() : dayTheme(); },
          .assigned = assigned_,
          .mirror = mirror_,
          .presentDevices = serialDevices,
          .lookAtDevice = lookAtDevice,
          .rememberDevices = [this](const DeviceSetup& changed) { rememberDevices(changed); },
          .portFactory = makePort,
          .cover = [this](QWidget* covering) { window_->cover(covering); },
          .root = options_.root,
          .teskRangeTimes10 = options_.teskTimes10,
          .loggedFile =
              [this] {
                const auto* session = window_->logging().sessionActive() ? window_->logging().session() : nullptr;
                return session == nullptr ? std::filesystem::path() : session->file.path();
              },
          .concern = [this] { return window_->logging().concern(); }};
}

SessionSetup Program::setupOf(RememberedKind instrument) const {
  SessionSetup setup;
  setup.kind = instrument.kind;
  setup.iceChosen = instrument.ice;
  setup.teskRangeTimes10 = options_.teskTimes10 && instrumentOf(instrument.kind).rangeTimes10;
  setup.storageClass = options_.storageClass;
  setup.root = options_.root;
  setup.mirror = mirror_;
  return setup;
}

LoggingHost Program::openInstrument(RememberedKind instrument) {
  auto problem = finishSettings();
  instrument_settings_ = std::make_unique<InstrumentSettings>(SettingsPlace{.kind = instrument.kind,
                                                                            .iceOption = instrument.ice,
                                                                            .storageClass = options_.storageClass,
                                                                            .root = options_.root});
  auto& own = *instrument_settings_;
  own.takeOver(std::move(problem));
  return {.setup = setupOf(instrument),
          .settings = own.settings(),
          .clock = clock_,
          .disk = disk_,
          .deviceOf =
              [this](int comNumber) {
                const bool known = comNumber >= 1 && comNumber <= kComPorts;
                return known ? devices_[static_cast<std::size_t>(comNumber - 1)] : std::string();
              },
          .portFactory = makePort,
          .saveSettings =
              [&own](const Settings& current) {
                own.save(current);
                return std::string();  // what goes wrong is told when it is known
              },
          .takeSettingsProblem = [&own] { return own.takeProblem(); },
          .mirror = [this] { return mirror_; },
          .interrupted = [this] { return terminate_.wanted(); },
          .onLeft = {},
          .endProgram = {},
          .sound = openSystemSound,
          .displayOptions =
              [this](QWidget* parent, const Settings& settings) {
                return actions_.runSessionDisplayOptions(parent, settings);
              },
          .viewFile = [this](const std::filesystem::path& file) { actions_.showFile(window_.get(), file); }};
}

MainWindowHost Program::windowHost(RememberedKind instrument, bool night) {
  return {.clock = clock_,
          .instrument = instrument,
          .night = night,
          .open = [this](RememberedKind chosen) { return openInstrument(chosen); },
          .sessionBegins = [this] { devices_ = resolveComDevices(assigned_, serialDevices()); },
          .rememberInstrument = [this](RememberedKind chosen) { rememberKind(store_, chosen); },
          .rememberNight =
              [this](bool chosen) {
                night_ = chosen;
                rememberNight(store_, chosen);
              },
          .endProgram = [this] { end(); },
          .actions = actions_.actions(),
          .showFonts = [this](QWidget* parent) { actions_.showFonts(parent); }};
}

void Program::end() {
  ended_ = true;
  QCoreApplication::exit(0);
}

void Program::showWindow() {
  const auto room = QGuiApplication::primaryScreen()->availableSize();
  const auto place = openingPlace(room, options_.portrait, options_.scale);
  window_->resize(place.width, place.height);
  if (place.fullScreen) {
    window_->showFullScreen();
  } else {
    window_->show();
  }
}

// The settings file of an instrument is not left before it is written. Gives what went wrong.
std::string Program::finishSettings() {
  if (!instrument_settings_) return {};
  // What was tried out and kept in memory only is kept for good at the end.
  instrument_settings_->save(instrument_settings_->settings());
  instrument_settings_->finish();
  return instrument_settings_->takeProblem();
}

int Program::run() {
  QApplication::setStyle(makeTouchStyle());
  std::error_code ignored;
  const auto wanted = file_.empty() ? "" : std::filesystem::absolute(file_, ignored).string();
  const SingleInstance instance(options_.root, wanted, [this](const std::string& file) {
    if (!window_) return;
    window_->bringToFront();
    if (!file.empty()) actions_.showFile(window_.get(), file);
  });
  if (!instance.isFirst()) {
    printError("kalmira: already running on this root");
    return 0;
  }
  const QSocketNotifier notifier(terminate_.descriptor(), QSocketNotifier::Read);
  QObject::connect(&notifier, &QSocketNotifier::activated, [this] {
    if (!terminate_.take()) return;
    if (window_) {
      window_->endAtOnce();
    } else {
      end();
    }
  });
  lookAtFile();
  if (ended_) return 0;
  const auto instrument = instrumentToUse();
  if (!instrument || ended_) return 0;
  night_ = nightToUse();
  window_ = std::make_unique<MainWindow>(windowHost(*instrument, night_));
  showWindow();
  if (!file_.empty()) {
    // Once the window is to be seen: what is damaged is told in front of it.
    QMetaObject::invokeMethod(
        window_.get(), [this] { actions_.showFile(window_.get(), file_); }, Qt::QueuedConnection);
  }
  IdleInhibitor inhibitor("Kalmira");
  const KeepAwakeThread keepAwake{[&inhibitor] { inhibitor.renew(); }};
  const int status = QCoreApplication::exec();
  window_.reset();
  if (const auto problem = finishSettings(); !problem.empty()) printError(problem);
  return status;
}

}  // namespace

CommandLine programCommandLine(ProgramOptions& o) {
  return {
      .program = "kalmira",
      .summary = "Logs with a hand-carried ground-conductivity instrument, and shows what was logged.",
      .usages = {"[options] [FILE]"},
      .groups = {instrumentOptions(o),
                 {"Ports",
                  {{"--com", "N=DEVICE", "the device behind COM1 to COM12, for this run",
                    [&o](const std::string& value) { return takeCom(o, value); }, "", CommandOption::Again::allCount}}},
                 fileOptions(o),
                 {"Window",
                  {eitherOption("--screen", "portrait|landscape", "the shape it opens in", o.portrait, true, false),
                   {"--scale", "F", "0.5 to 8: the size it opens in, times 240 x 320",
                    takeNumber(o.scale, 0.5, 8.0, "--scale is a number from 0.5 to 8")},
                   eitherOption("--theme", "day|night", "black on white, or dark for eyes used to the dark", o.night,
                                false, true)}}},
      .operands = {"", "FILE", "a data file, shown at once; without --kind the logger is for its instrument, this time",
                   [&o](const std::string& value) { return takeFile(o, value); }},
      .check = [&o] { return check(o); },
      .notes = "Without --kind the instrument is the one last used.\n",
      .wording = {.unknown = "Unknown option '{1}'.",
                  .missing = "Missing value after '{0}'.",
                  .unexpected = "Unexpected value after '{1}'."}};
}

int runProgram(const ProgramOptions& options) {
  // A closed pipe or a file size limit is an error of one write, not the end of a survey.
  std::signal(SIGPIPE, SIG_IGN);
#ifdef SIGXFSZ
  std::signal(SIGXFSZ, SIG_IGN);
#endif
  Program program(options);
  return program.run();
}

}  // namespace kalmira
