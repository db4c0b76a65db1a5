#include "ui/setup/setup_dialogs.h"

#include <gmock/gmock.h>

#include <QListWidget>

#include "link/device_claim.h"
#include "support/dialogs.h"

namespace kalmira {
namespace {

using ::testing::ElementsAre;

struct DevicesDialog : DialogTest {
  DevicesDialog() : DialogTest({480, 640}) {}
  std::optional<ComAssignments> run(const DialogActor::Act& act) {
    const auto look = [](const std::string& path) -> std::optional<PortError> {
      if (path != "/dev/ttyS1") return std::nullopt;
      return PortError{PortErrorKind::denied, deniedText(path, "root", "dialout")};
    };
    return in("Devices", act, [&] {
      return runDevicesDialog(&window, assigned, {.present = [this] { return present; }, .look = look});
    });
  }
  static std::string row(QDialog& dialog, int com) {
    return part<QListWidget>(dialog, "ports").item(com - 1)->text().toStdString();
  }

  ComAssignments assigned;
  std::vector<SerialDevice> present{{.path = "/dev/ttyS1", .stablePath = {}, .description = "chip"},
                                    {.path = "/dev/ttyUSB0", .stablePath = {}, .description = "adapter"}};
};

TEST_F(DevicesDialog, AssignsByKeysAndSaysWhatIsInTheWay) {
  const auto changed = run([](QDialog& dialog) {
    EXPECT_EQ(row(dialog, 1), "COM1:  ttyS1, chip (automatic)");
    EXPECT_EQ(row(dialog, 2), "COM2:  ttyUSB0, adapter (automatic)");
    const auto& box = list(dialog, "device");
    std::vector<std::string> choices;
    for (int i = 0; i < box.count(); ++i) choices.push_back(box.itemText(i).toStdString());
    EXPECT_THAT(choices, ElementsAre("Automatic", "ttyS1, chip", "ttyUSB0, adapter"));
    auto& line = part<QLabel>(dialog, "deviceLine");
    EXPECT_TRUE(line.text().contains("sudo usermod -a -G dialout"));
    EXPECT_TRUE(line.font().bold());
    press(dialog, Qt::Key_End);  // COM12
    EXPECT_TRUE(line.text().startsWith("No device"));
    press(dialog, Qt::Key_Tab);
    press(dialog, Qt::Key_End);
    EXPECT_EQ(row(dialog, 12), "COM12:  ttyUSB0, adapter");
    EXPECT_EQ(row(dialog, 2), "COM2:  -") << "it is COM12 now";
    EXPECT_EQ(line.text(), "/dev/ttyUSB0, adapter");
    EXPECT_FALSE(line.font().bold());
    press(dialog, Qt::Key_Return);
  });
  ASSERT_TRUE(changed);
  EXPECT_EQ((*changed)[11], "/dev/ttyUSB0");
  EXPECT_EQ((*changed)[1], "");
}

TEST_F(DevicesDialog, SeesDevicesComeAndGoAndKeepsTheSelection) {
  assigned[4] = "/dev/ttyUSB9";
  EXPECT_FALSE(run([this](QDialog& dialog) {
    auto& ports = part<QListWidget>(dialog, "ports");
    auto& box = list(dialog, "device");
    ports.setCurrentRow(4);
    EXPECT_EQ(box.currentText(), "/dev/ttyUSB9");
    present.push_back({.path = "/dev/ttyUSB9", .stablePath = {}, .description = "plugged in"});
    EXPECT_TRUE(QTest::qWaitFor([&] { return box.currentText() == "ttyUSB9, plugged in"; }, 3000));
    EXPECT_EQ(ports.currentRow(), 4);
    // An open list stays as it is.
    box.showPopup();
    present.clear();
    QTest::qWait(1500);
    EXPECT_EQ(box.count(), 4);
    box.hidePopup();
    EXPECT_TRUE(QTest::qWaitFor([&] { return box.count() == 2; }, 3000));
    EXPECT_EQ(row(dialog, 5), "COM5:  ttyUSB9") << "still assigned";
    EXPECT_EQ(row(dialog, 1), "COM1:  -");
    tapCancel(dialog);
  }));
}

}  // namespace
}  // namespace kalmira
