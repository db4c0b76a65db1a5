#include "platform/hand_over.h"

#include <cerrno>
#include <system_error>
#include <utility>

namespace kalmira {

HandOver::Slot::Slot() {
  if (::sem_init(&changed, 0, 0) != 0) throw std::system_error(errno, std::generic_category(), "semaphore");
}

HandOver::Slot::~Slot() { ::sem_destroy(&changed); }

void HandOver::run() {
  std::unique_lock lock(mutex_);
  while (!queue_.empty()) {
    const std::shared_ptr<Slot> slot = std::move(queue_.front());
    queue_.erase(queue_.begin());
    const Work work = std::move(slot->work);
    lock.unlock();
    work();
    slot->done = true;
    ::sem_post(&slot->changed);
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
  while (::sem_wait(&slot.changed) != 0 && errno == EINTR) {
  }
  return slot.done;
}

void HandOver::Sender::close() {
  const std::scoped_lock lock(hand_over_.mutex_);
  slot_->closed = true;
  std::erase(hand_over_.queue_, slot_);
  ::sem_post(&slot_->changed);
  hand_over_.free_.notify_all();
}

}  // namespace kalmira
