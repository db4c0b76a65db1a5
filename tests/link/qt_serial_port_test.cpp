#include "link/port.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <termios.h>

#include <QtCore/QCoreApplication>
#include <chrono>
#include <filesystem>

#include "support/pty.h"
#include "support/temp_folder.h"

namespace kalmira {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
namespace fs = std::filesystem;

struct QtSerialPortTest : testing::Test {
  int argc = 1;
  char name[5] = "test";
  char* argv[2] = {name, nullptr};
  QCoreApplication application{argc, argv};
  Pty pty;
  std::unique_ptr<Port> port = makeQtSerialPort();

  std::string read(int timeoutMs) {
    std::array<std::uint8_t, 64> buffer{};
    const ReadResult result = port->read(buffer, timeoutMs);
    if (result.gone) return "gone";
    return {buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(result.count)};
  }
  std::string textOf(const std::optional<PortError>& error, PortErrorKind kind) {
    if (!error) return "opened";
    EXPECT_EQ(error->kind, kind);
    return error->text;
  }
};

TEST_F(QtSerialPortTest, TakesAPseudoTerminalForASerialPort) {
  ASSERT_FALSE(port->open(pty.name, instrumentLine(Kind::tesk2)));
  termios line{};
  ASSERT_EQ(tcgetattr(pty.master(), &line), 0);
  EXPECT_EQ(cfgetospeed(&line), static_cast<speed_t>(B19200));  // of this kind; of others 9600
  EXPECT_EQ(instrumentLine(Kind::orla).baud, 9600);
  EXPECT_EQ(line.c_iflag & (IXON | IXOFF | ICRNL), 0U);
  EXPECT_EQ(read(10), "");
  ASSERT_TRUE(pty.send("a\r\n\x11\xff"));
  EXPECT_EQ(read(1000), "a\r\n\x11\xff");
  EXPECT_EQ(port->modemStatus(), 0U);
  const std::array<std::uint8_t, 3> bytes{'x', '\n', 'y'};
  EXPECT_TRUE(port->write(bytes, 1000));
  EXPECT_EQ(pty.receive(), "x\ny");
  ASSERT_TRUE(pty.send("old"));
  port->purge();
  ASSERT_TRUE(pty.send("new"));
  EXPECT_EQ(read(1000), "new");
}

TEST_F(QtSerialPortTest, PulledCableIsNoticedAtOnceAndStays) {
  ASSERT_FALSE(port->open(pty.name, instrumentLine(Kind::orla)));
  pty.unplug();
  const auto start = steady_clock::now();
  EXPECT_EQ(read(5000), "gone");
  EXPECT_EQ(read(5000), "gone");
  EXPECT_LT(steady_clock::now() - start, milliseconds(1000));
}

TEST_F(QtSerialPortTest, DeviceIsOursAloneUnderAllItsNames) {
  ASSERT_FALSE(port->open(pty.name, instrumentLine(Kind::orla)));
  const TempFolder folder;
  const fs::path link = folder.path() / "by_id";
  fs::create_symlink(pty.name, link);
  const auto second = makeQtSerialPort();
  EXPECT_EQ(textOf(second->open(link, instrumentLine(Kind::orla)), PortErrorKind::held),
            fmt::format("{} is held by {} (process {}): end that program", pty.name, nameOf(getpid()), getpid()));
  // What other programs look at; the kernel's own lock would outlive a killed program.
  const int other = ::open(pty.name.c_str(), O_RDWR | O_NOCTTY);
  EXPECT_NE(flock(other, LOCK_EX | LOCK_NB), 0);
  int exclusive = -1;
  if (ioctl(other, TIOCGEXCL, &exclusive) == 0) {  // an emulator does not know it
    EXPECT_EQ(exclusive, 0);
  }
  ::close(other);
  port->close();
  EXPECT_FALSE(second->open(link, instrumentLine(Kind::orla)));
}

}  // namespace
}  // namespace kalmira
