#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "platform/battery.h"
#include "platform/idle.h"

namespace kalmira {
namespace {

namespace fs = std::filesystem;
using Supply = std::map<std::string, std::string>;  // file name, content

struct BatteryCase {
  std::string_view what;
  std::vector<Supply> supplies;
  std::optional<int> percent;
};

TEST(Battery, TellsTheChargeOfTheMachinesOwnBatteries) {
  const Supply mains{{"type", "Mains\n"}, {"online", "1\n"}};
  const Supply mouse{{"type", "Battery\n"}, {"scope", "Device\n"}, {"capacity", "12\n"}};
  const Supply battery{{"type", "Battery\n"}, {"scope", "System\n"}, {"capacity", "61\n"}};
  const std::vector<BatteryCase> cases{
      {"nothing", {}, std::nullopt},
      {"mains and a mouse", {mains, mouse}, std::nullopt},
      {"battery among others", {mains, mouse, battery}, 61},
      {"scope not told", {{{"type", "Battery\n"}, {"capacity", "100\n"}}}, 100},
      {"mean of two, rounded", {battery, {{"type", "Battery\n"}, {"capacity", "80\n"}}}, 71},
      {"charge not told", {{{"type", "Battery\n"}}}, std::nullopt},
      {"charge out of range", {{{"type", "Battery\n"}, {"capacity", "255\n"}}}, std::nullopt},
  };
  const fs::path base = fs::path(testing::TempDir()) / "kalmira_battery_test";
  for (const BatteryCase& testCase : cases) {
    fs::remove_all(base);
    for (std::size_t i = 0; i < testCase.supplies.size(); ++i) {
      const fs::path folder = base / std::to_string(i);
      fs::create_directories(folder);
      for (const auto& [name, content] : testCase.supplies[i]) std::ofstream(folder / name) << content;
    }
    EXPECT_EQ(batteryPercent(base), testCase.percent) << testCase.what;
  }
  fs::remove_all(base);
}

TEST(IdleInhibitor, IsNoErrorWhereNoServiceAnswers) {
  setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/bus", 1);
  IdleInhibitor inhibitor("Kalmira");
  EXPECT_FALSE(inhibitor.renew());
  EXPECT_FALSE(inhibitor.renew());
}

}  // namespace
}  // namespace kalmira
