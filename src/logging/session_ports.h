#pragma once

#include <optional>
#include <string>

namespace kalmira {

// A port that could not be opened: the fixed message, then why and what helps.
struct PortProblem {
  std::string message;  // "Cannot open ORLA port"
  std::string detail;   // "/dev/ttyUSB0 is held by another program ..."
};

// The ports of one session and the threads that read them, as the session sees them. Every member is called on the
// session's own thread. Opening waits until the device has answered; closing ends the port's thread within 200 ms,
// whatever it is doing, and is safe on a port that is not open and from within the handling of a message of that very
// port.
class SessionPorts {
 public:
  SessionPorts() = default;
  SessionPorts(const SessionPorts&) = delete;
  SessionPorts& operator=(const SessionPorts&) = delete;
  virtual ~SessionPorts() = default;

  // Whether two COM numbers stand for one device, whatever names it has.
  virtual bool isSameDevice(int com, int other) const = 0;

  virtual std::optional<PortProblem> OpenInstrumentPort() = 0;
  // TESK: finds out the record length of the instrument behind the open port; sets recordLength and recordPeriodMs of
  // the link state. False when nothing known answered, and once `interrupted` says yes. The reader asks again by itself
  // whenever it begins anew.
  virtual bool ProbeTeskRecord(const std::function<bool()>& interrupted) = 0;
  virtual void startInstrumentReader() = 0;
  virtual void closeInstrumentPort() = 0;
  // True once the device has vanished under an open port (a pulled cable).
  virtual bool instrumentGone() const = 0;
  // Tries to open a vanished device again and goes on reading; says nothing and does not wait.
  virtual void reopenInstrumentPort() = 0;

  virtual std::optional<PortProblem> OpenGpsPort() = 0;
  virtual void startGpsReader() = 0;
  // True while a port that was wanted is not there: it could not be opened, or has vanished.
  virtual bool gpsGone() const = 0;
  // Looks for the devices of wanted ports that had none: about once a second.
  virtual void lookForAbsentPorts() = 0;
  virtual void closeGpsPort() = 0;

  virtual std::optional<PortProblem> OpenMarkerPort() = 0;
  virtual void startMarkerReader() = 0;
  virtual bool markerGone() const = 0;
  virtual void closeMarkerPort() = 0;
};

}  // namespace kalmira
