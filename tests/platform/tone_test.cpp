#include "platform/tone.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <future>
#include <thread>

#include "platform/power.h"
#include "support/temp_folder.h"

namespace kalmira {
namespace {

using namespace std::chrono_literals;

bool waitUntil(const std::function<bool()>& happened) {
  for (int i = 0; i < 1000 && !happened(); ++i) std::this_thread::sleep_for(5ms);
  return happened();
}

TEST(Tone, HasItsPitchItsLengthAndNoClick) {
  const auto samples = samplesOf({.hertz = 500, .milliseconds = 100, .times = 2});
  ASSERT_EQ(samples.size(), 3U * kToneRate / 10);
  int crossings = 0;
  for (std::size_t i = 1; i < samples.size(); ++i) crossings += samples[i - 1] < 0 && samples[i] >= 0 ? 1 : 0;
  EXPECT_NEAR(crossings, 100, 2) << "500 a second, for two tenths";
  EXPECT_EQ(std::count(samples.begin() + kToneRate / 10, samples.begin() + kToneRate / 5, 0), kToneRate / 10);
  for (std::size_t i = 1; i < 20; ++i) EXPECT_LT(std::abs(samples[i] - samples[i - 1]), 1500);
  EXPECT_GT(*std::max_element(samples.begin(), samples.end()), 15000);
}

struct Heard {
  std::atomic<int> played{0}, opened{0}, failed{0};
  std::atomic<bool> good{true};
  std::shared_future<void> gate;  // what playing waits for, if anything
};

class TestSound final : public SoundDevice {
 public:
  explicit TestSound(Heard& heard) : heard_(heard) { ++heard_.opened; }
  bool play(std::span<const std::int16_t>) override {
    if (heard_.gate.valid()) heard_.gate.wait();
    if (heard_.good) ++heard_.played;
    return heard_.good;
  }

 private:
  Heard& heard_;
};

TEST(TonePlayer, PlaysWithoutWaitingAndSaysWhatNobodyCanHear) {
  std::promise<void> gate;
  static Heard heard;  // a device that hangs outlives its player
  heard.gate = gate.get_future().share();
  const auto factory = []() -> std::unique_ptr<SoundDevice> { return std::make_unique<TestSound>(heard); };
  const auto failed = [] { ++heard.failed; };
  {
    TonePlayer player(factory, failed);
    for (int i = 0; i < 50; ++i) player.play({});
    EXPECT_EQ(heard.played, 0) << "play returns at once";
    gate.set_value();
    EXPECT_TRUE(waitUntil([&] { return heard.played == 3; }));
    heard.good = false;
    player.play({});
    EXPECT_TRUE(waitUntil([&] { return heard.failed == 1; }));
    heard.good = true;
    player.play({});
    EXPECT_TRUE(waitUntil([&] { return heard.failed == 2; })) << "not opened again so soon";
    EXPECT_EQ(heard.opened, 1);
  }
  EXPECT_EQ(heard.played, 3);
  TonePlayer({}, failed).play({});
  EXPECT_EQ(heard.failed, 3) << "no sound at all";
  std::promise<void> never;
  heard.gate = never.get_future().share();
  const auto begun = std::chrono::steady_clock::now();
  {
    TonePlayer hanging(factory, failed);
    hanging.play({});
    EXPECT_TRUE(waitUntil([&] { return heard.opened == 2; }));
  }
  EXPECT_LT(std::chrono::steady_clock::now() - begun, 4s) << "a hanging device holds up no end";
  never.set_value();
  EXPECT_TRUE(waitUntil([&] { return heard.played == 4; }));
  EXPECT_EQ(heard.failed, 3);
}

TEST(BatteryHours, AreWhatIsStoredByWhatIsDrawn) {
  const TempFolder folder;
  const auto battery = [&folder](const char* name, const std::vector<std::pair<std::string, std::string>>& files) {
    std::filesystem::create_directories(folder.path() / name);
    writeFile(folder.path() / name / "type", "Battery\n");
    writeFile(folder.path() / name / "capacity", "50\n");
    for (const auto& [file, text] : files) writeFile(folder.path() / name / file, text);
  };
  EXPECT_EQ(batteryHours(folder.path()), std::nullopt);
  battery("BAT0", {{"status", "Discharging\n"}, {"energy_now", "30000000\n"}, {"power_now", "10000000\n"}});
  EXPECT_EQ(batteryHours(folder.path()), 3.0);
  battery("BAT1", {{"status", "Unknown\n"}, {"energy_now", "20000000\n"}, {"power_now", "0\n"}});
  EXPECT_EQ(batteryHours(folder.path()), 5.0) << "the second is kept for later";
  battery("BAT1", {{"status", "Charging\n"}});
  EXPECT_EQ(batteryHours(folder.path()), std::nullopt);
  std::filesystem::remove_all(folder.path() / "BAT0");
  battery("BAT1", {{"status", "Discharging\n"}, {"charge_now", "1200000\n"}, {"current_now", "-800000\n"}});
  std::filesystem::remove(folder.path() / "BAT1" / "energy_now");
  EXPECT_EQ(batteryHours(folder.path()), 1.5);
}

}  // namespace
}  // namespace kalmira
