#include "platform/hand_over.h"

#include <gtest/gtest.h>

#include <chrono>
#include <semaphore>
#include <string>
#include <thread>
#include <vector>

namespace kalmira {
namespace {

// The receiving thread is the test's own.
struct HandOverTest : testing::Test {
  std::counting_semaphore<> woken{0};
  HandOver handOver{[this] { woken.release(); }};
};

TEST_F(HandOverTest, WorkRunsOnTheReceivingThreadWhileTheSenderWaits) {
  HandOver::Sender sender(handOver);
  std::thread::id ranOn;
  bool ranBeforeReturn = false;
  std::thread thread([&] {
    bool ran = false;
    const bool sent = sender.send([&] {
      ranOn = std::this_thread::get_id();
      ran = true;
    });
    ranBeforeReturn = sent && ran;
  });
  woken.acquire();
  handOver.run();
  thread.join();
  EXPECT_EQ(ranOn, std::this_thread::get_id());
  EXPECT_TRUE(ranBeforeReturn);
}

TEST_F(HandOverTest, WorkOfManySendersRunsOneAtATime) {
  constexpr int kEach = 500;
  int handled = 0;
  int running = 0;
  int mostRunning = 0;
  const auto sendAll = [&] {
    HandOver::Sender sender(handOver);
    for (int i = 0; i < kEach; ++i) {
      sender.send([&] {
        mostRunning = std::max(mostRunning, ++running);
        ++handled;
        --running;
      });
    }
  };
  std::thread first(sendAll);
  std::thread second(sendAll);
  while (handled < 2 * kEach) {
    woken.acquire();
    handOver.run();
  }
  first.join();
  second.join();
  EXPECT_EQ(handled, 2 * kEach);
  EXPECT_EQ(mostRunning, 1);
}

TEST_F(HandOverTest, ClosingReleasesAWaitingSendAndDropsItsWork) {
  HandOver::Sender sender(handOver);
  bool ran = false;
  bool sent = true;
  std::thread thread([&] { sent = sender.send([&] { ran = true; }); });
  woken.acquire();
  sender.close();
  thread.join();
  handOver.run();
  EXPECT_FALSE(sent);
  EXPECT_FALSE(ran);
  EXPECT_FALSE(sender.send([&] { ran = true; }));
  EXPECT_FALSE(ran);
}

TEST_F(HandOverTest, WorkMayCloseItsOwnSenderAndGoOn) {
  auto sender = std::make_unique<HandOver::Sender>(handOver);
  std::string seen;
  bool sent = true;
  std::thread thread;
  thread = std::thread([&] {
    sent = sender->send([&, text = std::string("a text too long to be kept in place")] {
      sender->close();
      thread.join();
      sender.reset();
      seen = text;
    });
  });
  woken.acquire();
  handOver.run();
  EXPECT_FALSE(sent);
  EXPECT_EQ(seen, "a text too long to be kept in place");
}

TEST_F(HandOverTest, WorkMayRunWhatElseWaits) {
  HandOver::Sender outer(handOver);
  HandOver::Sender inner(handOver);
  std::string order;
  std::thread first([&] {
    outer.send([&] {
      std::thread second([&] { inner.send([&] { order += "inner "; }); });
      woken.acquire();
      handOver.run();
      second.join();
      order += "outer";
    });
  });
  woken.acquire();
  handOver.run();
  first.join();
  EXPECT_EQ(order, "inner outer");
}

TEST(DirectHandOver, WorkTakesTurnsWithTheReceivingThread) {
  constexpr int kEach = 500;
  HandOver handOver;
  int handled = 0;  // no atomic: the turn guards it
  std::vector<std::thread> threads;
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
  for (auto& thread : threads) thread.join();
}

TEST(DirectHandOver, ClosingReleasesASendThatWaitsForItsTurn) {
  HandOver handOver;
  HandOver::Sender sender(handOver);
  bool ran = false;
  std::thread thread([&] { EXPECT_FALSE(sender.send([&] { ran = true; })); });
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  sender.close();
  thread.join();
  EXPECT_FALSE(ran);
}

}  // namespace
}  // namespace kalmira
