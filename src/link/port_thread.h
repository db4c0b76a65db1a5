#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <optional>
#include <string>

#include "link/port.h"
#include "link/readers.h"
#include "platform/hand_over.h"
#include "platform/worker.h"

namespace kalmira {

// One port with the thread that it belongs to: the port is made, opened, used and closed there. Every member is called
// on one other thread, the session's.
class PortThread {
 public:
  // What a job may use, on the port's thread.
  struct Context {
    Port& port;
    HandOver::Sender& sender;
    const std::atomic<bool>& stop;  // set: end soon
  };
  using Job = std::function<ReaderEnd(const Context&)>;

  // A vanished device is tried again every `retryPeriod`; without one, only when reopen() asks.
  PortThread(PortFactory factory, HandOver& handOver,
             std::optional<std::chrono::milliseconds> retryPeriod = std::nullopt)
      : factory_(std::move(factory)), hand_over_(handOver), retry_period_(retryPeriod) {}
  ~PortThread() { close(); }

  // What becomes of a port that could not be opened.
  enum class Absent { givenUp, triedAgain };
  // Closes first when open. Waits until the device is open or `tries` tries in a row have failed; with
  // `triedAgain` the port is then gone, and comes back as one that has vanished does.
  std::optional<PortError> open(const std::string& device, const LineSettings& line, int tries = 1,
                                Absent absent = Absent::givenUp);
  bool isOpen() const { return worker_.started(); }

  // Runs `job` and waits for it, but no longer than `interrupted` says no: then the port is closed, and false.
  // Only between open and start.
  bool call(const std::function<bool(const Context&)>& job, const std::function<bool()>& interrupted);
  // Runs `job` until the port is closed, and anew whenever a vanished device could be opened again. Once an open.
  void start(Job job);

  // True while the device has vanished under the open port and is not back.
  bool gone() const { return gone_; }
  // Has a vanished device tried once more, without waiting for it.
  void reopen();

  // Ends the thread, within 200 ms whatever it is doing; also from within work that it has handed over. The job has
  // ended when this returns.
  void close();

 private:
  using Opened = std::promise<std::optional<PortError>>;
  void body(Opened opened, int tries, Absent absent);
  std::optional<PortError> openWithTries(Port& port, int tries);
  bool waitForJob(Job& job);
  bool openAgain(Port& port);

  PortFactory factory_;
  HandOver& hand_over_;
  std::optional<std::chrono::milliseconds> retry_period_;
  std::string device_;
  LineSettings line_;
  std::optional<HandOver::Sender> sender_;

  std::atomic<bool> gone_{false};
  Worker worker_{"port"};
  Job job_;                     // waiting to be taken; under the worker's lock
  bool reopen_wanted_ = false;  // likewise
};

}  // namespace kalmira
