#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "gps/nmea.h"
#include "link/port.h"
#include "link/readers.h"
#include "platform/clock.h"

namespace kalmira {

// Hands a completed line from the receiver over and waits until it has been handled; the line is valid during the call
// only. False: the link is being closed; the reader then ends and touches nothing any more.
using LineHandOver = std::function<bool(const GpsLine&)>;

// The loop that runs on the GPS port's thread. What is handed in must outlive it. Purges the port when it begins.
ReaderEnd GpsReaderThread(Port& port, const Clock& clock, const std::atomic<bool>& stop, const LineHandOver& handOver);

// The monitor's reader: shows what a GPS receiver sends, and sends it messages, on the thread of its port.

// What the window wants of the reader. The port belongs to the reader's thread alone, so that a pause is a reader that
// waits, and nothing is ever read while a message goes out.
struct MonitorRequest {
  enum class What {
    go,     // purge the port, read on
    pause,  // purge the port, wait
    send,   // purge the port, write `bytes`, read on even if it was waiting
  };
  What what = What::go;
  std::string bytes{};
};

// The requests on their way, done in the order they were asked. Any thread may call any member.
class MonitorRequests {
 public:
  void ask(MonitorRequest request);
  // The next one; nothing when there is none within the time.
  std::optional<MonitorRequest> take(std::chrono::milliseconds wait = std::chrono::milliseconds(0));
  // Has messages that have not been begun do no more than a go: for a receiver that has gone they would come too late.
  // Their number.
  int dropMessages();
  void clear();

 private:
  std::mutex mutex_;
  std::condition_variable asked_;
  std::deque<MonitorRequest> waiting_;
};

// What the window is to show.
struct MonitorNews {
  enum class Kind { line, notSent, gone, back };
  Kind kind = Kind::line;
  std::string text{};  // plain ASCII, what the list is to show
};
// Hands the news over and waits until they are shown. False: the port is being closed.
using NewsHandOver = std::function<bool(const MonitorNews&)>;

inline constexpr std::uint32_t kNoDataMs = 7000;
inline constexpr std::string_view kNoData = "NO DATA";

struct MonitorReaderContext {
  Port& port;
  const Clock& clock;
  const std::atomic<bool>& stop;  // looked at every kReadSliceMs
  MonitorRequests& requests;
};

// Shows every completed line, whatever its checksum, and "NO DATA" after more than 7 s without one, again and again.
// All but printable ASCII shows as "?". Runs until it is stopped or the device has gone, which it then has told;
// `cameBack` has it tell first that the device is there again.
ReaderEnd GpsMonitorReaderThread(const MonitorReaderContext& context, const NewsHandOver& handOver, bool cameBack);

}  // namespace kalmira
