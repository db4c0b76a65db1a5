#include "logging/signs.h"

#include <gmock/gmock.h>

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
  EXPECT_EQ(linkSignsOf(test.session).instrument, "NO DATA 63 s");
  EXPECT_EQ(shown(), "||") << "at once";
  EXPECT_EQ(test.view.texts[PanelField::message], "The machine slept for 60 s");
  test.session.settings.gpsInput = 0;
  EXPECT_EQ(linkSignsOf(test.session).gps, "");
}

}  // namespace
}  // namespace kalmira
