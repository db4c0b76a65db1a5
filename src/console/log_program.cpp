#include "console/log_program.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <system_error>
#include <utility>

#include "console/event_loop.h"
#include "console/operator_commands.h"
#include "console/output.h"
#include "console/run_settings.h"
#include "link/com_devices.h"
#include "link/network_port.h"
#include "logging/commands.h"
#include "logging/handlers.h"
#include "logging/saving.h"
#include "logging/serial_session_ports.h"
#include "logging/session_link.h"
#include "platform/command_line.h"
#include "platform/hand_over.h"
#include "platform/power.h"
#include "platform/text.h"
#include "settings/setting_check.h"

namespace kalmira {
namespace {

constexpr double kLongest_s = 1e6;

bool isTextField(const SettingsField& field) { return std::holds_alternative<std::string Settings::*>(field.member); }

bool isIntField(const SettingsField& field) {
  return std::holds_alternative<int Settings::*>(field.member) ||
         std::holds_alternative<std::array<int, kTraces> Settings::*>(field.member);
}

std::string takeSet(LogOptions& options, const std::string& value) {
  const auto equals = value.find('=');
  if (equals == std::string::npos) return "--set takes FIELD=VALUE";
  const auto name = value.substr(0, equals);
  const auto text = value.substr(equals + 1);
  const auto field = findField(name);
  if (!field) return fmt::format("there is no setting \"{}\"", name);
  if (isIntField(*field->field)) {
    if (!wholeNumber<int>(text)) return fmt::format("\"{}\" is no whole number for {}", text, name);
  } else if (!isTextField(*field->field) && !wholeNumber<double>(text)) {
    return fmt::format("\"{}\" is no number for {}", text, name);
  }
  options.set.emplace_back(*field, text);
  return {};
}

std::string takeNote(LogOptions& options, const std::string& value) {
  SurveyNotes looked;
  if (auto problem = setNote(looked, value); !problem.empty()) return problem;
  options.notes.push_back(value);
  return {};
}

// What a shell offers: "site=", and of an array "traceWidth[".
std::vector<std::string> settingChoices() {
  std::vector<std::string> names;
  for (const auto& field : settingsFields()) {
    const bool array = !findField(field.name);
    names.push_back(std::string(field.name) + (array ? '[' : '='));
  }
  return names;
}

std::vector<std::string> noteChoices() {
  std::vector<std::string> names;
  for (const auto& field : notesFields()) {
    if (field.asked) names.push_back(std::string(field.name) + '=');
  }
  return names;
}

std::string takeName(LogOptions& options, const std::string& value) {
  if (value.empty() || value.find('/') != std::string::npos || value.find('\\') != std::string::npos ||
      value.starts_with('.') || hasControlCharacters(value)) {
    return fmt::format("\"{}\" is no name for a data file: a bare name without folder is wanted", printable(value));
  }
  options.name = value;
  return {};
}

std::string contradiction(const LogOptions& options) {
  if (!options.kind) return "--kind is missing";
  if (options.port.empty()) return "--port is missing";
  if (!options.marker.empty() && !instrumentOf(*options.kind).hasMarker) return "--marker is for the TESK2";
  for (const auto& [device, role] : {std::pair{&options.port, PortRole::instrument},
                                     {&options.gps, PortRole::gps},
                                     {&options.marker, PortRole::marker}}) {
    if (auto problem = networkProblem(*device, role); !problem.empty()) return problem;
  }
  if (options.noInput && options.seconds) return "--no-input and --seconds are two ways to end: one of them is enough";
  for (const auto& [field, text] : options.set) {
    if (auto problem = settingProblem(*options.kind, options.ice, field, text); !problem.empty()) return problem;
  }
  return startContradiction(options);
}

// The COM numbers of this run. They stand for the devices of the command line only.
constexpr int kInstrumentCom = 1;
constexpr int kGpsCom = 2;
constexpr int kMarkerCom = 3;
constexpr std::uint32_t kStatusPeriodMs = 500;
constexpr std::uint32_t kSignPeriodMs = 3600000;

// COM number of a device: that of the port it shares with an earlier one.
int comOf(const LogOptions& options, const std::string& device, int own) {
  if (sameDevice(device, options.port)) return kInstrumentCom;
  if (own == kMarkerCom && !options.gps.empty() && sameDevice(device, options.gps)) return kGpsCom;
  return own;
}

// The values of this run: what --set says, then the ports, which are for the command line alone to say.
FieldValues runValues(const LogOptions& options) {
  FieldValues values = options.set;
  const auto put = [&values](std::string_view name, int value) {
    values.emplace_back(*findField(name), fmt::format("{}", value));
  };
  const bool gps = !options.gps.empty();
  put("instrumentPortIndex", kInstrumentCom - 1);
  put("gpsInput", gps ? 1 : 0);
  put("gpsPortIndex", gps ? comOf(options, options.gps, kGpsCom) - 1 : kGpsCom - 1);
  if (instrumentOf(*options.kind).hasMarker) {
    put("markerPortChoice", options.marker.empty() ? 0 : comOf(options, options.marker, kMarkerCom));
  }
  return values;
}

std::string deviceOf(const LogOptions& options, int comNumber) {
  switch (comNumber) {
    case kInstrumentCom: return options.port;
    case kGpsCom: return options.gps;
    case kMarkerCom: return options.marker;
    default: return {};
  }
}

// One run of the program: everything it needs, in the order in which it comes to life.
class Run {
 public:
  Run(const LogOptions& options, std::filesystem::path root, const PortFactory& portFactory);
  int run();

