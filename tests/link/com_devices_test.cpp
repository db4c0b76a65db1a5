#include "link/com_devices.h"

#include <gmock/gmock.h>

#include "link/device_claim.h"
#include "support/temp_folder.h"

namespace kalmira {
namespace {

using testing::ElementsAreArray;

const std::string kAdapter = "/dev/serial/by-id/usb-adapter-port0";
const std::vector<SerialDevice> kPresent{{"/dev/ttyUSB0", kAdapter, "USB adapter"}, {"/dev/ttyS0", "", ""}};

struct Case {
  const char* what;
  std::vector<std::pair<int, std::string>> assigned;  // COM number, device
  std::vector<std::string> present, first;            // of COM1 and on; the rest is empty
};

TEST(ComDevices, UnassignedNumbersTakeWhatIsLeftInOrderOfName) {
  std::vector<std::string> twenty, twelve;
  for (int i = 0; i < 20; ++i) twenty.push_back("/dev/ttyS" + std::to_string(i));
  twelve.assign(twenty.begin(), twenty.begin() + kComPorts);
  const std::string S0 = twenty[0], S1 = twenty[1], S2 = twenty[2], S10 = twenty[10], usb = "/dev/ttyUSB0";
  // Of the present ones, USB0 has a stable name.
  for (const auto& item : {Case{"nothing there", {}, {}, {}},
                           Case{"order of number, not of letters", {}, {S10, usb, S2}, {S2, S10, kAdapter}},
                           Case{"an assigned port is not given out again", {{2, S0}}, {S0, S1, S2}, {S1, S0, S2}},
                           Case{"assigned by its stable name", {{1, kAdapter}}, {usb, S1}, {kAdapter, S1}},
                           Case{"not there: the number waits for it", {{1, S1}, {3, S2}}, {S0}, {S1, S0, S2}},
                           Case{"more ports than numbers", {}, twenty, twelve}}) {
    ComAssignments assigned;
    std::vector<SerialDevice> present;
    for (const auto& [number, device] : item.assigned) assigned.at(static_cast<std::size_t>(number - 1)) = device;
    for (const auto& path : item.present) present.push_back({path, path == usb ? kAdapter : "", ""});
    auto wanted = item.first;
    wanted.resize(kComPorts);
    EXPECT_THAT(resolveComDevices(assigned, present), ElementsAreArray(wanted)) << item.what;
  }
}

TEST(ComDevices, LinksAreFollowed) {
  const TempFolder folder;
  const auto a = (folder.path() / "ttyA").string();
  const auto b = (folder.path() / "ttyB").string();
  const auto ids = folder.path() / "by-id";
  for (const auto& path : {a, b}) writeFile(path, "");
  std::filesystem::create_directory(ids);
  for (const auto& [link, to] : {std::pair{"usb-z", "../ttyB"}, {"usb-m", "../ttyB"}, {"usb-a", "../gone"}})
    std::filesystem::create_symlink(to, ids / link);
  EXPECT_EQ(stableNameOf(b, ids), (ids / "usb-m").string());
  EXPECT_EQ(stableNameOf(a, ids), "");
  // Assigned by a link of the user's own: the same port all the same.
  ComAssignments assigned;
  assigned[4] = (ids / "usb-z").string();
  const auto devices = resolveComDevices(assigned, {{a, "", ""}, {b, (ids / "usb-m").string(), ""}});
  EXPECT_TRUE(devices[0] == a && devices[1].empty() && devices[4] == assigned[4]);
}

TEST(DeviceTexts, SayWhatIsThereOrWhatIsInTheWay) {
  const DeviceLook look = [](const std::string& path) -> std::optional<PortError> {
    if (path != "/dev/ttyS0") return std::nullopt;
    return PortError{.kind = PortErrorKind::denied, .text = deniedText(path, "root", "dialout")};
  };
  for (const auto& [path, text] : {std::pair{kAdapter, "/dev/ttyUSB0, USB adapter"},
                                   {std::string(), "No device: connect one, or choose it at \"Devices...\""},
                                   {"/dev/ttyS0",
                                    "No permission: /dev/ttyS0 is for members of the group dialout: run \"sudo usermod "
                                    "-a -G dialout $USER\" and log in again"}}) {
    EXPECT_EQ(deviceTextOf(path, kPresent, look).text, text);
    EXPECT_EQ(deviceTextOf(path, kPresent, look).trouble, path != kAdapter) << path;
  }
  // Looking opens nothing.
  EXPECT_EQ(lookAtDevice("/dev/kalmira-nowhere").value().kind, PortErrorKind::missing);
  EXPECT_FALSE(lookAtDevice("/dev/null"));
}

TEST(DeviceTexts, ADeviceBelongsToOneNumber) {
  ComAssignments assigned;
  assignDevice(assigned, 1, "/dev/null");
  assignDevice(assigned, 12, "/dev/../dev/null");
  EXPECT_EQ(assigned[0], "");
  for (const auto& [number, device] : {std::pair{1, ""}, {13, "/dev/null"}}) assignDevice(assigned, number, device);
  EXPECT_EQ(assigned[11], "/dev/../dev/null");
  assignDevice(assigned, 12, "");
  EXPECT_EQ(assigned, ComAssignments{});
}

}  // namespace
}  // namespace kalmira
