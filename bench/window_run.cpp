// The program with its windows, measured: how long it takes to stand on the screen, and what it takes of the
// machine while it records. Without a screen, on Qt's offscreen platform.
#include <fmt/format.h>
#include <sys/resource.h>

#include <QDialog>
#include <QKeyEvent>
#include <QSettings>
#include <QTemporaryDir>
#include <algorithm>
#include <chrono>
#include <clocale>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>

#include "logging/session.h"
#include "platform/text.h"
#include "resources.h"
#include "settings/settings_file.h"
#include "ui/shell/main_window.h"
#include "ui/shell/program.h"
#include "window_child.h"
#include "window_painted.h"

namespace {

using namespace kalmira;
using namespace kalmira::bench;
using std::chrono::steady_clock;

constexpr std::string_view kUsage =
    "usage: window_run EMPTY-WINDOW KALMIRA-SIM [--seconds S]\n"
    "  --seconds S  length of each measurement of a session, 30\n"
    "One line NAME, FIGURE, UNIT, TARGET a figure, between tabs.\n";
constexpr int kStarts = 10;
constexpr int kLookMs = 20;
constexpr int kSettlingMs = 2000;

void figure(std::string_view name, double value, std::string_view unit, std::string_view target) {
  fmt::print("{}\t{:.3g}\t{}\t{}\n", name, value, unit, target);
}

double millisecondsToPainted(const std::vector<std::string>& command) {
  const auto begun = steady_clock::now();
  WindowChild program(command);
  if (program.line() != "painted") throw std::runtime_error("no window was painted");
  const std::chrono::duration<double, std::milli> taken = steady_clock::now() - begun;
  if (program.end() != 0) throw std::runtime_error(command.front() + " has failed");
  return taken.count();
}

double medianOf(const std::function<double()>& measure) {
  std::vector<double> values(kStarts);
  std::generate(values.begin(), values.end(), measure);
  std::sort(values.begin(), values.end());
  return (values[kStarts / 2 - 1] + values[kStarts / 2]) / 2;
}

// What the program's main does, but that it ends with the first painting.
int showAndEnd(int argc, char** argv, const std::string& root) {
  QApplication application(argc, argv);
  std::setlocale(LC_NUMERIC, "C");
  initResources();
  EndWhenPainted filter;
  application.installEventFilter(&filter);
  ProgramOptions options;
  options.kind = Kind::orla;
  options.root = root;
  return runProgram(options);
}

double processorSeconds() {
  rusage usage{};
  if (::getrusage(RUSAGE_SELF, &usage) != 0) throw std::runtime_error("no resource usage");
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

double residentMegabytes() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmRSS:")) return parseReal(line.substr(6)) * 1024e-6;  // "VmRSS:   5120 kB"
  }
  return 0;
}

MainWindow* mainWindow() {
  for (auto* widget : QApplication::topLevelWidgets()) {
    if (auto* window = dynamic_cast<MainWindow*>(widget)) return window;
  }
  return nullptr;
}

void press(QWidget* widget, Qt::Key key) {
  if (widget->focusWidget() != nullptr) widget = widget->focusWidget();
  QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier);
  QKeyEvent up(QEvent::KeyRelease, key, Qt::NoModifier);
  QApplication::sendEvent(widget, &down);
  QApplication::sendEvent(widget, &up);
}

// A survey by keys, measured while it records and again while nobody looks.
class MeasuredSession {
 public:
  explicit MeasuredSession(int seconds) : seconds_(seconds) { look(); }

