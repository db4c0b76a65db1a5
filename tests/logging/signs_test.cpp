#include "logging/signs.h"

#include <gmock/gmock.h>

#include "logging/calibration.h"
#include "logging/saving.h"
#include "support/session_fixture.h"

namespace kalmira {
namespace {

TEST(LinkSigns, ASilentInstrumentIsToldButNotWhereRecordsComeOnDemand) {
  const struct {
    Kind kind;
    int mode;
    bool gone;
    std::uint32_t passed;
    const char* words;
  } cases[]{{Kind::orla, kModeAuto, false, 1999, ""},
            {Kind::orla, kModeWheel, false, 4999, "NO DATA 4 s"},
            {Kind::orla, kModeAuto, false, 599999, "NO DATA 599 s"},
            {Kind::orla, kModeAuto, false, 3660000, "NO DATA 61 min"},
            {Kind::orla, kModeAuto, false, 36000000, "NO DATA 10 h"},
            {Kind::glaco, kModeAuto, false, 2000, "NO DATA 2 s"},
            {Kind::glaco, kModeWheel, false, 9000, ""},
            {Kind::glaco, kModeWheel, true, 9000, "NO DATA 9 s"},
            {Kind::vardo, kModeAuto, false, 9000, ""},
            {Kind::vardo, kModeManual, true, 9000, "NO DATA 9 s"}};
  for (const auto& item : cases) {
    TestSession test(item.kind);
    test.go(item.mode);
    test.ports.gone = item.gone;
    test.link.lastRecordTick = test.clock.tick();
    test.clock.advance(item.passed);
    EXPECT_EQ(linkSignsOf(test.session).instrument, item.words) << instrumentOf(item.kind).name << item.passed;
  }
  TestSession slow(Kind::orla);
  slow.begin();
  slow.link.recordPeriodMs = 1500;
  slow.link.lastRecordTick = slow.clock.tick();
  for (const auto& [step, words] : {std::pair{2999U, ""}, {1U, "NO DATA 3 s"}}) {
    EXPECT_EQ(msUntilOtherSigns(slow.session), step == 1 ? 1 : 1000);
    slow.clock.advance(step);
    EXPECT_EQ(linkSignsOf(slow.session).instrument, words) << "two periods";
  }
  LeaveLogging(slow.session, true);
  EXPECT_EQ(linkSignsOf(slow.session), LinkSigns{});
}

// A sleep counts, while the receiver and the instrument get their time before anyone calls them gone.
TEST(LinkSigns, AReceiverWithoutASentenceAndAMachineThatSleptAreOld) {
  TestSession test(Kind::orla);
  test.settings.gpsInput = 1;
  test.begin();
  const auto send = [&test](std::string text) { OnGpsLine(test.session, {.text = std::move(text), .tick = 1}); };
  const auto hear = [&] {
    send("$GPGGA,1,4807.038,N,01131.000,E,2,08,0.9,5.4,M,46.9,M,,*79");
    send("$GPGSA,A,3,1,,,,,,,,,,,,1.8,1,1*0A");
  };
  const auto shown = [&test] {
    auto& texts = test.view.texts;
    return texts[PanelField::fix] + '|' + texts[PanelField::satellites] + '|' + texts[PanelField::pdop];
  };
  hear();
  ASSERT_EQ(shown(), "DGPS| 8|1.8 ");
  test.clock.advance(2999);
  EXPECT_EQ(linkSignsOf(test.session).gps, "");
  for (int i = 0; i < 3; ++i) {
    test.clock.advance(1000);
    send("$GPGGA,bad*00");
    serviceSession(test.session);
  }
  EXPECT_EQ(linkSignsOf(test.session).gps, "NO GPS DATA 5 s");
  EXPECT_EQ(shown(), "|??|1.8 ") << "bad ones come";
  hear();
  EXPECT_EQ(linkSignsOf(test.session).gps, "");
  test.clock.slept = 60000;
  test.clock.advance(60000);
  serviceSession(test.session);
  EXPECT_EQ(linkSignsOf(test.session).gps, "NO GPS DATA 60 s");
  EXPECT_EQ(linkSignsOf(test.session).instrument, "NO DATA 66 s");
  EXPECT_EQ(shown(), "||") << "at once";
  EXPECT_EQ(test.view.texts[PanelField::message], "The machine slept for 60 s");
  test.session.settings.gpsInput = 0;
  EXPECT_EQ(linkSignsOf(test.session).gps, "");
}

// A disk with so much room, and a battery that lasts so long.
struct Supplies {
  std::uint64_t freeBytes;
  std::optional<double> hours;
  std::string text, brief;
  Urgency urgency;
};

TEST(SavingSigns, TellWhatIsInTheFileAndWhatIsLeftAtThePresentRate) {
  // A reading of 24 bytes a second is 86400 an hour.
  for (const auto& item :
       {Supplies{1000000, std::nullopt, "disk 11 h left, battery 87 %", "60 readings, written 0 s ago", Urgency::fine},
        Supplies{100000000, 3.9, "disk over 99 h left, battery 87 %, 3 h", "60 readings, written 0 s ago",
                 Urgency::fine},
        Supplies{172000, 1.99, "disk 119 min left, battery 87 %, 119 min", "disk 119 min left, battery 87 %, 119 min",
                 Urgency::warning},
        Supplies{43000, 1.0, "disk 29 min left, battery 87 %, 60 min", "disk 29 min left", Urgency::alarm},
        Supplies{1000000, 0.4, "disk 11 h left, battery 87 %, 24 min", "battery 87 %, 24 min", Urgency::alarm}}) {
    TestSession test(Kind::orla);
    test.disk.freeBytesLeft = item.freeBytes;
    test.session.readBatteryHours = [&item] { return item.hours; };
    test.settings.readingsInterval = 0.091F;  // every record; they come once a second
    EXPECT_EQ(savingSignsOf(test.session).text(), "");
    test.go();
    serviceSession(test.session);
    for (int i = 0; i < 60; ++i) {
      test.clock.advance(1000);
      test.record("T -0100-0400");
      serviceSession(test.session);
    }
    auto signs = savingSignsOf(test.session);
    EXPECT_EQ(signs.text(), "60 readings, written 0 s ago, " + item.text);
    EXPECT_EQ(signs.shortText(), item.brief);
    EXPECT_EQ(signs.worst(), item.urgency);
  }
}

TEST(SavingSigns, WhatWaitsIsNotInTheFileAndRaisesTheAlarm) {
  TestSession test(Kind::orla);
  test.settings.gpsInput = 1;
  ASSERT_EQ(startSession(test.session), StartOutcome::started);
  EXPECT_EQ(savingSignsOf(test.session).text(), "No file yet: nothing is saved");
  LeaveLogging(test.session, true);
  test.session.readBattery = [] { return std::optional(9); };
  test.go();
  test.record("T -0100-0400");
  serviceSession(test.session);
  test.disk.setRoom(test.disk.content().size());
  test.clock.advance(65000);
  test.record("T -0200-0400");
  serviceSession(test.session);
  const auto signs = savingSignsOf(test.session);
  EXPECT_EQ(signs.text(), "1 reading, GPS 0, written 65 s ago, 1 record waits, battery 9 %");
  EXPECT_EQ(signs.shortText(), "1 record waits");
  EXPECT_EQ(signs.worst(), Urgency::alarm);
  EXPECT_EQ(signs.parts.back().urgency, Urgency::warning) << "of a battery that tells no hours";
}

TEST(CalibrationSign, SaysWhatToDoAndWhatTheRealLimitsLeave) {
  using Stage = CalibrationSign::Stage;
  namespace step = calibration_step;
  TestSession test(Kind::tesk2);
  test.begin();
  EXPECT_EQ(calibrationSignOf(test.session), CalibrationSign{});
  auto& calibration = test.session.calibration;
  calibration.calibrationPhase = -1;
  const struct {
    int active, step;
    std::uint32_t passed;
    CalibrationSign sign;
  } cases[]{{1, 0, 0, {Stage::measuring, "Hold still, VERTICAL", "2 s"}},
            {2, step::kWaitForHorizontal, 1000, {Stage::waiting, "Turn to HORIZONTAL", "9 s"}},
            {2, step::kWaitForHorizontal, 12000, {Stage::waiting, "Turn to HORIZONTAL", "0 s"}},
            {2, step::kMeasuring, 1001, {Stage::measuring, "Hold still, HORIZONTAL", "1 s"}},
            {2, step::kCompleted, 0, {Stage::completed, "Calibrated", "3 s"}},
            {2, step::kHorizontalFailed, 0, {Stage::failed, "FAILED: it was not HORIZONTAL", "3 s"}}};
  for (const auto& item : cases) {
    calibration.calibrationActive = item.active;
    calibration.calibrationStep = item.step;
    calibration.calibrationTick = test.clock.tick() - item.passed;
    EXPECT_EQ(calibrationSignOf(test.session), item.sign) << item.step;
  }
}

}  // namespace
}  // namespace kalmira
