#include "logging/file_guard.h"

#include <gtest/gtest.h>

#include <cstdlib>

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

}  // namespace
}  // namespace kalmira