 private:
  void after(int milliseconds, const std::function<void()>& act) {
    auto* timer = new QTimer(&context_);
    timer->setSingleShot(true);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, act] {
      timer->deleteLater();
      act();
    });
    timer->start(milliseconds);
  }

  // Looks again, also while a step waits in a dialog, until recording begins: then the timers are the
  // program's own.
  void look() {
    after(kLookMs, [this] {
      if (recording_) return;
      look();
      step();
    });
  }

  void step() {
    auto* window = mainWindow();
    if (window == nullptr || !window->isVisible()) return;
    if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
      return press(dialog, Qt::Key_Return);
    }
    auto& logging = window->logging();
    if (!logging.sessionActive()) return press(window, Qt::Key_L);
    if (logging.session()->loggingState == kNoFile) return press(&logging, Qt::Key_C);
    if (logging.session()->loggingState == kStandBy) return press(&logging, Qt::Key_G);
    recording_ = true;
    measure("kalmira, shown: ", "< 1.5", [this, window] {
      figure("kalmira, shown: resident memory", residentMegabytes(), "MB", "< 50");
      window->hide();
      measure("kalmira, hidden: ", "< 0.5", [window] { window->endAtOnce(); });
    });
  }

  void measure(const std::string& name, const std::string& target, const std::function<void()>& next) {
    after(kSettlingMs, [=, this] {
      const auto processor = processorSeconds();
      const auto begun = steady_clock::now();
      const auto readings = mainWindow()->logging().session()->counts.readings;
      after(seconds_ * 1000, [=, this] {
        const std::chrono::duration<double> taken = steady_clock::now() - begun;
        const auto logged = mainWindow()->logging().session()->counts.readings - readings;
        figure(name + "processor", 100 * (processorSeconds() - processor) / taken.count(), "% of a core", target);
        figure(name + "readings recorded", static_cast<double>(logged) / taken.count(), "1/s", "> 10");
        next();
      });
    });
  }

  int seconds_;
  bool recording_ = false;
  QObject context_;
};

std::string deviceOf(const std::string& line) { return line.substr(line.find(' ') + 1); }

int measureSession(int argc, char** argv, const std::string& simulator, const std::string& root, int seconds) {
  WindowChild sim({simulator, "--kind", "ORLA", "--gps-rate", "10"});
  Settings settings;
  settings.audio = 0;
  settings.gpsInput = 1;
  settings.readingsInterval = 0.05F;  // shorter than the instrument's: every record is a reading
  if (const auto problem = saveSettings({.kind = Kind::orla, .root = root}, settings); !problem.empty())
    throw std::runtime_error(problem);
  ProgramOptions options;
  options.kind = Kind::orla;
  options.root = root;
  options.tickBase = TickBase::program;
  options.com[0] = deviceOf(sim.line());
  options.com[1] = deviceOf(sim.line());
  const QApplication application(argc, argv);
  std::setlocale(LC_NUMERIC, "C");
  initResources();
  const MeasuredSession session(seconds);
  return runProgram(options);
}

int measureAll(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  if (arguments.size() != 2 && !(arguments.size() == 4 && arguments[2] == "--seconds")) return 2;
  const int seconds = arguments.size() == 4 ? parseInt(arguments[3]) : 30;
  if (seconds < 1) return 2;
  const QTemporaryDir folder;
  const auto root = folder.path().toStdString();
  // Nothing of what the user's own program remembers is touched.
  qputenv("XDG_CONFIG_HOME", folder.path().toUtf8());
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("QT_LOGGING_RULES", "qt.qpa.*=false");
  const auto self = std::filesystem::read_symlink("/proc/self/exe").string();
  millisecondsToPainted({self, "--start", root});  // makes the settings file, and warms the file cache
  figure("kalmira: start to window painted", medianOf([&] {
           return millisecondsToPainted({self, "--start", root});
         }),
         "ms", "< 100");
  figure("empty window: start to window painted", medianOf([&] { return millisecondsToPainted({arguments[0]}); }), "ms",
         "");
  return measureSession(argc, argv, arguments[1], root, seconds);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (argc == 3 && std::string_view(argv[1]) == "--start") return showAndEnd(argc, argv, argv[2]);
    const int status = measureAll(argc, argv);
    if (status == 2) fmt::print(stderr, "{}", kUsage);
    return status;
  } catch (const std::exception& problem) {
    fmt::print(stderr, "window_run: {}\n", problem.what());
    return 1;
  }
}
