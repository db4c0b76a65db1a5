// Export of a file of a million readings: the whole way from the disk's bytes to the table's or the map's.
#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "datafile/record_format.h"
#include "export/export_run.h"
#include "platform/text.h"

namespace {

using namespace kalmira;

constexpr unsigned kReadings = 1000000;

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

std::string sentenceOf(int length, unsigned number, unsigned tick) {
  const unsigned tenths = number + 288000;
  const auto body =
      fmt::format("GNGGA,{:02}{:02}{:02}.{}0,50{:010.7f},N,008{:010.7f},E,4,12,0.8,100.0,M,18.0,M,1.0,0001",
                  tenths / 36000 % 24, tenths / 600 % 60, tenths / 10 % 60, tenths % 10, number * 5e-5, number * 6e-5);
  unsigned sum = 0;
  for (const char c : body) sum ^= static_cast<unsigned char>(c);
  return formatGpsSentence(length, fmt::format("${}*{:02X}", body, sum), tick, '@', '#');
}

// With `sentences`, ten a second.
std::filesystem::path surveyFile(Kind kind, bool sentences = false) {
  const int length = instrumentOf(kind).fileRecordLength;
  auto path = std::filesystem::temp_directory_path() / fmt::format("kalmira_export_{}.bin", getpid());
  std::ofstream file(path, std::ios::binary);
  file << formatHeader1({.kind = kind, .gps = sentences}) << formatHeader2(length, "BENCH", "  1.000");
  file << formatLineName(length, "1") << formatStartStation(length, 0.0) << formatDirection(length, 2, 0.5)
       << formatDate(length, {.year = 2024}) << formatTimeMark(length, {}, 0);
  unsigned sentence = 0;
  for (unsigned i = 0; i < kReadings; ++i) {
    for (; sentences && sentence * 100 <= i * 91; ++sentence)
      file << sentenceOf(length, sentence, sentence * 100 + 60 + sentence % 7);
    file << readingOf(kind, i);
  }
  file.close();
  if (!file) throw std::filesystem::filesystem_error("survey file", path, std::error_code());
  return path;
}

// The whole way of kalmira-export: CSV to the null device, a GeoPackage to a file.
void exportMillion(benchmark::State& state, Kind kind, bool sentences, ExportFormat format = ExportFormat::csv) {
  const auto path = surveyFile(kind, sentences);
  const bool database = format == ExportFormat::geopackage;
  const auto out = database ? std::filesystem::path(path.string() + ".gpkg") : std::filesystem::path("/dev/null");
  while (state.KeepRunning()) {
    const auto result = runExport(
        {.files = {path}, .out = out, .format = format},
        [&](std::string_view said) {
          // The last reading lies behind the last fix.
          if (!said.ends_with(": 1 reading without a position")) state.SkipWithError(std::string(said).c_str());
        },
        [](std::string_view, std::uint64_t, std::uint64_t) { return true; });
    if (result.status != kExportDone || result.readings != kReadings) state.SkipWithError("readings are missing");
  }
  std::filesystem::remove(path);
  if (database) std::filesystem::remove(out);
  state.SetItemsProcessed(state.iterations() * kReadings);
  state.counters["peak_MB"] = peakResidentMegabytes();
}
BENCHMARK_CAPTURE(exportMillion, orla, Kind::orla, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(exportMillion, tesk2, Kind::tesk2, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(exportMillion, placed, Kind::orla, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(exportMillion, geopackage, Kind::orla, true, ExportFormat::geopackage)->Unit(benchmark::kMillisecond);

}  // namespace
