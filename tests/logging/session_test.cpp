#include <gmock/gmock.h>

#include <algorithm>
#include <limits>

#include "logging/handlers.h"
#include "logging/keys.h"
#include "logging/session_link.h"
#include "support/session_fixture.h"

namespace kalmira {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

// Watch periods without a record.
void silence(TestSession& test, int periods = 1) {
  for (int i = 0; i < periods; ++i) {
    test.clock.advance(test.session.connectionTimeoutMs + 1);
    serviceSession(test.session);
  }
}

// An ORLA's session, with a file, standing by.
struct OrlaSession : testing::Test {
  TestSession test{Kind::orla};
  void SetUp() override { test.begin(); }
};

struct PortCase {
  Kind kind;
  int gpsInput, instrument, gps, marker;  // places in their lists
  bool conflict;
  bool markerRead = false;
};

// An index outside the list of ports stands for the first setting: COM1 for the instrument, COM2 for GPS.
TEST(SessionStart, PortConflicts) {
  for (const auto& item : {PortCase{Kind::orla, 1, 0, 0, 0, true}, PortCase{Kind::orla, 0, 0, 0, 0, false},
                           PortCase{Kind::orla, 1, 3, 4, 0, false}, PortCase{Kind::orla, 1, 99, 0, 0, true},
                           PortCase{Kind::orla, 1, -1, 0, 0, true}, PortCase{Kind::orla, 1, 1, 12, 0, true},
                           PortCase{Kind::orla, 1, 12, -1, 0, false},
                           PortCase{Kind::tesk2, 1, 0, 1, 2, true},          // the marker on COM2, as GPS
                           PortCase{Kind::tesk2, 1, 0, 1, 1, false, false},  // on the instrument's own cable
                           PortCase{Kind::tesk2, 1, 0, 1, 3, false, true}, PortCase{Kind::orla, 1, 0, 1, 2, false}}) {
    TestSession test(item.kind);
    test.settings.gpsInput = item.gpsInput;
    test.settings.instrumentPortIndex = item.instrument;
    test.settings.gpsPortIndex = item.gps;
    test.settings.markerPortChoice = item.marker;
    SCOPED_TRACE(testing::Message() << item.instrument << ' ' << item.gps << ' ' << item.marker);
    EXPECT_EQ(startSession(test.session), item.conflict ? StartOutcome::refused : StartOutcome::started);
    if (item.conflict) {
      EXPECT_EQ(test.view.told.at(0).text, "Same Port Assigned");
      EXPECT_TRUE(test.ports.calls.empty());
    } else {
      EXPECT_EQ(testing::Matches(Contains("read marker"))(test.ports.calls), item.markerRead);
      EXPECT_EQ(testing::Matches(Contains("read gps"))(test.ports.calls), item.gpsInput == 1);
    }
  }
}

TEST_F(OrlaSession, AFullDiskIsToldUntilThereIsRoomWhateverElseIs) {
  startRecording(test.session);
  test.disk.setRoom(test.opening + 30);
  test.record("T -0100-0400");
  test.record("T -0200-0400");
  serviceSession(test.session);
  EXPECT_EQ(test.view.texts[PanelField::message], "Disk full");
  silence(test);
  EXPECT_THAT(test.view.changes[PanelField::message], Contains("Please Wait..."));
  serviceSession(test.session);
  EXPECT_EQ(test.view.texts[PanelField::message], "Disk full");
  test.record("T -0300-0400");
  serviceSession(test.session);
  serviceSession(test.session);
  EXPECT_EQ(test.view.texts[PanelField::message], "Disk full") << "behind the answer to another message";
  test.disk.setRoom(1 << 20);
  serviceSession(test.session);
  EXPECT_EQ(test.view.texts[PanelField::message], "");
  EXPECT_THAT(test.readings(), ElementsAre("T -0100-0400", "T -0200-0400", "T -0300-0400"));
}

TEST_F(OrlaSession, TriesAVanishedInstrumentAsksAtTheSixthSilentPeriodAndGoesOn) {
  test.ports.gone = true;
  silence(test, 5);
  EXPECT_EQ(std::count(test.ports.calls.begin(), test.ports.calls.end(), "reopen instrument"), 5);
  EXPECT_EQ(test.view.texts[PanelField::message], "Please Wait...");
  EXPECT_THAT(test.records(), ElementsAre("X$CONN BREAK     101051")) << "once a break";
  test.record("T -0100-0400");
  serviceSession(test.session);
  EXPECT_EQ(test.view.texts[PanelField::message], "") << "resumed without a question";
  silence(test, 5);
  EXPECT_TRUE(test.view.questions.empty());
  silence(test);
  ASSERT_EQ(test.view.questions.size(), 1U);
  EXPECT_TRUE(test.session.linkActive);
  EXPECT_EQ(test.link.missedTicks, 0);
  EXPECT_EQ(test.ports.calls.back(), "read instrument");
  silence(test);
  EXPECT_EQ(test.records().size(), 3U) << "another break";
}

TEST_F(OrlaSession, APortThatCouldNotBeOpenedAgainIsTriedEachPeriodInSilence) {
  test.ports.instrumentProblem = PortProblem{.message = "Cannot open ORLA port", .detail = "no such device"};
  silence(test, 7);
  EXPECT_EQ(test.view.told.size(), 1U);
  EXPECT_EQ(test.ports.calls.back(), "open instrument");
  test.ports.instrumentProblem.reset();
  silence(test);
  EXPECT_EQ(test.ports.calls.back(), "read instrument");
}

TEST_F(OrlaSession, ASessionThatWasHeldUpItselfCallsNobodySilent) {
  test.clock.advance(3000);  // a command took so long; records wait to be handled
  serviceSession(test.session);
  test.clock.advance(10);
  test.record("T -0100-0400");
  test.clock.advance(990);
  serviceSession(test.session);
  EXPECT_TRUE(test.records().empty());
}

TEST(Watchdog, NoEndsTheSessionWithItsRecord) {
  TestSession test(Kind::vardo);
  test.go();
  test.view.answer = false;
  silence(test, 6);
  EXPECT_EQ(test.view.questions.at(0).title, "VARDO Battery Save Mode");
  EXPECT_TRUE(test.view.left && test.view.dialogsClosed == 1 && !test.session.timer.running);
  EXPECT_THAT(test.disk.content(), testing::EndsWith("X$CONN END       106056\n"));
}

TEST(Watchdog, PeriodsOfTheKinds) {
  TestSession glaco(Kind::glaco), orla(Kind::orla);
  for (const auto& [mode, interval, period] : {std::tuple{kModeAuto, 1.0F, 2000U}, {kModeWheel, 3.0F, 3000U}}) {
    glaco.settings.surveyMode = mode;
    glaco.settings.readingsInterval = interval;
    takeSettings(glaco.session);
    EXPECT_EQ(glaco.session.connectionTimeoutMs, period);
  }
  for (const float interval : {0.1F, 0.0F, -5.0F, 1e38F, std::numeric_limits<float>::quiet_NaN()}) {
    orla.settings.readingsInterval = interval;
    takeSettings(orla.session);
    takeRecordRates(orla.session);
    EXPECT_TRUE(orla.session.connectionTimeoutMs >= 1000U && orla.session.recordInterval >= 1) << interval;
  }
}

std::string withChecksum(std::string text) {
  unsigned sum = 0;
  for (const char c : text.substr(1)) sum ^= static_cast<unsigned char>(c);
  constexpr std::string_view kHex = "0123456789ABCDEF";
  return text + '*' + kHex[sum / 16] + kHex[sum % 16];
}

GpsLine gga(const std::string& time) {
  return {.text = withChecksum("$GPGGA," + time + ",4807.038,N,01131.000,E,4,08,0.9,5.4,M,46.9,M,,"), .tick = 77};
}

TEST(GpsHandler, ManualModeTiesOnePositionToEachReading) {
  TestSession test(Kind::orla);
  test.settings.gpsInput = 1;
  test.go(kModeManual);
  const auto press = [&test] {
    test.record("T`-0100-0400");
    test.record("T -0100-0400");
  };
  const auto tags = [&test] {
    std::string out;
    for (const auto& item : test.records()) out += item[0];
    return out;
  };
  for (const auto* time : {"1", "2", "3"}) OnGpsLine(test.session, gga(time));
  OnGpsLine(test.session, {.text = withChecksum("$GPGSA,A,3,1,,,,,,,,,,,,,1.8,1,1"), .tick = 79});
  press();  // the first reading brings the held sentences with it
  EXPECT_EQ(tags(), "X@##!@#!T");
  OnGpsLine(test.session, gga("4"));
  EXPECT_EQ(tags(), "X@##!@#!T") << "no second position for the same reading";
  press();
  EXPECT_EQ(tags(), "X@##!@#!TT") << "the held one came before this reading, the next line ties it";
  OnGpsLine(test.session, {.text = "$GPGGA,bad*00", .tick = 1});
  OnGpsLine(test.session, gga("5"));
  EXPECT_EQ(tags(), "X@##!@#!TT@##!");
  OnGpsLine(test.session, gga("6"));
  EXPECT_EQ(tags(), "X@##!@#!TT@##!") << "nor a second one by the line behind";
  EXPECT_EQ(test.session.gpsRecordCount, 2);
}

TEST(Keys, PauseKeysAndTesk2) {
  TestSession test(Kind::tesk2);
  auto& session = test.session;
  session.inputEnabled = true;
  Focus focus;
  const std::pair<int, int> buttons[]{{1, kMenuCalibrate}, {2, kMenuDeleteCalibration}, {3, 1}};
  for (const auto& [button, code] : buttons) EXPECT_EQ(codeOfButton(session, button), code);
  EXPECT_EQ(codeOfKey(session, focus, {}, 'A'), kMenuCalibrate);
  EXPECT_EQ(codeOfKey(session, focus, {}, 'e'), kMenuDeleteCalibration);

  session.loggingState = kLogging;
  EXPECT_EQ(codeOfButton(session, 5), 0);
  EXPECT_EQ(commandOf(session, 1), std::nullopt);
  const std::string pauses[]{"0AG\r\xBD\xBE", "0\xBD\xBE", "\r", "0"};  // key codes 189 and 190 the last two
  for (test.settings.pauseKey = 0; test.settings.pauseKey < 4; ++test.settings.pauseKey) {
    const auto& keys = pauses[test.settings.pauseKey];
    for (const char keyCode : std::string("0AG5\r\xBD\xBE")) {
      EXPECT_EQ(codeOfKey(session, focus, {}, static_cast<unsigned char>(keyCode)) == 0,
                keys.find(keyCode) != std::string::npos)
          << test.settings.pauseKey << ' ' << keyCode;
    }
  }
  const KeyContext digits{.keypadEntry = true, .digitsPlatform = true};
  codeOfKey(session, focus, digits, '5');
  EXPECT_EQ(test.link.markerKeyPending, 1);
  keyReleased(session, digits, '5');
  EXPECT_EQ(test.link.markerKeyPending, 0);

  session.loggingState = kStandBy;
  focus = {.focusIndex = 0, .firstFocusIndex = 0, .buttonCount = 6};
  for (const int focused : {0, 5}) {  // the first key only arms
    codeOfKey(session, focus, digits, key::kLeft);
    EXPECT_EQ(focus.focusIndex, focused);
  }
  EXPECT_EQ(codeOfKey(session, focus, digits, key::kEnter), 5);
  EXPECT_EQ(commandOf(session, 4), Command::menu);
  session.loggingState = kNoFile;
  EXPECT_EQ(commandOf(session, 4), Command::leave);
  const std::pair<int, int> menu[]{{1112, kMenuDeleteCalibration}, {1106, 106}, {1107, kNoCode}};
  for (const auto& [id, code] : menu) EXPECT_EQ(menuCommandOf(id), code);
}

}  // namespace
}  // namespace kalmira
