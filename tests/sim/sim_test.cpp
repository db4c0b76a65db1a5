#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <limits>

#include "sim/player.h"
#include "sim/terminal_outlet.h"
#include "support/temp_folder.h"

namespace kalmira::sim {
namespace {

constexpr double kForever = std::numeric_limits<double>::infinity();

// Notes, in tenths of a second: "3i" a record, "3g" a sentence, "3-" unplugged, "3+" plugged.
struct Recorder final : Pace, Outlet {
  bool waitUntil(double time_s) override {
    now_s = time_s;
    return time_s < stop_s;
  }
  void send(Port port, std::string_view, double) override { note(port == Port::gps ? 'g' : 'i'); }
  void unplug() override { note('-'); }
  std::string plug() override { return note('+'), std::string(); }
  void note(char what) { log += fmt::format("{:.0f}{} ", now_s * 10, what); }

  double now_s = 0, stop_s = kForever;
  std::string log;
};

// `count` records, one every 0.1 s; every third is a sentence.
TransmissionSource ticking(int count) {
  return [count, i = 0]() mutable -> std::optional<Transmission> {
    if (i == count) return std::nullopt;
    const auto number = i++;
    return Transmission{number / 10.0, number % 3 == 2 ? Port::gps : Port::instrument, std::string(100, 'x')};
  };
}

TEST(Player, FaultsFallWhereTheyAreAsked) {
  struct Row {
    const char* what;
    Faults faults;
    double end_s, stop_s;
    std::string expected;
  };
  for (const auto& row : std::initializer_list<Row>{
           {"no faults, to the end of the source", {}, kForever, kForever, "0i 1i 2g 3i 4i 5g "},
           {"an end", {}, 0.3, kForever, "0i 1i 2g "},
           {"stopped", {}, kForever, 0.2, "0i 1i "},
           {"silence", {.silence = {{0.1, 0.15}, {0.45, 0.1}}}, kForever, kForever, "0i 3i 4i "},
           {"unplugged", {.unplug = {{0.15, 0.2}}}, kForever, kForever, "0i 1i 2- 4+ 4i 5g "},
           {"overlapping", {.unplug = {{0.1, 0.2}, {0.2, 0.25}}}, kForever, kForever, "0i 1- 4+ 5g "},
           {"unplugged for no time", {.unplug = {{0.1, 0}}}, 0.2, kForever, "0i 1i "},
           {"ended while unplugged", {.unplug = {{0.1, 9}}}, 0.4, kForever, "0i 1- "}}) {
    Recorder recorder;
    recorder.stop_s = row.stop_s;
    EXPECT_EQ(play(ticking(6), row.faults, row.end_s, recorder, recorder), "") << row.what;
    EXPECT_EQ(recorder.log, row.expected) << row.what;
  }
}

struct TerminalTest : testing::Test {
  TempFolder folder;
  std::filesystem::path link = folder.path() / "instrument";
  std::FILE* names = std::fopen((folder.path() / "names").c_str(), "w");
  ~TerminalTest() override { std::fclose(names); }
};

TEST_F(TerminalTest, LinksNeverReplaceFilesNorRemoveForeignLinks) {
  writeFile(link, "precious");
  TerminalOutlet refused(link, {}, names);
  EXPECT_NE(refused.plug().find("left alone"), std::string::npos);
  EXPECT_EQ(readFile(link), "precious");
  std::filesystem::remove(link);
  {
    TerminalOutlet outlet(link, {}, names);
    ASSERT_EQ(outlet.plug(), "");
    std::filesystem::remove(link);
    std::filesystem::create_symlink("/dev/null", link);  // another simulator took it over
  }
  EXPECT_EQ(std::filesystem::read_symlink(link), "/dev/null");
}

}  // namespace
}  // namespace kalmira::sim
