#include "logging/serial_session_ports.h"

#include <fmt/format.h>

#include <memory>
#include <utility>

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
                                                        int tries, std::string_view message) {
  const std::string device = device_of_(comNumber);
  if (device.empty()) {
    return PortProblem{std::string(message),
                       fmt::format("No device stands for COM{}: plug one in or name one", comNumber)};
  }
  std::optional<PortError> error = thread.open(device, line, tries);
  if (!error) return std::nullopt;
  return PortProblem{std::string(message), std::move(error->text)};
}

ReaderContext SerialSessionPorts::contextOf(const PortThread::Context& context) const {
  return {.port = context.port, .link = link_, .clock = clock_, .stop = context.stop};
}

std::optional<PortProblem> SerialSessionPorts::OpenInstrumentPort() {
  return openPort(instrument_, instrumentComNumber(settings_), instrumentLine(kind_), 1,
                  instrumentOf(kind_).portFailureText);
}

bool SerialSessionPorts::ProbeTeskRecord() {
  return instrument_.call(
      [this](const PortThread::Context& context) { return kalmira::ProbeTeskRecord(contextOf(context)); });
}

void SerialSessionPorts::startInstrumentReader() {
  const bool markerOnInstrumentPort = markerPlaceOf(kind_, settings_) == MarkerPlace::instrumentPort;
  instrument_.start([this, markerOnInstrumentPort](const PortThread::Context& context) {
    return readInstrument(context, markerOnInstrumentPort);
  });
}

ReaderEnd SerialSessionPorts::readInstrument(const PortThread::Context& context, bool markerOnInstrumentPort) {
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

std::optional<PortProblem> SerialSessionPorts::OpenGpsPort() {
  return openPort(gps_, gpsComNumber(settings_), gpsPortLine(settings_), kGpsTries, "Cannot open GPS port");
}

void SerialSessionPorts::startGpsReader() {
  gps_.start([this](const PortThread::Context& context) {
    return GpsReaderThread(context.port, clock_, context.stop, [&](const GpsLine& line) {
      // A copy: the handling may close this very port, and goes on with the line when its reader has ended.
      return context.sender.send([this, kept = std::make_shared<const GpsLine>(line)] { events_.onSentence(*kept); });
    });
  });
}

void SerialSessionPorts::closeGpsPort() { gps_.close(); }

std::optional<PortProblem> SerialSessionPorts::OpenMarkerPort() {
  return openPort(marker_, markerComNumber(settings_.markerPortChoice), markerLine(kind_), 1,
                  "Cannot open External Marker port");
}

void SerialSessionPorts::startMarkerReader() {
  marker_.start([this](const PortThread::Context& context) { return MarkerLineThread(contextOf(context)); });
}

void SerialSessionPorts::closeMarkerPort() { marker_.close(); }

}  // namespace kalmira
