#include "link/com_devices.h"

#include <gmock/gmock.h>

#include "support/temp_folder.h"

namespace kalmira {
namespace {

using testing::ElementsAreArray;

const std::string kAdapter = "/dev/serial/by-id/usb-adapter-port0";

struct Case {
  const char* what;
  std::vector<std::pair<int, std::string>> assigned;  // COM number, device
  std::vector<SerialDevice> present;
  std::vector<std::string> first;  // of COM1 and on; the rest is empty
};

TEST(ComDevices, UnassignedNumbersTakeWhatIsLeftInOrderOfName) {
  const std::vector<Case> cases{
      {"nothing there", {}, {}, {}},
      {"order of number, not of letters",
       {},
       {{"/dev/ttyS10", "", ""}, {"/dev/ttyUSB0", "", ""}, {"/dev/ttyS2", "", ""}},
       {"/dev/ttyS2", "/dev/ttyS10", "/dev/ttyUSB0"}},
      {"a stable name is taken", {}, {{"/dev/ttyUSB0", kAdapter, ""}}, {kAdapter}},
      {"an assigned port is not given out again, nor its number",
       {{2, "/dev/ttyS0"}},
       {{"/dev/ttyS0", "", ""}, {"/dev/ttyS1", "", ""}, {"/dev/ttyS3", "", ""}},
       {"/dev/ttyS1", "/dev/ttyS0", "/dev/ttyS3"}},
      {"assigned by its stable name",
       {{1, kAdapter}},
       {{"/dev/ttyUSB0", kAdapter, ""}, {"/dev/ttyUSB1", "", ""}},
       {kAdapter, "/dev/ttyUSB1"}},
      {"assigned although it is not there: the number waits for it",
       {{1, "/dev/ttyUSB7"}, {3, "/dev/pts/4"}},
       {{"/dev/ttyS0", "", ""}},
       {"/dev/ttyUSB7", "/dev/ttyS0", "/dev/pts/4"}},
  };
  for (const auto& test : cases) {
    ComAssignments assigned;
    for (const auto& [number, device] : test.assigned)
      assigned.at(static_cast<std::size_t>(number - 1)) = device;
    auto wanted = test.first;
    wanted.resize(kComPorts);
    EXPECT_THAT(resolveComDevices(assigned, test.present), ElementsAreArray(wanted)) << test.what;
  }
}

TEST(ComDevices, MorePortsThanNumbersFillTheTwelve) {
  std::vector<SerialDevice> present;
  for (int i = 0; i < 20; ++i) present.push_back({"/dev/ttyS" + std::to_string(i), "", ""});
  EXPECT_EQ(resolveComDevices({}, present).back(), "/dev/ttyS11");
}

TEST(ComDevices, LinksAreFollowed) {
  const TempFolder folder;
  writeFile(folder.path() / "ttyA", "");
  writeFile(folder.path() / "ttyB", "");
  const auto a = (folder.path() / "ttyA").string();
  const auto b = (folder.path() / "ttyB").string();
  const auto ids = folder.path() / "by-id";
  std::filesystem::create_directory(ids);
  std::filesystem::create_symlink("../ttyB", ids / "usb-z");
  std::filesystem::create_symlink("../ttyB", ids / "usb-m");
  std::filesystem::create_symlink("../gone", ids / "usb-a");
  EXPECT_EQ(stableNameOf(b, ids), (ids / "usb-m").string());
  EXPECT_EQ(stableNameOf(a, ids), "");
  EXPECT_EQ(stableNameOf(a, folder.path() / "nowhere"), "");

  // Assigned by a link of the user's own: the same port all the same.
  ComAssignments assigned;
  assigned[4] = (ids / "usb-z").string();
  const auto devices = resolveComDevices(assigned, {{a, "", ""}, {b, (ids / "usb-m").string(), ""}});
  EXPECT_EQ(devices[0], a);
  EXPECT_EQ(devices[1], "");
  EXPECT_EQ(devices[4], assigned[4]);
}

}  // namespace
}  // namespace kalmira