 private:
  bool begin();
  bool createFile();
  void loop();
  void onLine(const std::string& line);
  void leave();
  void showStatus();
  void tellSettingsProblem();
  void tellWhoeverReadsLater();
  bool timeIsOver() const;
  std::uint32_t nextWait() const;

  const LogOptions& options_;
  SystemClock clock_;
  EventLoop events_;
  OutputThread output_;
  ConsoleView view_;
  RunSettings settings_;
  LinkState link_;
  LocalDisk disk_;
  Session session_;
  HandOver hand_over_;
  SerialSessionPorts ports_;
  bool terminal_;
  bool file_created_ = false;
  std::uint32_t recording_since_ = 0;
  std::uint32_t status_tick_ = 0;
  // Of what is told without being asked for, where nobody can ask.
  std::optional<std::uint32_t> silent_since_;
  std::uint32_t sign_tick_ = 0;
  Urgency supplies_told_ = Urgency::fine;
};

SessionSetup setupOf(const LogOptions& options, std::filesystem::path root) {
  // Without a screen, files are marked as those of a portrait screen.
  return {.kind = *options.kind,
          .iceChosen = options.ice,
          .teskRangeTimes10 = options.teskTimes10,
          .storageClass = options.storageClass,
          .root = std::move(root),
          .mirror = options.mirror,
          .notes = options.notes,
          .portrait = true,
          .smallScreen = false,
          .wideLayout = true};
}

Run::Run(const LogOptions& options, std::filesystem::path root, const PortFactory& portFactory)
    : options_(options),
      clock_(options.tickBase),
      events_(!options.seconds && !options.noInput),
      output_(STDOUT_FILENO, STDERR_FILENO),
      view_([this](std::string line) { output_.line(std::move(line)); }, options.show, options.exitOnSilence),
      settings_({.kind = *options.kind, .iceOption = options.ice, .storageClass = options.storageClass, .root = root},
                runValues(options)),
      session_(setupOf(options, std::move(root)), settings_.settings(), link_, clock_, disk_, view_,
               [this](const Settings& current) {
                 settings_.save(current);
                 return std::string{};  // what goes wrong is told when it is known
               }),
      ports_(*options.kind, settings_.settings(), [this](int com) { return deviceOf(options_, com); }, link_,
             hand_over_, clock_, portFactory,
             {.onRecord =
                  [this] {
                    OnReading(session_);
                    releaseMarkAfterRecord(session_);
                  },
              .onSentence = [this](const GpsLine& line) { OnGpsLine(session_, line); }}),
      terminal_(::isatty(STDERR_FILENO) == 1) {
  session_.ports = &ports_;
  session_.interrupted = [this] { return events_.terminateWanted(); };
  if (options.noInput) view_.tellSilencesOnce();
  view_.setPrintBefore([](const std::string& line) { printError(line); });
}

bool Run::createFile() {
  bool asked = false;
  const auto place = dataPlaceOf(session_);
  const auto choose = [&](const std::string&) -> std::optional<std::filesystem::path> {
    if (options_.name.empty()) return dataFilePathFor(place, unattendedName(place, clock_));
    // The name is taken, and there is nobody to ask for another.
    if (std::exchange(asked, true)) return std::nullopt;
    return dataFilePathFor(place, bareName(options_.name, session_.instrument.extension));
  };
  if (beginDataFile(session_, choose).how != CreateOutcome::How::created) return false;
  file_created_ = true;
  output_.line(fmt::format("file {}", session_.file.path().string()));
  return true;
}

bool Run::begin() {
  tellSettingsProblem();
  const auto outcome = startSession(session_);
  if (outcome == StartOutcome::uptimeExceeded) {
    printError("On a machine that runs for weeks, start with --tick-base program.");
  }
  if (outcome != StartOutcome::started) return events_.terminateWanted();
  if (events_.terminateWanted()) {  // while the instrument was waited for
    LeaveLogging(session_, true);
    return true;
  }
  if (!createFile()) {
    LeaveLogging(session_, true);
    return false;
  }
  view_.sessionRuns();
  recording_since_ = sign_tick_ = clock_.tick();
  if (options_.seconds || options_.noInput) startRecording(session_);
  return true;
}

bool Run::timeIsOver() const {
  return options_.seconds && ticksSince(clock_.tick(), recording_since_) >= *options_.seconds * 1000.0;
}

std::uint32_t Run::nextWait() const {
  auto wait = msUntilService(session_);
  if (options_.seconds) {
    const double left = *options_.seconds * 1000.0 - ticksSince(clock_.tick(), recording_since_);
    wait = std::min(wait, left < 1.0 ? 1U : static_cast<std::uint32_t>(left));
  }
  return wait;
}

void Run::tellSettingsProblem() {
  const auto problem = settings_.takeProblem();
  if (!problem.empty()) output_.line("notice " + problem);
}

// What an operator sees without asking: that the instrument is back, that the survey is being saved, and, when it gets
// short, for how long it still can be.
void Run::tellWhoeverReadsLater() {
  const auto now = clock_.tick();
  if (session_.pleaseWait) {
    if (!silent_since_) silent_since_ = now;
  } else if (const auto since = std::exchange(silent_since_, std::nullopt)) {
    view_.silenceIsOver();
    output_.line(fmt::format("notice The instrument sends again after {} s", ticksSince(now, *since) / 1000));
  }
  const auto supplies = supplySignsOf(session_);
  if (supplies.worst() > supplies_told_) {
    supplies_told_ = supplies.worst();
    output_.line("notice " + supplies.shortText());
  }
  if (ticksSince(now, sign_tick_) < kSignPeriodMs) return;
  sign_tick_ = now;
  output_.line("notice " + savingSignsOf(session_).text());
}

void Run::leave() {
  if (session_.sessionActive) leaveCleanly(session_);
}

void Run::onLine(const std::string& line) {
  if (line.find_first_not_of(" \t") == std::string::npos || !session_.sessionActive) return;
  const auto answer = runOperatorCommand(session_, line);
  if (answer.newLine) {
    settings_.keepLine();
    saveSettingsOrTell(session_);
  }
  if (!answer.status.empty()) output_.line(answer.status);
  output_.line(!answer.error.empty() ? "error " + answer.error : answer.kept.empty() ? "ok" : "ok " + answer.kept);
}

void Run::showStatus() {
  if (!terminal_ || ticksSince(clock_.tick(), status_tick_) < kStatusPeriodMs) return;
  status_tick_ = clock_.tick();
  const auto seconds = ticksSince(status_tick_, recording_since_) / 1000;
  const auto gps = session_.gpsEnabled()
                       ? fmt::format("{} {} sat", view_.text(PanelField::fix), view_.text(PanelField::satellites))
                       : std::string("no GPS");
  output_.status(fmt::format("{} L{} S{:.2f} {} rec {:02}:{:02}:{:02} {} {} {}", view_.text(PanelField::state),
                             narrow(session_.settings.lineName), session_.station, session_.counts.readings,
                             seconds / 3600, seconds / 60 % 60, seconds % 60, gps, view_.text(PanelField::value1),
                             view_.text(PanelField::value2)));
}

void Run::loop() {
  const EventLoop::Handlers handlers{
      .input = {.onLine = [this](const std::string& line) { onLine(line); },
                .onLongLine = [this] { output_.line("error a line of more than 64 KiB is no command: dropped"); }},
      .onEndOfInput = [this] { leave(); },
      .onTerminate = [this] { leave(); }};
  while (session_.sessionActive) {
    const auto wait = nextWait();
    EventLoop::Happened happened;
    {
      // Readings and GPS lines are handled meanwhile, in turn with what this thread does.
      const HandOver::Rest rest(hand_over_);
      happened = events_.wait(wait);
    }
    events_.handle(happened, handlers);
    if (!session_.sessionActive) break;
    serviceSession(session_);
    tellSettingsProblem();
    if (options_.noInput && session_.sessionActive) tellWhoeverReadsLater();
    if (timeIsOver()) leave();
    showStatus();
  }
}

int Run::run() {
  IdleInhibitor inhibitor("Kalmira");
  const KeepAwakeThread keepAwake{[&inhibitor] { inhibitor.renew(); }};
  int status = 1;
  if (begin()) {
    loop();
    settings_.finish();
    tellSettingsProblem();
    if (file_created_) output_.line(summaryText(session_));
    for (const auto& remark : session_.remarks) output_.line("notice " + remark);
    for (const auto& shortfall : session_.shortfalls) output_.line("not whole: " + shortfall);
    status = view_.linkGivenUp() ? 1 : session_.shortfalls.empty() ? 0 : 3;
  }
  // Everything is closed by now: a terminal that stands still need not keep the program.
  if (!output_.finish()) std::_Exit(status);
  return status;
}

}  // namespace

CommandLine logCommandLine(LogOptions& o) {
  constexpr std::string_view kNoDevice = "a device is missing";
  return {
      .program = "kalmira-log",
      .summary = "Logs one instrument without a screen.",
      .usages = {"--kind NAME|0..7 --port DEVICE [options]"},
      .groups = {instrumentOptions(o),
                 {"Ports",
                  {{"--port", "DEVICE", "the instrument's serial port, such as /dev/ttyUSB0, or tcp://HOST:PORT",
                    takeText(o.port, kNoDevice)},
                   {"--gps", "DEVICE", "log a GPS receiver too; also tcp://HOST:PORT, gpsd://HOST[:PORT]",
                    takeText(o.gps, kNoDevice)},
                   {"--marker", "DEVICE", "TESK2: the external marker's port", takeText(o.marker, kNoDevice)}}},
                 fileOptions(o),
                 {"This run",
                  {{"--set", "FIELD=VALUE", "a setting for this run only, such as surveyMode=2 or traceWidth[2]=3",
                    [&o](const std::string& value) { return takeSet(o, value); }, "", CommandOption::Again::allCount,
                    settingChoices()},
                   {"--note", "FIELD=VALUE", "a note beside the data file for this run only, such as site=Moor",
                    [&o](const std::string& value) { return takeNote(o, value); }, "", CommandOption::Again::allCount,
                    noteChoices()},
                   {"--name", "BASENAME", "name of the data file, without extension",
                    [&o](const std::string& value) { return takeName(o, value); }},
                   {"--seconds", "S", "record at once for S seconds, then end",
                    takeNumber<double>(o.seconds, std::numeric_limits<double>::min(), kLongest_s,
                                       "--seconds takes a number of seconds above 0")},
                   eitherOption("--on-silence", "wait|exit", "when the instrument stays silent (wait)", o.exitOnSilence,
                                false, true),
                   {"--no-input", "", "for services: record at once and until a signal comes, without standard input",
                    takeFlag(o.noInput)},
                   {"--show", "", "print every text of the panel", takeFlag(o.show)}}}},
      .check = [&o] { return contradiction(o); },
      .notes =
          "Commands on standard input: go, pause, line [NAME [START [INCREMENT [W|S|N|E]]]], station X,\n"
          "comment [TEXT], calibrate, delete-calibration, mark, status, help, exit\n"
          "Exit status: 0 a whole survey; 1 it could not start or the link was given up; 2 wrong usage;\n"
          "3 it ended, but something is not where it should be: the last lines say what.\n"};
}

int runLogProgram(const LogOptions& options, const std::filesystem::path& defaultRoot, const PortFactory& portFactory) {
  // A closed pipe or a file size limit is an error of one write, not the end of a survey.
  std::signal(SIGPIPE, SIG_IGN);
#ifdef SIGXFSZ
  std::signal(SIGXFSZ, SIG_IGN);
#endif
  Run run(options, options.root.empty() ? defaultRoot : options.root, portFactory);
  return run.run();
}

}  // namespace kalmira
