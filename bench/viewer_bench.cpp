// The viewer's work on a file of a million readings in 20 lines and on one of ten million in one line: opened and its
// first line made ready to be drawn, the steps along that line, and beside them a plain copy of the file.
#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "chart/chart_picture.h"
#include "datafile/record_format.h"
#include "platform/text.h"
#include "viewer/plot_points.h"
#include "viewer/readout.h"

namespace {

using namespace kalmira;

struct Size {
  unsigned lines;
  unsigned readings;  // of each line
};
constexpr Size kManyLines{20, 50000};
constexpr Size kOneLine{1, 10000000};
constexpr int kView = 1024;

// "VmHWM:   5120 kB": the most memory this process ever had.
double peakResidentMegabytes() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmHWM:")) return parseReal(line.substr(6)) / 1024.0;
  }
  return 0.0;
}

std::string readingOf(Kind kind, unsigned number) {
  if (kind == Kind::tesk2) {
    std::string text("T\x04\x80\0\x84\0\x83\0\x82\0\0\0\0\0", 14);
    text[3] = static_cast<char>(number);
    return formatReading(26, text, number * 50);
  }
  return formatReading(
      24, fmt::format("T${:+05}{:+05}", static_cast<int>(number % 9000) - 4500, static_cast<int>(number % 700)),
      number * 91);
}

// A survey file in a folder of its own, gone with the measurement.
class Survey {
 public:
  explicit Survey(Kind kind, const Size& surveySize = kManyLines) : size(surveySize) {
    std::filesystem::create_directories(root);
    const int length = instrumentOf(kind).fileRecordLength;
    std::ofstream out(path, std::ios::binary);
    out << formatHeader1({.kind = kind}) << formatHeader2(length, "BENCH", "  1.000");
    for (unsigned number = 0; number < size.lines; ++number) {
      out << formatLineName(length, std::to_string(number)) << formatStartStation(length, 0.0)
          << formatDirection(length, 2, 0.5) << formatDate(length, {.year = 2024}) << formatTimeMark(length, {}, 0);
      for (unsigned i = 0; i < size.readings; ++i) out << readingOf(kind, i);
    }
    out.close();
    if (!out) throw std::filesystem::filesystem_error("survey file", path, std::error_code());
  }
  ~Survey() {
    std::error_code ignored;
    std::filesystem::remove_all(root, ignored);
  }
  Survey(const Survey&) = delete;
  Survey& operator=(const Survey&) = delete;

  // False when anything is not as it must be.
  bool open() {
    return reader.open(path).kind == FileErrorKind::none && ScanDataFile(reader, file).kind == FileErrorKind::none &&
           file.lines.size() == size.lines &&
           ExtractLine(reader, file, 1, rows, {}, line).kind == ViewerErrorKind::none &&
           line.rowCount() == static_cast<int>(size.readings);
  }
  bool load(int firstRow) {
    const auto outcome = LoadLineRows(reader, file, line, 0, kView - 1, firstRow, points);
    return !outcome.line1Missing && !outcome.line2Missing && points.front().valid && points.back().valid;
  }

  Size size;
  std::filesystem::path root = std::filesystem::temp_directory_path() / fmt::format("kalmira_viewer_{}", getpid());
  std::filesystem::path path = root / "SURVEY.DAT";
  RowFiles rows = rowFilesOf(root, 1);
  RecordReader reader;
  ScannedFile file;
  ExtractedLine line;
  std::vector<StationPoint> points;
};

void openAndShow(benchmark::State& state, Kind kind, const Size& size) {
  Survey survey(kind, size);
  while (state.KeepRunning()) {
    if (!survey.open() || !survey.load(1)) state.SkipWithError("the survey is not shown whole");
    benchmark::DoNotOptimize(lineOverview(survey.line.summary, kView));
  }
  state.counters["peak_MB"] = peakResidentMegabytes();
}
BENCHMARK_CAPTURE(openAndShow, orla, Kind::orla, kManyLines)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(openAndShow, tesk2, Kind::tesk2, kManyLines)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(openAndShow, orlaTenMillion, Kind::orla, kOneLine)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(openAndShow, tesk2TenMillion, Kind::tesk2, kOneLine)->Unit(benchmark::kMillisecond)->UseRealTime();

void scanAlone(benchmark::State& state, const Size& size) {
  Survey survey(Kind::orla, size);
  while (state.KeepRunning()) {
    if (survey.reader.open(survey.path).kind != FileErrorKind::none ||
        ScanDataFile(survey.reader, survey.file).kind != FileErrorKind::none)
      state.SkipWithError("the survey cannot be scanned");
  }
}
BENCHMARK_CAPTURE(scanAlone, million, kManyLines)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(scanAlone, tenMillion, kOneLine)->Unit(benchmark::kMillisecond);

void stepAlong(benchmark::State& state, Kind kind, const Size& size) {
  Survey survey(kind, size);
  if (!survey.open()) state.SkipWithError("the survey cannot be opened");
  int row = 1;
  while (state.KeepRunning()) {
    if (!survey.load(row)) state.SkipWithError("rows are missing");
    benchmark::DoNotOptimize(readStationNotes(survey.reader, survey.file, survey.line, row + 50));
    row = (row + 80) % static_cast<int>(size.readings - 10000) + 1;
  }
}
BENCHMARK_CAPTURE(stepAlong, orla, Kind::orla, kManyLines)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(stepAlong, tesk2, Kind::tesk2, kManyLines)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(stepAlong, orlaTenMillion, Kind::orla, kOneLine)->Unit(benchmark::kMicrosecond);

// The whole line on a wide screen, as after each change of size.
void redrawWhole(benchmark::State& state) {
  Survey survey(Kind::orla, kOneLine);
  if (!survey.open()) state.SkipWithError("the survey cannot be opened");
  constexpr int kWidth = 1280;
  constexpr int kHeight = 600;
  ChartPicture picture({}, kWidth, kHeight);
  const auto setup = plotSetup(survey.file, {}, kWidth, kHeight);
  while (state.KeepRunning()) {
    const auto overview = lineOverview(survey.line.summary, kWidth - 2);
    DrawOverview(picture, setup, overview, kFirstColumn, true);
    benchmark::DoNotOptimize(offScaleMarks(setup, overview, kFirstColumn, 12));
  }
}
BENCHMARK(redrawWhole)->Unit(benchmark::kMillisecond);

// What is written beside the screen, a little at a time.
void fillRowFiles(benchmark::State& state) {
  Survey survey(Kind::orla, kOneLine);
  while (state.KeepRunning()) {
    state.PauseTiming();
    if (!survey.open()) state.SkipWithError("the survey cannot be opened");
    state.ResumeTiming();
    if (fillRows(survey.reader, survey.file, survey.line, survey.line.rowCount()).kind != ViewerErrorKind::none)
      state.SkipWithError("the row files cannot be written");
  }
}
BENCHMARK(fillRowFiles)->Unit(benchmark::kMillisecond);

void plainCopy(benchmark::State& state) {
  Survey survey(Kind::orla);
  const auto copy = survey.root / "COPY.DAT";
  while (state.KeepRunning()) {
    std::filesystem::copy_file(survey.path, copy, std::filesystem::copy_options::overwrite_existing);
  }
}
BENCHMARK(plainCopy)->Unit(benchmark::kMillisecond);

}  // namespace
