#include "platform/hand_over.h"

#include <gtest/gtest.h>

#include <semaphore>
#include <string>
#include <thread>

namespace kalmira {
namespace {

// The receiving thread is the test's own.
struct HandOverTest : testing::Test {
  std::counting_semaphore<> woken{0};
  HandOver handOver{[this] { woken.release(); }};
  HandOver::Sender sender{handOver};
  void runOne() {
    woken.acquire();
    handOver.run();
  }
};

TEST_F(HandOverTest, WorkOfManySendersRunsHereOneAtATimeWhileTheyWait) {
  constexpr int kEach = 500;
  int handled = 0;  // no atomics: nothing runs at the same time
  int running = 0;
  const auto sendAll = [&] {
    HandOver::Sender own(handOver);
    for (int i = 0; i < kEach; ++i) {
      bool ran = false;
      const bool sent = own.send([&, here = std::this_thread::get_id()] {
        EXPECT_NE(std::this_thread::get_id(), here);
        EXPECT_EQ(++running, 1);
        ++handled;
        --running;
        ran = true;
      });
      EXPECT_TRUE(sent && ran);
    }
  };
  std::jthread first(sendAll);
  std::jthread second(sendAll);
  while (handled < 2 * kEach) runOne();
}

TEST_F(HandOverTest, ClosingReleasesAWaitingSendAndDropsItsWork) {
  bool ran = false;
  bool sent = true;
  std::thread thread([&] { sent = sender.send([&] { ran = true; }); });
  woken.acquire();
  sender.close();
  thread.join();
  handOver.run();
  EXPECT_FALSE(sent);
  EXPECT_FALSE(sender.send([&] { ran = true; }));
  EXPECT_FALSE(ran);
}

TEST_F(HandOverTest, WorkMayCloseItsOwnSenderAndGoOn) {
  auto own = std::make_unique<HandOver::Sender>(handOver);
  const std::string kept = "a text too long to be kept in place";
  std::string seen;
  bool sent = true;
  std::thread thread;
  thread = std::thread([&] {
    sent = own->send([&, text = std::string(kept)] {
      own->close();
      thread.join();
      own.reset();
      seen = text;
    });
  });
  runOne();
  EXPECT_FALSE(sent);
  EXPECT_EQ(seen, kept);
}

// Again and again: the send waits already, or comes too late.
TEST(DirectHandOver, ClosingReleasesASendThatWaitsForItsTurn) {
  for (int i = 0; i < 50; ++i) {
    HandOver handOver;
    HandOver::Sender sender(handOver);
    std::binary_semaphore begun{0};
    const std::jthread thread([&] {
      begun.release();
      EXPECT_FALSE(sender.send([] { ADD_FAILURE(); }));
    });
    begun.acquire();
    for (int k = 0; k < i; ++k) std::this_thread::yield();
    sender.close();
  }
}

}  // namespace
}  // namespace kalmira
