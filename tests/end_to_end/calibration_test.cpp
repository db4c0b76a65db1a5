#include <gmock/gmock.h>

#include "datafile/record_text.h"
#include "end_to_end/programs.h"

namespace kalmira {
namespace {

using namespace std::string_literals;

// With c the conductivities and i the inphase values, first and second; a word of 32768 + 1024 k is 40 k
// mS/m. Vertical: c 80, 120; i 40 x 0.028819 = 1.15276, 160 x 0.00720475 = 1.15276.
const auto kVertical = "T\x06\x8c\0\x90\0\x88\0\x84\0\0\0\0\0\xff\xff"s;
// Horizontal: c 120, 40; i 80 x 0.028819 = 2.30552, -40 x 0.00720475 = -0.28819.
const auto kHorizontal = "T\x02\x84\0\x7c\0\x8c\0\x88\0\0\0\0\0\xff\xff"s;

TEST(Calibration, GivesTheFactorsAndTheirDeletion) {
  const TempFolder folder;
  const Device device;
  Logger logger("TESK2", device.name, folder.path(), {"--show", "--set", "readingsInterval=60"});
  const auto path = logger.file();
  device.wakeUp(logger, kVertical, "value1 C:80.00");

  // An instrument that keeps sending while the operator turns it.
  const auto send = [&](const std::string& record) {
    return [&device, &record] { ASSERT_TRUE(device.send(record + record)); };
  };
  ASSERT_EQ(logger.answer("calibrate"), "ok");
  logger.nextLine("show calibration Vertical Calibration", send(kVertical));
  logger.nextLine("show calibration Rotate to", send(kVertical));
  logger.nextLine("show calibration Preparing for Horizontal Calibration", send(kHorizontal));
  logger.nextLine("show calibration Horizontal Calibration", send(kHorizontal));
  logger.nextLine("show calibration Calibration Completed - Wait for Beep", send(kHorizontal));
  // Back to readings, now with the factors: 120 - 160 and 2.30552 - 2.30552.
  logger.nextLine("show value1 C:-40.00", send(kHorizontal));
  ASSERT_EQ(logger.answer("delete-calibration"), "ok");
  ASSERT_EQ(logger.answer("exit"), "ok");
  ASSERT_EQ(logger.end(), 0);

  // Factors: i V 1 and 2, i H 1 and 2, then what makes a vertical reading twice the horizontal one.
  const auto measured =
      records(26, {"O1     1.153      0.000", "O2     1.153      0.000", "O3     2.306      0.000",
                   "O4    -0.288      0.000", "O5  -160.000      0.000", "O6    40.000      0.000"});
  const auto deleted =
      records(26, {"O1     0.000      1.153", "O2     0.000      1.153", "O3     0.000      2.306",
                   "O4     0.000     -0.288", "O5     0.000   -160.000", "O6     0.000     40.000"});
  const auto content = wiped(readFile(path), 26);
  EXPECT_THAT(content, testing::EndsWith(withTick(26, "*00:00:00.000") + '\n' + measured + deleted));
  EXPECT_EQ(countRecords(content, 26, "Tt"), 0);
}

TEST(Calibration, FailsWithoutReadingsInTheVerticalAndKeepsTheOldFactors) {
  const TempFolder folder;
  const Device device;
  Logger logger("TESK2", device.name, folder.path(),
                {"--show", "--set", "readingsInterval=60", "--set", "calibrationFactors[4]=20"});
  const auto path = logger.file();
  device.wakeUp(logger, kVertical, "value1 C:100.00");
  ASSERT_EQ(logger.answer("calibrate"), "ok");
  const auto horizontal = [&] { ASSERT_TRUE(device.send(kHorizontal)); };
  logger.nextLine("show calibration Vert. Mode Failed - Wait for Beep", horizontal);
  logger.nextLine("show value1 C:140.00", horizontal);
  ASSERT_EQ(logger.answer("exit"), "ok");
  ASSERT_EQ(logger.end(), 0);
  EXPECT_EQ(countRecords(readFile(path), 26, "O"), 6);  // of the line only
}

}  // namespace
}  // namespace kalmira
