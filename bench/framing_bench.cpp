// Framing in bytes a second, decoding in records a second, over a block as large as the caches like.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "instruments/catalogue.h"
#include "instruments/framing.h"

namespace kalmira {
namespace {

constexpr std::size_t kStreamBytes = 1U << 20U;

std::string repeated(const std::vector<std::string>& parts) {
  std::string stream;
  while (stream.size() < kStreamBytes) {
    for (const auto& part : parts) stream += part;
  }
  return stream;
}

std::vector<std::string> asciiRecords() {
  return {"T\x04+0123-0045", "T\x22-1.25+99.9", "T\x46+1234-0567", "T\x06-0001+0002"};
}

std::string asciiStream() {
  auto records = asciiRecords();
  for (auto& record : records) record += '\r';
  return repeated(records);
}

std::string tesk2Record() { return std::string("T\x06\x80\x10\x84\x00\x90\xFF\x7F\xF0\x0C\x24\x00\xFF", 14); }

std::string noise() {
  std::mt19937 generator(1);  // NOLINT: the same noise in every run
  std::string stream(kStreamBytes, '\0');
  for (auto& byte : stream) byte = static_cast<char>(generator() & 0xFFU);
  return stream;
}

// Feeds the stream in blocks of the size a port delivers at most.
template <class Framer>
void frameAll(benchmark::State& state, const Framer& fresh, const std::string& stream) {
  constexpr std::size_t kBlock = 4096;
  const Bytes all{reinterpret_cast<const std::uint8_t*>(stream.data()), stream.size()};
  std::int64_t good = 0;
  for ([[maybe_unused]] auto _ : state) {
    Framer framer = fresh;
    for (std::size_t start = 0; start < all.size(); start += kBlock) {
      Bytes block = all.subspan(start, std::min(kBlock, all.size() - start));
      while (!block.empty()) {
        const FrameStep step = framer.feed(block);
        block = block.subspan(step.used);
        if (step.result != FrameStep::Result::good) continue;
        benchmark::DoNotOptimize(framer.record());
        ++good;
      }
    }
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(all.size()));
  state.counters["records"] = benchmark::Counter(static_cast<double>(good), benchmark::Counter::kIsRate);
}

void frameAsciiClean(benchmark::State& state) { frameAll(state, AsciiFramer(12), asciiStream()); }
void frameAsciiNoise(benchmark::State& state) { frameAll(state, AsciiFramer(12), noise()); }
void frameIceClean(benchmark::State& state) { frameAll(state, IceFramer(), repeated({"T123I045", "T045I999"})); }
void frameTesk2Clean(benchmark::State& state) {
  frameAll(state, Tesk2Framer(), repeated({tesk2Record() + "\xFF\xFF"}));
}
void frameTesk2Noise(benchmark::State& state) { frameAll(state, Tesk2Framer(), noise()); }
BENCHMARK(frameAsciiClean);
BENCHMARK(frameAsciiNoise);
BENCHMARK(frameIceClean);
BENCHMARK(frameTesk2Clean);
BENCHMARK(frameTesk2Noise);

void decodeAscii(benchmark::State& state) {
  const auto records = asciiRecords();
  const auto kind = static_cast<Kind>(state.range(0));
  std::size_t next = 0;
  for ([[maybe_unused]] auto _ : state) {
    auto reading = instrumentOf(kind).decode(records[next++ % records.size()], {});
    benchmark::DoNotOptimize(reading);
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
  state.SetLabel(std::string(instrumentOf(kind).name));
}
BENCHMARK(decodeAscii)->DenseRange(0, 6);

void decodeTesk2(benchmark::State& state) {
  const std::string record = tesk2Record();
  for ([[maybe_unused]] auto _ : state) {
    auto reading = instrumentOf(Kind::tesk2).decode(record, {});
    benchmark::DoNotOptimize(reading);
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
}
BENCHMARK(decodeTesk2);

}  // namespace
}  // namespace kalmira
