#include "link/port.h"

#include <fmt/format.h>

#include <QtCore/QEventLoop>
#include <QtSerialPort/QSerialPort>
#include <optional>
#include <string>

#include "link/com_devices.h"
#include "link/device_claim.h"

#ifdef Q_OS_UNIX
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#endif

namespace kalmira {
namespace {

QSerialPort::Parity qtParity(Parity parity) {
  switch (parity) {
    case Parity::even: return QSerialPort::EvenParity;
    case Parity::odd: return QSerialPort::OddParity;
    case Parity::none: break;
  }
  return QSerialPort::NoParity;
}

class QtSerialPort final : public Port {
 public:
  ~QtSerialPort() override { close(); }

  std::optional<PortError> open(const std::string& device, const LineSettings& line) override;
  ReadResult read(std::span<std::uint8_t> buffer, int timeoutMs) override;
  void purge() override;
  unsigned modemStatus() override;
  bool write(std::span<const std::uint8_t> bytes, int timeoutMs) override;
  void close() override;

 private:
  PortError openingError(const std::string& path) const;
  void setLine(const LineSettings& line, const LineSettings& found);

  // Gives this thread what Qt's notifiers need; it is never run.
  QEventLoop events_;
  DeviceClaim claim_;
  std::optional<QSerialPort> port_;
  bool seven_bits_ = false;
};

std::optional<PortError> QtSerialPort::open(const std::string& device, const LineSettings& line) {
  close();
  // Links (".../by-id/...") are followed: two names of one device must not give two ports.
  const std::string path = realDevice(device);
  if (auto error = claim_.take(path)) return error;
  const LineSettings found = claim_.found();
  port_.emplace();
  port_->setPortName(QString::fromStdString(path));
  if (!port_->open(QIODevice::ReadWrite)) {
    PortError error = openingError(path);
    close();
    return error;
  }
  setLine(line, found);
#ifndef Q_OS_WIN
  askForLowLatency(port_->handle());
  dropLastingExclusiveMode(port_->handle(), path);
#endif
  return std::nullopt;
}

PortError QtSerialPort::openingError(const std::string& path) const {
  // The claim has seen to the device itself; what remains is a lock file of another user's program.
  if (port_->error() == QSerialPort::PermissionError) {
    return {PortErrorKind::held, fmt::format("{} is held by another program: its lock file is in /var/lock", path)};
  }
  return {PortErrorKind::other, fmt::format("{}: {}", path, port_->errorString().toStdString())};
}

// A device that refuses a setting is used as it is, so none of these is looked at.
void QtSerialPort::setLine(const LineSettings& line, const LineSettings& found) {
  // Opening has set Qt's own defaults, so what is to be left as it was is set back.
  if (const auto baud = line.baud ? line.baud : found.baud) port_->setBaudRate(*baud);
  seven_bits_ = line.dataBits == 7;
  if (const auto bits = line.dataBits ? line.dataBits : found.dataBits) {
    port_->setDataBits(*bits == 7 ? QSerialPort::Data7 : QSerialPort::Data8);
  }
  if (const auto parity = line.parity ? line.parity : found.parity) port_->setParity(qtParity(*parity));
  if (const auto bits = line.stopBits ? line.stopBits : found.stopBits) {
    port_->setStopBits(*bits == 2 ? QSerialPort::TwoStop : QSerialPort::OneStop);
  }
  port_->setFlowControl(line.xonXoff ? QSerialPort::SoftwareControl : QSerialPort::NoFlowControl);
  if (line.dtr) port_->setDataTerminalReady(*line.dtr);
  if (line.rts) port_->setRequestToSend(*line.rts);
  port_->clearError();
}

#ifdef Q_OS_UNIX

// Straight from the descriptor: the port's own way, through a buffer, notifiers and signals, takes a third more
// processor time a record. Nothing else reads it, for no event loop runs.
ReadResult QtSerialPort::read(std::span<std::uint8_t> buffer, int timeoutMs) {
  if (!port_) return {.count = 0, .gone = true};
  pollfd wait{.fd = port_->handle(), .events = POLLIN, .revents = 0};
  const int ready = ::poll(&wait, 1, timeoutMs);
  if (ready == 0 || (ready < 0 && errno == EINTR)) return {};
  const ssize_t count = ready < 0 ? -1 : ::read(wait.fd, buffer.data(), buffer.size());
  // A device that knows no data bits, as pseudo-terminals and some adapters, hands the parity up with the byte.
  for (ssize_t i = 0; seven_bits_ && i < count; ++i) buffer[static_cast<std::size_t>(i)] &= 0x7F;
  if (count > 0) return {.count = static_cast<std::size_t>(count), .gone = false};
  // Woken for nothing now and then; but a device that has hung up wakes at once for ever.
  const bool hungUp = (wait.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0;
  const bool later = count == 0 || errno == EAGAIN || errno == EINTR;
  return {.count = 0, .gone = hungUp || !later};
}

#else

ReadResult QtSerialPort::read(std::span<std::uint8_t> buffer, int timeoutMs) {
  if (!port_) return {.count = 0, .gone = true};
  if (port_->bytesAvailable() == 0) {
    port_->clearError();
    if (!port_->waitForReadyRead(timeoutMs)) {
      // Any error but the end of the time comes at once and would come again: the device does not answer.
      return {.count = 0, .gone = port_->error() != QSerialPort::TimeoutError};
    }
  }
  const qint64 count = port_->read(reinterpret_cast<char*>(buffer.data()), static_cast<qint64>(buffer.size()));
  return {.count = count > 0 ? static_cast<std::size_t>(count) : 0, .gone = count < 0};
}

#endif

void QtSerialPort::purge() {
  if (!port_) return;
  port_->clear(QSerialPort::Output);
  port_->clear(QSerialPort::Input);
}

unsigned QtSerialPort::modemStatus() {
  if (!port_) return 0;
  const QSerialPort::PinoutSignals lines = port_->pinoutSignals();
  unsigned status = 0;
  if (lines.testFlag(QSerialPort::ClearToSendSignal)) status |= kCtsOn;
  if (lines.testFlag(QSerialPort::DataSetReadySignal)) status |= kDsrOn;
  if (lines.testFlag(QSerialPort::RingIndicatorSignal)) status |= kRingOn;
  if (lines.testFlag(QSerialPort::DataCarrierDetectSignal)) status |= kRlsdOn;
  return status;
}

bool QtSerialPort::write(std::span<const std::uint8_t> bytes, int timeoutMs) {
  if (!port_) return false;
  const auto size = static_cast<qint64>(bytes.size());
  if (port_->write(reinterpret_cast<const char*>(bytes.data()), size) != size) return false;
  while (port_->bytesToWrite() > 0) {
    if (!port_->waitForBytesWritten(timeoutMs)) return false;
  }
  return true;
}

void QtSerialPort::close() {
  if (port_ && port_->isOpen()) {
    // A device that takes nothing would have the system wait for it.
    port_->clear(QSerialPort::Output);
    port_->close();
  }
  port_.reset();
  claim_.release();
}

}  // namespace

std::unique_ptr<Port> makeQtSerialPort() { return std::make_unique<QtSerialPort>(); }

}  // namespace kalmira
