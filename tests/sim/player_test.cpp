#include "sim/player.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

namespace kalmira::sim {
namespace {

// Notes what happens when, in tenths of a second: "3i" a record, "3g" a sentence, "3-" unplugged, "3+"
// plugged.
struct Recorder final : Pace, Outlet {
  bool waitUntil(double time_s) override {
    now_s = time_s;
    return time_s < stop_s;
  }
  void send(Port port, std::string_view bytes, double) override {
    note(port == Port::gps ? 'g' : 'i');
    sent += bytes;
  }
  void unplug() override { note('-'); }
  std::string plug() override {
    note('+');
    return {};
  }
  void note(char what) { log += fmt::format("{:.0f}{} ", now_s * 10, what); }

  double now_s = 0;
  double stop_s = std::numeric_limits<double>::infinity();
  std::string log;
  std::string sent;
};

// `count` records, one every 0.1 s; every third is a sentence.
TransmissionSource ticking(int count) {
  return [count, i = 0]() mutable -> std::optional<Transmission> {
    if (i == count) return std::nullopt;
    const auto number = i++;
    return Transmission{number / 10.0, number % 3 == 2 ? Port::gps : Port::instrument, std::string(100, 'x')};
  };
}

constexpr double kForever = std::numeric_limits<double>::infinity();

TEST(Player, FaultsFallWhereTheyAreAsked) {
  struct Row {
    const char* what;
    Faults faults;
    double end_s;
    double stop_s;
    std::string expected;
  };
  const std::vector<Row> rows{
      {"no faults, to the end of the source", {}, kForever, kForever, "0i 1i 2g 3i 4i 5g "},
      {"an end", {}, 0.3, kForever, "0i 1i 2g "},
      {"stopped", {}, kForever, 0.2, "0i 1i "},
      {"silence", {.silence = {{0.1, 0.15}, {0.45, 0.1}}}, kForever, kForever, "0i 3i 4i "},
      {"unplugged", {.unplug = {{0.15, 0.2}}}, kForever, kForever, "0i 1i 2- 4+ 4i 5g "},
      {"unplugged twice, overlapping",
       {.unplug = {{0.1, 0.2}, {0.2, 0.25}}},
       kForever,
       kForever,
       "0i 1- 4+ 5g "},
      {"unplugged for no time", {.unplug = {{0.1, 0}}}, 0.2, kForever, "0i 1i "},
      {"ended while unplugged", {.unplug = {{0.1, 9}}}, 0.4, kForever, "0i 1- "}};
  for (const auto& row : rows) {
    Recorder recorder;
    recorder.stop_s = row.stop_s;
    EXPECT_EQ(play(ticking(6), row.faults, row.end_s, recorder, recorder), "") << row.what;
    EXPECT_EQ(recorder.log, row.expected) << row.what;
  }
}

TEST(Player, NoiseHitsItsShareOfTheBytesAndIsRepeatable) {
  std::vector<std::string> runs;
  for (const std::uint64_t seed : {1U, 1U, 2U}) {
    Recorder recorder;
    play(ticking(200), {.seed = seed, .noise = 0.05}, kForever, recorder, recorder);
    runs.push_back(recorder.sent);
  }
  const auto untouched = std::count(runs[0].begin(), runs[0].end(), 'x');
  EXPECT_NEAR(static_cast<double>(runs[0].size()) - static_cast<double>(untouched), 1000, 150);
  EXPECT_EQ(runs[0], runs[1]);
  EXPECT_NE(runs[0], runs[2]);
}

}  // namespace
}  // namespace kalmira::sim
