#include "platform/worker.h"

#include <pthread.h>

namespace kalmira {

void Worker::requestStop() {
  change([this] { stopping_ = true; });
}

void Worker::stop() {
  if (!started()) return;
  requestStop();
  thread_.join();
}

bool Worker::stopWithin(std::chrono::milliseconds time) {
  if (!started()) return true;
  requestStop();
  {
    auto held = lock();
    if (!changed_.wait_for(held, time, [this] { return ended_; })) {
      thread_.detach();
      return false;
    }
  }
  thread_.join();
  return true;
}

void Worker::begin() const {
#ifdef __linux__
  (void)pthread_setname_np(pthread_self(), name_);
#endif
}

void Worker::end() {
  change([this] { ended_ = true; });
}

}  // namespace kalmira
