#pragma once

#include <semaphore.h>

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace kalmira {

// The waiting message between threads: a sender's thread hands over a piece of work and waits until it has
// been done. So all handling is done one piece at a time, while whoever sent it leaves its data alone.
//
// Where windows are, work is queued and done on the receiving thread, for windows know no other. Where there are none,
// work is done directly on the sender's thread, in turn with the receiving thread: that saves two changes of threads a
// record, most of what a record costs.
class HandOver {
 public:
  using Work = std::function<void()>;

  // Queued. `wake` is called on the sender's thread whenever work has been handed over; it must make the receiving
  // thread call run() soon, and must not wait for it.
  explicit HandOver(std::function<void()> wake) : wake_(std::move(wake)) {}
  // Direct. The constructing thread is the receiving one and has the turn from the start.
  HandOver() : taken_(true) {}

  // Queued: does everything that waits. Only on the receiving thread; may be called again from within work.
  void run();

  // Direct: gives the turn away for as long as it lives. The receiving thread makes one around its waiting.
  class Rest {
   public:
    explicit Rest(HandOver& handOver);
    ~Rest();
    Rest(const Rest&) = delete;
    Rest& operator=(const Rest&) = delete;

   private:
    HandOver& hand_over_;
  };

  class Sender;

 private:
  // One sender's piece of work. Shared, because work may still be running after its sender was released and has gone.
  struct Slot {
    Slot();
    ~Slot();
    Slot(const Slot&) = delete;
    Slot& operator=(const Slot&) = delete;

    Work work;
    std::atomic<bool> done{false};
    bool closed = false;
    sem_t changed;  // posted when either becomes true: one system call each way, and no lock to wait for
  };

  std::function<void()> wake_;  // empty: direct
  std::mutex mutex_;            // guards all that follows, and all slots
  bool taken_ = false;          // direct: somebody has the turn
  std::condition_variable free_;
  std::vector<std::shared_ptr<Slot>> queue_;
};

// The sending end: one a thread. The HandOver must outlive it.
class HandOver::Sender {
 public:
  explicit Sender(HandOver& handOver) : hand_over_(handOver), slot_(std::make_shared<Slot>()) {}
  ~Sender() { close(); }
  Sender(const Sender&) = delete;
  Sender& operator=(const Sender&) = delete;

  // Waits until `work` has been done (true), or until the sender is closed (false: it was not
  // done, or is still being done). `work` is copied and may outlive this call when the sender is closed, so it may
  // refer only to what the receiving thread keeps alive. One thread at a time.
  bool send(const Work& work);

  // Releases a waiting send at once, drops work that was not begun, and makes later sends fail. From any thread, also
  // from within the work of this very sender.
  void close();

 private:
  bool doInTurn(const Work& work);

  HandOver& hand_over_;
  std::shared_ptr<Slot> slot_;
};

}  // namespace kalmira
