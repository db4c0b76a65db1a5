#pragma once

#include <atomic>
#include <functional>
#include <string>

#include "gps/gps_readers.h"
#include "gps/nmea.h"
#include "instruments/catalogue.h"
#include "link/port_thread.h"
#include "link/readers.h"
#include "logging/session_ports.h"
#include "platform/clock.h"
#include "platform/hand_over.h"
#include "settings/settings.h"

namespace kalmira {

// What a session does with what its ports bring. Both run on the session's thread, within HandOver::run, one at a time,
// while the reader that brought it waits.
struct SessionPortEvents {
  std::function<void()> onRecord;  // the record is in the link state
  std::function<void(const GpsLine&)> onSentence;
};

// The device of COM1 to COM12; empty when the number has none.
using DeviceResolver = std::function<std::string(int comNumber)>;

// The session's three ports, each on a thread of its own. Everything handed in must outlive it; the settings are read
// whenever a port is opened. A GPS receiver or a marker line that vanishes is tried again every second.
class SerialSessionPorts final : public SessionPorts {
 public:
  SerialSessionPorts(Kind kind, const Settings& settings, DeviceResolver deviceOf, LinkState& link, HandOver& handOver,
                     const Clock& clock, const PortFactory& factory, SessionPortEvents events);

  bool isSameDevice(int com, int other) const override;

  std::optional<PortProblem> OpenInstrumentPort() override;
  bool ProbeTeskRecord(const std::function<bool()>& interrupted) override;
  void startInstrumentReader() override;
  void closeInstrumentPort() override;
  bool instrumentGone() const override;
  void reopenInstrumentPort() override;

  std::optional<PortProblem> OpenGpsPort() override;
  void startGpsReader() override;
  bool gpsGone() const override;
  void lookForAbsentPorts() override;
  void closeGpsPort() override;

  std::optional<PortProblem> OpenMarkerPort() override;
  void startMarkerReader() override;
  bool markerGone() const override;
  void closeMarkerPort() override;

 private:
  std::optional<PortProblem> openPort(PortThread& thread, int comNumber, const LineSettings& line, int tries,
                                      std::string_view message, PortThread::Absent absent);
  std::optional<PortProblem> openGps();
  std::optional<PortProblem> openMarker();
  ReaderContext contextOf(const PortThread::Context& context) const;
  ReaderEnd readInstrument(const PortThread::Context& context, bool markerOnInstrumentPort);

  Kind kind_;
  const Settings& settings_;
  DeviceResolver device_of_;
  LinkState& link_;
  const Clock& clock_;
  SessionPortEvents events_;
  std::atomic<bool> probed_{false};  // the record length is known since the port was opened
  bool gps_wanted_ = false;
  bool marker_wanted_ = false;
  PortThread instrument_;
  PortThread gps_;
  PortThread marker_;
};

}  // namespace kalmira
