#include "platform/attended_run.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <csignal>

#include "support/fake_clock.h"
#include "support/pty.h"

namespace kalmira {
namespace {
TEST(AttendedRun, ShowsHowFarItIsOnATerminalFromTwoSecondsOnAndTakesItAwayAgain) {
  const Pty terminal;
  const int fd = ::open(terminal.name.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  FakeClock clock;
  AttendedRun run("program", clock, fd);
  struct Case {
    std::uint32_t later;  // ms
    std::uint64_t done;   // bytes of 4000000
    std::string written;
  };
  for (const auto& [later, done, written] : {Case{1999, 10, ""},
                                             {1, 1000000, "\r\033[Kx: 25 % of 4 MB"},
                                             {499, 2000000, ""},
                                             {1, 2000000, "\r\033[Kx: 50 % of 4 MB"}}) {
    clock.advance(later);
    EXPECT_TRUE(run.goOn("x", done, 4000000));
    ASSERT_EQ(::write(fd, "|", 1), 1);
    EXPECT_EQ(terminal.receiveUpTo('|'), written + "|");
  }
  run.say("done");
  EXPECT_EQ(terminal.receiveUpTo('\n'), "\r\033[Kprogram: done\r\n");
  ::close(fd);
}

TEST(AttendedRun, WritesMessagesAloneWhereThereIsNoTerminalAndHearsSignalsWhenItHasToTidyUp) {
  std::array<int, 2> pipe{};
  ASSERT_EQ(::pipe(pipe.data()), 0);
  FakeClock clock;
  AttendedRun run("program", clock, pipe[1]);
  run.tidyWhenEnded();
  clock.advance(10000);
  EXPECT_TRUE(run.goOn("x", 1, 2));
  ASSERT_EQ(std::raise(SIGINT), 0);
  EXPECT_FALSE(run.goOn("x", 1, 2));
  run.say("left");
  std::array<char, 64> written{};
  EXPECT_EQ(::read(pipe[0], written.data(), written.size()), 14);
  EXPECT_STREQ(written.data(), "program: left\n");
  for (const int end : pipe) ::close(end);
}

}  // namespace
}  // namespace kalmira
