#include "logging/serial_session_ports.h"

#include <fmt/format.h>

#include <memory>
#include <utility>

#include "link/com_devices.h"
#include "link/network_port.h"

namespace kalmira {
namespace {

constexpr std::chrono::milliseconds kRetryPeriod{1000};
// A receiver that has just been switched on may refuse the first tries.
constexpr int kGpsTries = 10;

}  // namespace

SerialSessionPorts::SerialSessionPorts(Kind kind, const Settings& settings, DeviceResolver deviceOf, LinkState& link,
                                       HandOver& handOver, const Clock& clock, const PortFactory& factory,
                                       SessionPortEvents events)
    : kind_(kind),
      settings_(settings),
      device_of_(std::move(deviceOf)),
      link_(link),
      clock_(clock),
      events_(std::move(events)),
      instrument_(factory, handOver),
      gps_(factory, handOver, kRetryPeriod),
      marker_(factory, handOver, kRetryPeriod) {}

std::optional<PortProblem> SerialSessionPorts::openPort(PortThread& thread, int comNumber, const LineSettings& line,
                                                        int tries, std::string_view message,
                                                        PortThread::Absent absent) {
  const std::string device = device_of_(comNumber);
  if (device.empty()) {
    return PortProblem{std::string(message),
                       fmt::format("No device stands for COM{}: plug one in or name one", comNumber)};
  }
  // A host that does not answer has had its time with one try.
  std::optional<PortError> error = thread.open(device, line, isNetworkName(device) ? 1 : tries, absent);
  if (!error) return std::nullopt;
  return PortProblem{std::string(message), std::move(error->text)};
}

ReaderContext SerialSessionPorts::contextOf(const PortThread::Context& context) const {
  return {.port = context.port, .link = link_, .clock = clock_, .stop = context.stop};
}

bool SerialSessionPorts::isSameDevice(int com, int other) const {
  if (com == other) return com != 0;
  const auto device = com == 0 ? std::string() : device_of_(com);
  const auto otherDevice = other == 0 ? std::string() : device_of_(other);
  return !device.empty() && !otherDevice.empty() && sameDevice(device, otherDevice);
}

std::optional<PortProblem> SerialSessionPorts::OpenInstrumentPort() {
  return openPort(instrument_, instrumentComNumber(settings_), instrumentLine(kind_), 1,
                  instrumentOf(kind_).portFailureText, PortThread::Absent::givenUp);
}

bool SerialSessionPorts::ProbeTeskRecord(const std::function<bool()>& interrupted) {
  probed_ = instrument_.call(
      [this](const PortThread::Context& context) { return kalmira::ProbeTeskRecord(contextOf(context)); }, interrupted);
  return probed_;
}

void SerialSessionPorts::startInstrumentReader() {
  const bool markerOnInstrumentPort =
      markerPlaceOf(kind_, settings_) == MarkerPlace::instrumentPort ||
      (instrumentOf(kind_).hasMarker &&
       isSameDevice(markerComNumber(settings_.markerPortChoice), instrumentComNumber(settings_)));
  instrument_.start([this, markerOnInstrumentPort](const PortThread::Context& context) {
    return readInstrument(context, markerOnInstrumentPort);
  });
}

ReaderEnd SerialSessionPorts::readInstrument(const PortThread::Context& context, bool markerOnInstrumentPort) {
  // An instrument that was switched off and on may send the other length.
  while (instrumentOf(kind_).asksRecordLength && !probed_.exchange(false)) {
    bool gone = false;
    const bool answered = kalmira::ProbeTeskRecord(contextOf(context), &gone);
    if (gone) return ReaderEnd::gone;
    if (context.stop) return ReaderEnd::stopped;
    if (answered) break;
  }
  const HandOver::Work work = [this] { events_.onRecord(); };
  const RecordHandOver handOver = [&] { return context.sender.send(work); };
  switch (instrumentOf(kind_).framing) {
    case Framing::ice: return InstrumentReaderIce(contextOf(context), handOver);
    case Framing::tesk2: return InstrumentReaderTesk2(contextOf(context), markerOnInstrumentPort, handOver);
    case Framing::ascii: break;
  }
  return InstrumentReaderAscii(contextOf(context), kind_, handOver);
}

void SerialSessionPorts::closeInstrumentPort() { instrument_.close(); }

bool SerialSessionPorts::instrumentGone() const { return instrument_.gone(); }

void SerialSessionPorts::reopenInstrumentPort() { instrument_.reopen(); }

std::optional<PortProblem> SerialSessionPorts::openGps() {
  return openPort(gps_, gpsComNumber(settings_), gpsPortLine(settings_), kGpsTries, "Cannot open GPS port",
                  PortThread::Absent::triedAgain);
}

std::optional<PortProblem> SerialSessionPorts::OpenGpsPort() {
  gps_wanted_ = true;
  return openGps();
}

void SerialSessionPorts::startGpsReader() {
  if (!gps_.isOpen()) return;
  gps_.start([this](const PortThread::Context& context) {
    return GpsReaderThread(context.port, clock_, context.stop, [&](const GpsLine& line) {
      // A copy: the handling may close this very port, and goes on with the line when its reader has ended.
      return context.sender.send([this, kept = std::make_shared<const GpsLine>(line)] { events_.onSentence(*kept); });
    });
  });
}

bool SerialSessionPorts::gpsGone() const { return gps_wanted_ && (!gps_.isOpen() || gps_.gone()); }

void SerialSessionPorts::closeGpsPort() {
  gps_wanted_ = false;
  gps_.close();
}

std::optional<PortProblem> SerialSessionPorts::openMarker() {
  return openPort(marker_, markerComNumber(settings_.markerPortChoice), markerLine(kind_), 1,
                  "Cannot open External Marker port", PortThread::Absent::triedAgain);
}

std::optional<PortProblem> SerialSessionPorts::OpenMarkerPort() {
  marker_wanted_ = true;
  return openMarker();
}

bool SerialSessionPorts::markerGone() const { return marker_wanted_ && (!marker_.isOpen() || marker_.gone()); }

void SerialSessionPorts::lookForAbsentPorts() {
  if (gps_wanted_ && !gps_.isOpen()) {
    (void)openGps();
    startGpsReader();
  }
  if (marker_wanted_ && !marker_.isOpen()) {
    (void)openMarker();
    startMarkerReader();
  }
}

void SerialSessionPorts::startMarkerReader() {
  if (!marker_.isOpen()) return;
  marker_.start([this](const PortThread::Context& context) { return MarkerLineThread(contextOf(context)); });
}

void SerialSessionPorts::closeMarkerPort() {
  marker_wanted_ = false;
  marker_.close();
}

}  // namespace kalmira
