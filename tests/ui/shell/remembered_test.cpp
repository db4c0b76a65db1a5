#include "ui/shell/remembered.h"

#include <gmock/gmock.h>

#include <QSettings>

#include "support/temp_folder.h"

namespace kalmira {
namespace {

class Remembered : public testing::Test {
 protected:
  // Each a store of its own, as the next run of the program has it.
  QSettings store() const {
    return QSettings(QString::fromStdString((folder_.path() / "kalmira.conf").string()), QSettings::IniFormat);
  }
  void write(const std::string& text) { writeFile(folder_.path() / "kalmira.conf", text); }

 private:
  TempFolder folder_;
};

TEST_F(Remembered, TheNextRunFindsWhatWasChosen) {
  ComAssignments devices;
  devices[0] = "/dev/serial/by-id/usb, with a comma";
  devices[11] = "/dev/pts/1";
  {
    auto first = store();
    rememberKind(first, {.kind = Kind::orla, .ice = true});
    rememberNight(first, true);
    devices[5] = "/dev/ttyS5";
    rememberComDevices(first, devices);
    devices[5].clear();
    rememberComDevices(first, devices);
  }
  const auto kind = lastInstrument(store());
  ASSERT_TRUE(kind);
  EXPECT_EQ(kind->kind, Kind::orla);
  EXPECT_TRUE(kind->ice);
  EXPECT_TRUE(rememberedNight(store()));
  EXPECT_EQ(rememberedComDevices(store()), devices);
}

TEST_F(Remembered, WhatMakesNoSenseIsNotThere) {
  for (const std::string text : {"",
                                 "[instrument]\nkind=MAGNETOMETER\nice=yes\n[screen]\ntheme=17\n"
                                 "[com]\n0=/dev/zero\n1=COM1\n2=@Invalid()\n3=/dev/ttyS1, /dev/ttyS2\n13=/dev/x\n"}) {
    write(text);
    EXPECT_FALSE(lastInstrument(store()));
    EXPECT_FALSE(rememberedNight(store()));
    EXPECT_THAT(rememberedComDevices(store()), testing::Each(testing::IsEmpty()));
  }
  // Only an ORLA can be for ice work.
  write("[instrument]\nkind=GLACO\nice=yes\n");
  const auto kind = lastInstrument(store());
  ASSERT_TRUE(kind);
  EXPECT_EQ(kind->kind, Kind::glaco);
  EXPECT_FALSE(kind->ice);
}

}  // namespace
}  // namespace kalmira
