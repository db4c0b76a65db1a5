#include "platform/hand_over.h"

#include <utility>

namespace kalmira {

void HandOver::run() {
  std::unique_lock lock(mutex_);
  while (!queue_.empty()) {
    const std::shared_ptr<Slot> slot = std::move(queue_.front());
    queue_.erase(queue_.begin());
    const Work work = std::move(slot->work);
    lock.unlock();
    work();
    lock.lock();
    slot->done = true;
    slot->changed.notify_all();
  }
}

bool HandOver::Sender::send(const Work& work) {
  Slot& slot = *slot_;
  {
    const std::scoped_lock lock(hand_over_.mutex_);
    if (slot.closed) return false;
    slot.work = work;
    slot.done = false;
    hand_over_.queue_.push_back(slot_);
  }
  hand_over_.wake_();
  std::unique_lock lock(hand_over_.mutex_);
  slot.changed.wait(lock, [&slot] { return slot.done || slot.closed; });
  return slot.done;
}

void HandOver::Sender::close() {
  const std::scoped_lock lock(hand_over_.mutex_);
  slot_->closed = true;
  std::erase(hand_over_.queue_, slot_);
  slot_->changed.notify_all();
}

}  // namespace kalmira
