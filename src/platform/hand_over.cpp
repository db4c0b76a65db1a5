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
    // Woken after the lock is free, the sender need not wait for it again.
    lock.unlock();
    slot->changed.notify_all();
    lock.lock();
  }
}

HandOver::Rest::Rest(HandOver& handOver) : hand_over_(handOver) {
  {
    const std::scoped_lock lock(hand_over_.mutex_);
    hand_over_.taken_ = false;
  }
  hand_over_.free_.notify_all();
}

HandOver::Rest::~Rest() {
  std::unique_lock lock(hand_over_.mutex_);
  hand_over_.free_.wait(lock, [this] { return !hand_over_.taken_; });
  hand_over_.taken_ = true;
}

bool HandOver::Sender::doInTurn(const Work& work) {
  std::unique_lock lock(hand_over_.mutex_);
  hand_over_.free_.wait(lock, [this] { return !hand_over_.taken_ || slot_->closed; });
  if (slot_->closed) return false;
  hand_over_.taken_ = true;
  lock.unlock();
  work();
  lock.lock();
  hand_over_.taken_ = false;
  const bool closed = slot_->closed;
  lock.unlock();
  hand_over_.free_.notify_all();
  return !closed;
}

bool HandOver::Sender::send(const Work& work) {
  if (!hand_over_.wake_) return doInTurn(work);
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
  hand_over_.free_.notify_all();
}

}  // namespace kalmira
