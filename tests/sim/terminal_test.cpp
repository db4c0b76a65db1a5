#include <fcntl.h>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "sim/terminal_outlet.h"

namespace kalmira::sim {
namespace {

namespace fs = std::filesystem;

class TerminalTest : public testing::Test {
 protected:
  TerminalTest() { fs::create_directory(folder_); }
  ~TerminalTest() override {
    std::fclose(names_);
    fs::remove_all(folder_);
  }

  static int openLine(const fs::path& path) { return ::open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC); }

  // What arrives until the line has been still for 50 ms.
  static std::string arrived(int line) {
    std::string text;
    pollfd wait{.fd = line, .events = POLLIN, .revents = 0};
    char bytes[512];
    while (::poll(&wait, 1, 50) > 0) {
      const auto count = ::read(line, bytes, sizeof bytes);
      if (count <= 0) return text + "<hung up>";
      text.append(bytes, static_cast<std::size_t>(count));
    }
    return text;
  }

  // The kernel hands bytes over in its own time.
  static bool arrives(const TerminalOutlet& outlet) {
    for (int i = 0; i < 1000 && outlet.caughtUp(); ++i) ::usleep(1000);
    return !outlet.caughtUp();
  }

  std::string names() const {
    std::ifstream file(folder_ / "names");
    return {std::istreambuf_iterator<char>(file), {}};
  }

  fs::path folder_ = fs::temp_directory_path() / fmt::format("terminal_test_{}", ::getpid());
  fs::path link_ = folder_ / "instrument";
  std::FILE* names_ = (fs::create_directory(folder_), std::fopen((folder_ / "names").c_str(), "w"));
};

TEST_F(TerminalTest, BytesArriveThroughTheLinkAsTheyAre) {
  fs::create_symlink("/nowhere", link_);  // left behind by an earlier run
  TerminalOutlet outlet(link_, {}, names_);
  ASSERT_EQ(outlet.plug(), "");
  EXPECT_EQ(names().find(fmt::format("instrument {}\ngps /dev/", fs::read_symlink(link_).string())), 0U);
  const std::string record("T\x06\0\r\n\x11\x13\x04\x7F\xFF\x03", 11);
  outlet.send(Port::instrument, record, 0);
  ASSERT_TRUE(arrives(outlet));
  const int line = openLine(link_);
  EXPECT_EQ(arrived(line), record);
  // A late second reader of a line that nobody has read for long gets only what is new.
  for (int i = 1; i <= 6; ++i) {
    outlet.send(Port::instrument, "old", i);
    ASSERT_TRUE(arrives(outlet));
  }
  outlet.send(Port::instrument, "new", 7);
  EXPECT_EQ(arrived(line), "new");
  outlet.unplug();
  EXPECT_FALSE(fs::exists(fs::symlink_status(link_)));
  EXPECT_EQ(arrived(line), "<hung up>");
  ASSERT_EQ(outlet.plug(), "");
  EXPECT_TRUE(fs::is_symlink(link_));
  ::close(line);
}

TEST_F(TerminalTest, LinksNeverReplaceFilesNorRemoveForeignLinks) {
  std::ofstream(link_) << "precious";
  TerminalOutlet refused(link_, {}, names_);
  EXPECT_NE(refused.plug().find("left alone"), std::string::npos);
  EXPECT_EQ(fs::file_size(link_), 8U);
  fs::remove(link_);
  {
    TerminalOutlet outlet(link_, {}, names_);
    ASSERT_EQ(outlet.plug(), "");
    fs::remove(link_);
    fs::create_symlink("/dev/null", link_);  // another simulator took it over
  }
  EXPECT_EQ(fs::read_symlink(link_), "/dev/null");
}

}  // namespace
}  // namespace kalmira::sim
