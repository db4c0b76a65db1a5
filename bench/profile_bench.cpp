// The profile: a reading from the wire to the screen, and the chart drawn anew from a file of a million
// readings. A reading's figure is its whole cost on the session's thread: decode, record, panel texts, point,
// and the window's painting.
#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <unistd.h>

#include <QApplication>
#include <QImage>
#include <algorithm>
#include <filesystem>

#include "chart/profile_redraw.h"
#include "datafile/record_format.h"
#include "logging/commands.h"
#include "logging/handlers.h"
#include "sim/encode.h"
#include "ui/session/curve_window.h"

namespace {

using namespace kalmira;

constexpr int kReadings = 1000000;
constexpr QSize kChartSize(720, 600);
constexpr double kScale = 3.0;

class ChartOnly final : public SessionView {
 public:
  void show(PanelField, std::string_view) override {}
  void beep(Beep) override {}
  bool ask(Question, const Message&) override { return true; }
  void tell(const Message&) override {}
  void addProfilePoint(const ProfilePoint& point) override { chart->addPoint(point); }
  void redrawProfile() override {}
  void clearProfile() override {}
  void loggingStateChanged() override {}
  void closeDialogs() override {}
  void loggingLeft() override {}

  CurveWnd* chart = nullptr;
};

// A session that records into a file in the folder for temporary files.
struct Bench {
  explicit Bench(Kind kind)
      : folder(std::filesystem::temp_directory_path() / fmt::format("kalmira_profile_{}", getpid())),
        session({.kind = kind, .root = folder}, settings, link, clock, disk, view,
                [](const Settings&) { return std::string(); }) {
    std::filesystem::create_directories(folder);
    settings.conductivityMaximum = 100;
    settings.audio = 0;
    takeSettings(session);
    const auto outcome = beginDataFile(session, [&](const std::string&) { return folder / "BENCH.DAT"; });
    if (outcome.how != CreateOutcome::How::created) throw std::runtime_error("the data file cannot be created");
    chart.resize(kChartSize);
    chart.setLayoutOf(true, kScale);
    chart.setSession(&session);
    view.chart = &chart;
    startRecording(session);
  }
  ~Bench() {
    session.file.finish();
    std::filesystem::remove_all(folder);
  }
  Bench(const Bench&) = delete;
  Bench& operator=(const Bench&) = delete;

  void record(const std::string& text) {
    std::copy(text.begin(), text.end(), link.recordText.begin());
    link.recordLength = static_cast<int>(text.size());
    link.lastRecordTick = clock.tick();
    OnReading(session);
  }

  std::filesystem::path folder;
  Settings settings;
  LinkState link;
  SystemClock clock{TickBase::boot};
  LocalDisk disk;
  ChartOnly view;
  Session session;
  CurveWnd chart{dayTheme(), nullptr};
};

std::string recordOf(Kind kind, int number) {
  const sim::Stance stance{.vertical = number % 2 == 0};
  const double conductivity = (number * 37) % 100;
  const double inphase = (number * 13) % 19 - 9;
  if (kind == Kind::orla) return sim::encodeOrla(stance, conductivity, inphase);
  return sim::encodeTesk2(stance, {.conductivity1 = conductivity,
                                   .inphase1 = inphase,
                                   .conductivity2 = conductivity / 2,
                                   .inphase2 = inphase / 2,
                                   .auxiliary1 = 20,
                                   .auxiliary2 = 25});
}

void pointDrawn(benchmark::State& state, Kind kind) {
  Bench bench(kind);
  QImage window(kChartSize, QImage::Format_RGB32);
  int number = 0;
  while (state.KeepRunning()) {
    bench.record(recordOf(kind, number++));
    bench.chart.render(&window);
  }
  state.SetItemsProcessed(state.iterations());
}

void redrawMillion(benchmark::State& state, Kind kind) {
  Bench bench(kind);
  const int length = bench.session.instrument.fileRecordLength;
  std::string records;
  for (int i = 0; i < kReadings; ++i) {
    records += formatReading(length, recordOf(kind, i), static_cast<unsigned>(i) * 91U);
  }
  bench.session.file.append(records);
  if (!bench.session.file.problem().empty()) state.SkipWithError("the readings cannot be written");
  while (state.KeepRunning()) bench.chart.redraw();
  state.SetItemsProcessed(state.iterations());
}

BENCHMARK_CAPTURE(pointDrawn, orla, Kind::orla)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(pointDrawn, tesk2, Kind::tesk2)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(redrawMillion, orla, Kind::orla)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(redrawMillion, tesk2, Kind::tesk2)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
