#include <gtest/gtest.h>

#include <map>

#include "platform/power.h"
#include "support/temp_folder.h"

namespace kalmira {
namespace {

using Supply = std::map<std::string, std::string>;  // file name, content

TEST(Battery, TellsTheChargeOfTheMachinesOwnBatteries) {
  struct Case {
    std::string_view what;
    std::vector<Supply> supplies;
    std::optional<int> percent;
  };
  const Supply mains{{"type", "Mains\n"}, {"online", "1\n"}};
  const Supply mouse{{"type", "Battery\n"}, {"scope", "Device\n"}, {"capacity", "12\n"}};
  const Supply battery{{"type", "Battery\n"}, {"scope", "System\n"}, {"capacity", "61\n"}};
  for (const auto& item : std::initializer_list<Case>{
           {"nothing", {}, std::nullopt},
           {"mains and a mouse", {mains, mouse}, std::nullopt},
           {"battery among others", {mains, mouse, battery}, 61},
           {"scope not told", {{{"type", "Battery\n"}, {"capacity", "100\n"}}}, 100},
           {"mean of two, rounded", {battery, {{"type", "Battery\n"}, {"capacity", "80\n"}}}, 71},
           {"charge not told", {{{"type", "Battery\n"}}}, std::nullopt},
           {"charge out of range", {{{"type", "Battery\n"}, {"capacity", "255\n"}}}, std::nullopt}}) {
    const TempFolder base;
    for (std::size_t i = 0; i < item.supplies.size(); ++i) {
      for (const auto& [name, content] : item.supplies[i]) writeFile(base.path() / std::to_string(i) / name, content);
    }
    EXPECT_EQ(batteryPercent(base.path()), item.percent) << item.what;
  }
}

TEST(IdleInhibitor, IsNoErrorWhereNoServiceAnswers) {
  setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/bus", 1);
  IdleInhibitor inhibitor("Kalmira");
  EXPECT_FALSE(inhibitor.renew());
  EXPECT_FALSE(inhibitor.renew());
}

}  // namespace
}  // namespace kalmira
