// Readings into a file on the disk, as a session writes them: formatted, one write call each, committed by
// the thread that does so while the readings go on.
#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

#include "datafile/record_writers.h"

namespace {

using namespace kalmira;

// A session looks after its file twice a second; at the rate aimed for, far more records pass in between.
constexpr unsigned kServiceEvery = 5000;

void writeReadings(benchmark::State& state, Kind kind, std::string_view text) {
  const auto path = std::filesystem::temp_directory_path() / fmt::format("kalmira_write_{}.bin", ::getpid());
  std::filesystem::remove(path);
  const SystemClock clock(TickBase::program);
  const Settings settings;
  LocalDisk disk;
  DataFile file;
  const WriterContext context{.file = file, .settings = settings, .instrument = instrumentOf(kind), .clock = clock};
  const auto length = static_cast<std::uint64_t>(context.instrument.fileRecordLength);
  if (file.create(disk, path, length) != 0) {
    state.SkipWithError("the file cannot be created");
    return;
  }
  std::uint32_t count = 0;
  while (state.KeepRunning()) {
    WriteReadingRecord(context, text, count * 91);
    if (++count % kServiceEvery == 0) file.service();
  }
  state.SetItemsProcessed(state.iterations());
  std::error_code unknown;
  if (file.finish()) state.SkipWithError("records were not written");
  if (std::filesystem::file_size(path, unknown) != count * length) state.SkipWithError("records are missing");
  std::filesystem::remove(path, unknown);
}

BENCHMARK_CAPTURE(writeReadings, orla, Kind::orla, "T\x04+0123-0045")->UseRealTime();
BENCHMARK_CAPTURE(writeReadings, tesk2, Kind::tesk2,
                  std::string_view("T\x06\x80\x10\x84\x00\x90\xFF\x7F\xF0\x0C\x24\x00\xFF", 14))
    ->UseRealTime();

}  // namespace
