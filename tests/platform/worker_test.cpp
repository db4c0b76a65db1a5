#include "platform/worker.h"

#include <gtest/gtest.h>

namespace kalmira {
namespace {

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
