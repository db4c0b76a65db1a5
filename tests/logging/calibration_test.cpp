#include <gmock/gmock.h>

#include "logging/calibration.h"
#include "support/session_fixture.h"

namespace kalmira {
namespace {

using testing::ElementsAre;

constexpr char kVertical = 6;    // no marker
constexpr char kHorizontal = 2;  // no marker

// Words in record order: conductivity 2, inphase 2, conductivity 1, inphase 1, auxiliary 1 and 2.
std::string record(char mode, std::array<unsigned, 6> words) {
  std::string text{'T', mode};
  for (const auto word : words) {
    text += static_cast<char>(word >> 8U);
    text += static_cast<char>(word & 0xFFU);
  }
  return text;
}

struct CalibrationTest : testing::Test {
  TestSession test{Kind::tesk2};
  Calibration& calibration = test.session.calibration;

  void SetUp() override {
    test.settings.calibrationFactors = {9, 8, 7, 6, 5, 4};
    test.begin();
    ASSERT_TRUE(startCalibration(test.session));
  }
  // One reading every 50 ms; conductivities 40 and 80 mS/m with vertical, 16 and 24 with horizontal dipoles.
  void readings(char mode, int count) {
    const bool vertical = mode == kVertical;
    for (int i = 0; i < count; ++i) {
      test.clock.advance(50);
      test.record(vertical ? record(mode, {34816, 33792, 33792, 33792, 0, 0})
                           : record(mode, {33382, 32768, 33178, 33280, 0, 0}));
    }
  }
  std::string text() { return test.view.texts[PanelField::calibration]; }
};

TEST_F(CalibrationTest, GoodSequenceSavesAndWritesTheFactors) {
  EXPECT_EQ(test.view.questions.at(0).text,
            "Place  TESK-2  on  Monopod\r\nin  Vertical  Dipole  Mode\r\nand  press  YES  when  ready\r\n");
  readings(kVertical, 40);
  EXPECT_EQ(text(), "Vertical Calibration");
  readings(kVertical, 1);
  EXPECT_EQ(text(), "Rotate to Horiz. Mode within 60 s");
  readings(kHorizontal, 22);
  EXPECT_EQ(text(), "Preparing for Horizontal Calibration");
  readings(kHorizontal, 41);
  EXPECT_EQ(text(), "Horizontal Calibration");
  readings(kHorizontal, 2);
  EXPECT_EQ(text(), "Calibration Completed - Wait for Beep");

  // Raw inphase words 33792 and 33280: 40 and 20 times the channel's factor; 33792 in the second channel.
  const auto& factors = test.settings.calibrationFactors;
  EXPECT_NEAR(factors[0], 40 * 0.028819, 1e-4);
  EXPECT_NEAR(factors[1], 40 * 0.00720475, 1e-4);
  EXPECT_NEAR(factors[2], 20 * 0.028819, 1e-4);
  EXPECT_NEAR(factors[3], 0.0, 1e-4);
  EXPECT_NEAR(factors[4], 40.0 - 2 * 16.016, 0.01);
  EXPECT_NEAR(factors[5], 80.0 - 2 * 23.984, 0.01);
  ASSERT_EQ(test.saved.size(), 1U);
  EXPECT_EQ(test.saved[0].calibrationFactors, factors);
  const auto records = test.records();
  ASSERT_EQ(records.size(), 6U);
  EXPECT_EQ(records[0], "O1     1.153      9.000  ");
  EXPECT_EQ(records[5], "O6    32.031      4.000  ");

  readings(kHorizontal, 61);
  EXPECT_EQ(calibration.calibrationPhase, 0);
  EXPECT_EQ(text(), "");
  EXPECT_NEAR(test.settings.calibrationFactors[0], 40 * 0.028819, 1e-4);

  ASSERT_TRUE(deleteCalibration(test.session));
  EXPECT_NEAR(calibration.deletedCalibration[0], 40 * 0.028819, 1e-4);
  EXPECT_EQ(test.settings.calibrationFactors[0], 0.0F);
  EXPECT_EQ(test.records().at(6), "O1     0.000      1.153  ");
}

TEST_F(CalibrationTest, ThirtyReadingsPassAndTwentyNineFail) {
  readings(kVertical, 29);
  readings(kHorizontal, 12);  // not counted
  EXPECT_EQ(calibration.calibrationStep, 4);
  readings(kVertical, 1);
  EXPECT_EQ(text(), "Vert. Mode Failed - Wait for Beep");
  readings(kVertical, 60);
  EXPECT_EQ(calibration.calibrationPhase, 0);
  EXPECT_EQ(test.settings.calibrationFactors[0], 9.0F) << "the factors from before are back";
  EXPECT_TRUE(test.saved.empty());
  EXPECT_TRUE(test.records().empty());

  ASSERT_TRUE(startCalibration(test.session));
  readings(kVertical, 30);
  readings(kHorizontal, 11);
  EXPECT_EQ(calibration.calibrationActive, 2);
  EXPECT_EQ(calibration.calibrationStep, 0);
}

TEST_F(CalibrationTest, StayingVerticalFailsAfterTenSeconds) {
  readings(kVertical, 41);
  readings(kVertical, 200);
  EXPECT_EQ(calibration.calibrationStep, 0);
  readings(kVertical, 2);
  EXPECT_EQ(text(), "Hor. Mode Not Detected - Wait for Beep");
}

TEST_F(CalibrationTest, NoSecondOneBeginsMeanwhile) {
  EXPECT_FALSE(commandAllowed(test.session, Command::calibrate));
  EXPECT_FALSE(commandAllowed(test.session, Command::deleteCalibration));
  abandonCalibration(test.session);
  EXPECT_TRUE(commandAllowed(test.session, Command::calibrate));
  test.view.answer = false;
  EXPECT_FALSE(startCalibration(test.session));
  EXPECT_EQ(test.settings.calibrationFactors[0], 9.0F) << "the answer no changes nothing";
}

TEST_F(CalibrationTest, LeavingInTheMiddlePutsTheFactorsBack) {
  readings(kVertical, 41);
  ASSERT_TRUE(LeaveLogging(test.session, false));
  EXPECT_EQ(test.settings.calibrationFactors[5], 4.0F);
}

TEST_F(CalibrationTest, ANewLineMeanwhileWritesTheFactorsThatHold) {
  readings(kVertical, 10);
  newLine(test.session, proposeLine(test.settings, 0));
  EXPECT_EQ(test.records().at(4), "O1     9.000      0.000  ");
  EXPECT_EQ(test.saved.at(0).calibrationFactors[0], 9.0F);
}

}  // namespace
}  // namespace kalmira
