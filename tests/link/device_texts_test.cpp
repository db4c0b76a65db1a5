#include "link/device_texts.h"

#include <gmock/gmock.h>

#include "link/device_claim.h"

namespace kalmira {
namespace {

using ::testing::ElementsAre;

const std::vector<SerialDevice> kPresent{
    {.path = "/dev/ttyUSB0", .stablePath = "/dev/serial/by-id/usb-A", .description = "USB adapter"},
    {.path = "/dev/ttyS0", .stablePath = {}, .description = {}}};

DeviceLook refusing(const std::string& path) {
  return [path](const std::string& looked) -> std::optional<PortError> {
    if (looked != path) return std::nullopt;
    return PortError{.kind = PortErrorKind::denied, .text = deniedText(path, "root", "dialout")};
  };
}

TEST(DeviceTexts, SayWhatIsThereOrWhatIsInTheWay) {
  const auto fine = refusing("none");
  EXPECT_EQ(deviceText("/dev/serial/by-id/usb-A", kPresent, fine).text, "/dev/ttyUSB0, USB adapter");
  EXPECT_EQ(deviceText("/dev/ttyS0", kPresent, fine).text, "/dev/ttyS0");
  EXPECT_EQ(deviceText("/dev/pts/7", kPresent, fine).text, "/dev/pts/7");
  EXPECT_FALSE(deviceText("/dev/pts/7", kPresent, fine).trouble);
  EXPECT_TRUE(deviceText("", kPresent, fine).trouble);
  const auto denied = deviceText("/dev/serial/by-id/usb-A", kPresent, refusing("/dev/ttyUSB0"));
  EXPECT_TRUE(denied.trouble);
  EXPECT_EQ(
      denied.text,
      "No permission: /dev/ttyUSB0 is for members of the group dialout: run \"sudo usermod -a -G dialout "
      "$USER\" and log in again");
}

TEST(DeviceTexts, LookAtDeviceOpensNothing) {
  const auto missing = lookAtDevice("/dev/kalmira-nowhere");
  ASSERT_TRUE(missing);
  EXPECT_EQ(missing->kind, PortErrorKind::missing);
  const auto folder = lookAtDevice("/dev");
  ASSERT_TRUE(folder);
  EXPECT_EQ(folder->text, "/dev is a folder, not a serial port");
  EXPECT_FALSE(lookAtDevice("/dev/null"));
}

TEST(DeviceTexts, ChoicesHoldWhatIsThereAndWhatWasAssigned) {
  ComAssignments assigned;
  assigned[2] = "/dev/ttyUSB0";
  assigned[4] = "/dev/rfcomm0";
  const auto choices = deviceChoices(assigned, kPresent);
  std::vector<std::string> texts;
  for (const auto& choice : choices) texts.push_back(choice.text + "|" + choice.path);
  // A device that was assigned by its plain name keeps it, and stands there once.
  EXPECT_THAT(texts, ElementsAre("Automatic|", "ttyUSB0, USB adapter|/dev/ttyUSB0", "ttyS0|/dev/ttyS0",
                                 "/dev/rfcomm0|/dev/rfcomm0"));
  EXPECT_EQ(choiceOf(choices, "/dev/rfcomm0"), 3U);
  EXPECT_EQ(choiceOf(choices, ""), 0U);
}

TEST(DeviceTexts, ADeviceBelongsToOneNumber) {
  ComAssignments assigned;
  assignDevice(assigned, 1, "/dev/null");
  assignDevice(assigned, 12, "/dev/../dev/null");
  EXPECT_EQ(assigned[0], "");
  EXPECT_EQ(assigned[11], "/dev/../dev/null");
  assignDevice(assigned, 1, "");
  assignDevice(assigned, 13, "/dev/null");
  EXPECT_EQ(assigned[11], "/dev/../dev/null");
  assignDevice(assigned, 12, "");
  EXPECT_EQ(assigned, ComAssignments{});
}

TEST(DeviceTexts, RowsNameNumberAndDevice) {
  EXPECT_EQ(comRowText(1, "/dev/serial/by-id/usb-A", true, kPresent),
            "COM1:  ttyUSB0, USB adapter (automatic)");
  EXPECT_EQ(comRowText(12, "/dev/pts/7", false, kPresent), "COM12:  7");
  EXPECT_EQ(comRowText(3, "", true, kPresent), "COM3:  -");
}

}  // namespace
}  // namespace kalmira
