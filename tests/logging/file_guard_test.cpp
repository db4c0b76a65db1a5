#include "logging/file_guard.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <cstdlib>
#include <thread>

#include "logging/handlers.h"
#include "support/session_fixture.h"

namespace kalmira {
namespace {

const std::vector<std::string> kReadings{"T0000001", "T0000002", "T0000003", "T0000004"};

// A short survey with everything a session writes; false when its file could not even be created.
bool survey(TestSession& test) {
  auto& session = test.session;
  if (startSession(session) != StartOutcome::started) return false;
  const auto created = beginDataFile(session, [&, asked = false](const std::string&) mutable {
    return std::exchange(asked, true) ? std::nullopt : std::optional(test.folder.path() / "A.ROR");
  });
  if (created.how != CreateOutcome::How::created) return false;
  startRecording(session);
  for (const auto& reading : {kReadings[0], kReadings[1]}) test.record(reading + "    ");
  serviceSession(session);
  pauseRecording(session);
  addComment(session, "fence");
  newLine(session, proposeLine(session.settings, session.station));
  startRecording(session);
  for (const auto& reading : {kReadings[2], kReadings[3]}) test.record(reading + "    ");
  for (int i = 0; i < 6; ++i) serviceSession(session);
  pauseRecording(session);
  LeaveLogging(session, true);
  return true;
}

// Everything that is in any file, of the fake disk and beside it.
std::string everythingKept(TestSession& test) {
  std::string all;
  for (const auto& [path, node] : test.disk.state.files) all += node->content;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(test.folder.path())) {
    if (entry.is_regular_file()) all += readFile(entry.path());
  }
  return all;
}

struct FileGuard : testing::Test {
  void SetUp() override { setenv("HOME", home.path().c_str(), 1); }  // NOLINT(concurrency-mt-unsafe)
  TempFolder home;
};

TEST_F(FileGuard, WhicheverCallOfTheDiskFailsNoReadingIsLostAndNoneInSilence) {
  int calls = 0;
  {
    TestSession whole(Kind::orla);
    ASSERT_TRUE(survey(whole));
    calls = whole.disk.state.calls;
    EXPECT_TRUE(whole.session.shortfalls.empty());
    EXPECT_TRUE(whole.view.told.empty());
  }
  ASSERT_GT(calls, 50);
  for (const int error : {EIO, ENOSPC}) {
    for (const bool forGood : {false, true}) {
      for (int call = 1; call <= calls + 10; ++call) {
        SCOPED_TRACE(testing::Message() << "call " << call << (forGood ? " and all after it" : "") << ", errno "
                                        << error);
        TestSession test(Kind::orla);
        test.disk.state.callToFail = call;
        test.disk.state.failsForGood = forGood;
        test.disk.state.error = error;
        if (!survey(test)) {
          EXPECT_FALSE(test.view.told.empty());
          continue;
        }
        const auto kept = everythingKept(test);
        for (const auto& reading : kReadings) EXPECT_NE(kept.find(reading), std::string::npos) << reading;
        const auto file = test.disk.state.files.begin()->second->content;
        const bool inPlace =
            file.find(kReadings[0]) < file.find("fence") && file.find(kReadings[3]) != std::string::npos;
        EXPECT_TRUE(inPlace || !test.session.shortfalls.empty());
      }
    }
  }
}

// The root goes away in each state of a session; the survey is in the file made anew, whole.
TEST_F(FileGuard, AFileThatGoesAwayInAnyStateIsMadeAgainAndTold) {
  for (const int state : {kStandBy, kLogging}) {
    TestSession test(Kind::orla);
    test.begin();
    auto& session = test.session;
    startRecording(session);
    test.record("T0000001    ");
    if (state == kStandBy) pauseRecording(session);
    const auto path = session.file.path();
    test.disk.remove(path);
    serviceSession(session);
    ASSERT_EQ(test.view.told.size(), 1U);
    EXPECT_NE(test.view.told[0].text.find("is gone"), std::string::npos);
    EXPECT_NE(test.view.told[0].text.find(session.file.path().string()), std::string::npos);
    if (state == kStandBy) startRecording(session);
    test.record("T0000002    ");
    LeaveLogging(session, true);
    const auto content = test.disk.content();
    EXPECT_LT(content.find("T0000001"), content.find("T0000002"));
    EXPECT_EQ(content.substr(0, 4), "ORLA");
    EXPECT_EQ(session.shortfalls.size(), 1U);
  }
}

TEST_F(FileGuard, TheSecondCopyIsTheSameToTheByteAndIsFilledUpWhenItComesBack) {
  TestSession test(Kind::orla);
  const TempFolder card;
  test.session.setup.mirror = card.path() / "in";
  test.begin();
  auto& session = test.session;
  startRecording(session);
  test.record("T0000001    ");
  const auto copy = [&] {
    const auto found = test.disk.state.files.find(card.path() / "in" / session.file.path().filename());
    return found == test.disk.state.files.end() ? std::string() : found->second->content;
  };
  const auto until = [&](const std::function<bool()>& happened) {
    for (int i = 0; i < 500 && !happened(); ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
      serviceSession(session);
    }
    EXPECT_TRUE(happened());
  };
  until([&] { return !test.view.told.empty(); });
  EXPECT_NE(test.view.told[0].text.find("No second copy"), std::string::npos) << "a missing folder is not made";
  std::filesystem::create_directory(card.path() / "in");
  until([&] { return copy() == test.disk.content(session.file.path()); });
  std::filesystem::remove(card.path() / "in");
  test.disk.remove(card.path() / "in" / session.file.path().filename());
  until([&] { return test.view.told.size() == 2; });
  test.record("T0000002    ");
  std::filesystem::create_directory(card.path() / "in");
  until([&] { return copy() == test.disk.content(session.file.path()); });
  LeaveLogging(session, true);
  EXPECT_EQ(copy(), test.disk.content(session.file.path()));
  EXPECT_TRUE(session.shortfalls.empty());
}

// What the operator hears of a receiver, and no more often than he can bear.
TEST_F(FileGuard, AReceiverThatGoesFallsSilentOrChangesItsFixIsToldOnceEach) {
  TestSession test(Kind::orla);
  test.settings.gpsInput = 1;
  test.go();
  auto& session = test.session;
  const auto after = [&](std::uint32_t ms) {
    test.clock.advance(ms);
    test.link.lastRecordTick = test.clock.tick();
    test.view.changes[PanelField::message].clear();
    for (int i = 0; i < 3; ++i) serviceSession(session);
    const auto& said = test.view.changes[PanelField::message];
    return said.empty() ? std::string() : said.size() == 1 ? said[0] : "more than one message";
  };
  const auto sentence = [&](char quality) {
    std::string text = std::string("GPGGA,092750.000,5321.6802,N,00630.3372,W,") + quality + ",8,1.03,61.7,M,55.2,M,,";
    unsigned sum = 0;
    for (const char c : text) sum ^= static_cast<unsigned char>(c);
    OnGpsLine(session, {.text = fmt::format("${}*{:02X}", text, sum), .tick = test.clock.tick()});
  };
  EXPECT_EQ(after(2500), "");
  sentence('1');
  EXPECT_EQ(after(100), "") << "the first fix is no change";
  sentence('2');
  EXPECT_EQ(after(10000 - 7400), "GPS fix: DGPS");
  sentence('0');
  EXPECT_EQ(after(1000), "") << "within ten seconds of the last";
  for (int i = 0; i < 4; ++i) sentence('0'), after(2900);
  EXPECT_EQ(session.gps.fixTold, "NO FIX") << "but not left untold";
  EXPECT_EQ(after(3100), "No GPS data");
  EXPECT_EQ(test.view.texts[PanelField::fix], "");
  EXPECT_EQ(test.view.texts[PanelField::satellites], "");
  sentence('0');
  EXPECT_EQ(after(10), "GPS data again");
  test.ports.gpsIsGone = true;
  EXPECT_EQ(after(400), "GPS receiver gone: it is tried every second");
  EXPECT_EQ(after(400), "");
  test.ports.gpsIsGone = false;
  EXPECT_EQ(after(400), "GPS receiver is back");
  // Ten times what the fastest line brings, for a second: a tenth of it is recorded.
  const auto before = session.counts.gpsSentences;
  for (int i = 0; i < 1000; ++i) {
    test.clock.advance(1);
    OnGpsLine(session, {.text = std::string(460, 'x'), .tick = test.clock.tick()});
  }
  EXPECT_NEAR(static_cast<double>(session.counts.gpsSentences - before), 200.0, 5.0);
  EXPECT_NEAR(static_cast<double>(session.gps.noise.leftOut), 800.0, 5.0);
  LeaveLogging(session, true);
  EXPECT_TRUE(session.shortfalls.empty());
  EXPECT_EQ(session.remarks.size(), 1U);
}

// A sleep of the machine is a broken connection, written once, and asks nothing.
TEST_F(FileGuard, ASleepIsABrokenConnection) {
  TestSession test(Kind::orla);
  test.go();
  test.clock.slept = 90000;
  test.clock.advance(90000);
  serviceSession(test.session);
  serviceSession(test.session);
  EXPECT_EQ(test.records().back().substr(0, 12), "X$CONN BREAK");
  EXPECT_EQ(test.view.texts[PanelField::message], "The machine slept for 90 s");
  EXPECT_EQ(test.view.asked.size(), 0U);
}

}  // namespace
}  // namespace kalmira
