#pragma once

#include <atomic>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "link/port.h"
#include "platform/clock.h"
#include "platform/worker.h"

// Finds out how a GPS receiver's line is set up, by listening.
namespace kalmira {

// Line settings to listen with, as the settings' GPS fields hold them.
struct ReceiverLine {
  int baudIndex = 0;
  int dataBitsIndex = 1;
  int parityIndex = 0;
  int stopBitsIndex = 0;
  bool operator==(const ReceiverLine&) const = default;
};

// The GPS fields of the settings, and back.
ReceiverLine receiverLineOf(const Settings& settings);
void takeReceiverLine(const ReceiverLine& line, Settings& settings);

// How long to listen with each: receivers report once a second, and their sentences take a while.
inline constexpr std::uint32_t kListenMs = 1300;

// The lines to try, most likely first: as set up, then every baud rate with 8 data bits, no parity and one stop bit,
// which is what receivers use and which also tells lines with 7 bits and parity. Then those that it does not tell,
// tried where something had been heard.
std::vector<ReceiverLine> receiverTrials(const Settings& settings);

// A complete sentence of at least an address whose two-digit checksum is right: nothing that noise at a wrong baud rate
// looks like.
bool isReceiverSentence(std::string_view line);

struct FindOutcome {
  enum class How {
    found,
    nothingHeard,   // not a byte at any of the baud rates
    notUnderstood,  // something is sent, but no sentences
    cannotOpen,
    cancelled,
  };
  How how = How::cancelled;
  ReceiverLine line{};     // found
  std::string sentence{};  // found: the one that was heard
  std::string problem{};   // cannotOpen: why
};

// Tries one after another on `port`, which is closed before and after. `onTrial` is told the number of each, from 0.
// Ends within 100 ms once `stop` is set. On the port's thread.
FindOutcome findReceiver(Port& port, const std::string& device, const std::vector<ReceiverLine>& trials,
                         const Clock& clock, const std::atomic<bool>& stop,
                         const std::function<void(std::size_t)>& onTrial);

// The same on a thread of its own. Every member is called on one thread; the end of the object cancels the search,
// waits for its thread (about 100 ms at the most) and leaves the port closed.
class ReceiverSearch {
 public:
  // The clock must outlive it.
  ReceiverSearch(PortFactory factory, std::string device, std::vector<ReceiverLine> trials, const Clock& clock);
  ~ReceiverSearch() { worker_.stop(); }

  const std::vector<ReceiverLine>& trials() const { return trials_; }
  std::size_t trial() const { return trial_; }  // which is being listened with
  // Once it is over; empty before.
  std::optional<FindOutcome> outcome();

 private:
  PortFactory factory_;
  std::string device_;
  std::vector<ReceiverLine> trials_;
  const Clock& clock_;
  std::atomic<std::size_t> trial_{0};
  Worker worker_{"find-receiver"};
  std::optional<FindOutcome> outcome_;  // under the worker's lock
};

}  // namespace kalmira
