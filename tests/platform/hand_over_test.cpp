#include "platform/hand_over.h"

#include <gtest/gtest.h>

#include <semaphore>
#include <string>
#include <thread>

#include "platform/worker.h"

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

TEST_F(HandOverTest, WorkMayRunWhatElseWaits) {
  HandOver::Sender inner(handOver);
  std::string order;
  std::jthread first([&] {
    sender.send([&] {
      std::jthread second([&] { inner.send([&] { order += "inner "; }); });
      runOne();
      order += "outer";
    });
  });
  runOne();
  first.join();
  EXPECT_EQ(order, "inner outer");
}

TEST(DirectHandOver, WorkTakesTurnsWithTheReceivingThread) {
  constexpr int kEach = 500;
  HandOver handOver;
  int handled = 0;  // no atomic: the turn guards it
  std::vector<std::jthread> threads;
  for (int i = 0; i < 2; ++i) {
    threads.emplace_back([&] {
      HandOver::Sender sender(handOver);
      for (int k = 0; k < kEach; ++k) EXPECT_TRUE(sender.send([&] { ++handled; }));
    });
  }
  EXPECT_EQ(handled, 0) << "the turn has not been given away";
  while (handled < 2 * kEach) {
    {
      const HandOver::Rest rest(handOver);
      std::this_thread::yield();
    }
    ++handled;
    --handled;
  }
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

TEST(Worker, DoesWhatIsLeftThenEndsAndStartsAnew) {
  Worker worker("test");
  int wanted = 0;
  int done = 0;
  const auto body = [&] {
    auto held = worker.lock();
    while (worker.wait(held, [&] { return wanted > 0; })) {
      --wanted;
      ++done;
      EXPECT_FALSE(worker.waitFor(held, std::chrono::seconds(60), [] { return false; }));  // ends with stop
    }
  };
  EXPECT_TRUE(worker.stopWithin(std::chrono::seconds(0)));
  for (int round = 1; round <= 2; ++round) {
    worker.change([&] { wanted = 3; });
    worker.start(body);
    worker.start(body);  // one at a time
    EXPECT_TRUE(worker.stopWithin(std::chrono::seconds(60)));
    EXPECT_FALSE(worker.started());
    EXPECT_EQ(done, 3 * round);
  }
}

}  // namespace
}  // namespace kalmira
