#include "sim/replay.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace kalmira::sim {
namespace {

using namespace std::string_literals;

class ReplayTest : public testing::Test {
 protected:
  ~ReplayTest() override { std::filesystem::remove(path_); }

  // What a file of these records behind a header plays: "milliseconds port bytes".
  std::vector<std::string> played(Kind kind, const std::string& records, double speed = 1) {
    std::ofstream(path_, std::ios::binary) << formatHeader1({.kind = kind}) << records;
    Replay replay(speed);
    EXPECT_EQ(replay.open(path_), "");
    EXPECT_EQ(replay.kind(), kind);
    std::vector<std::string> pieces;
    while (const auto piece = replay.next()) {
      pieces.push_back(fmt::format("{:.0f} {} {}", piece->time_s * 1000, piece->port == Port::gps ? 'g' : 'i',
                                   piece->bytes));
    }
    EXPECT_EQ(replay.error(), "");
    return pieces;
  }

  std::string path_ = std::filesystem::temp_directory_path() / fmt::format("replay_test_{}", ::getpid());
};

TEST_F(ReplayTest, ReadingsAndSentencesComeAtTheirTicks) {
  const std::string gga = "$GPGGA,080000.00,5924.75000,N,02444.16593,E,1,09,1.1,34.2,M,18.0,M,,*55";
  const auto records = formatNote(24, tag::kEvent, "$STARTED", 900) +
                       formatReading(24, "T$-1000-0500", 1000) + formatReading(24, "3$-1001-0500", 1091) +
                       formatGpsSentence(24, gga, 1050, tag::kGpsFirst, tag::kGpsMore) +
                       formatGpsSentence(24, "noise", 1100, tag::kTextFirst, tag::kTextMore) +
                       formatReading(24, "t$-1002-0500", 1300) + "T$-10";
  const std::vector<std::string> expected{"0 i T$-1000-0500\r", "91 i T$-1001-0500\r", "91 g " + gga + "\r\n",
                                          "100 g noise\r\n", "300 i t$-1002-0500\r"};
  EXPECT_EQ(played(Kind::orla, records), expected);
  EXPECT_EQ(played(Kind::orla, records, 10).back(), "30 i t$-1002-0500\r");
}

TEST_F(ReplayTest, TimeGoesOnAcrossTheWrapOfTheTick) {
  const auto records = formatReading(24, "T$-1000-0500", 4294967290U) + formatReading(24, "T$-1001-0500", 94);
  EXPECT_EQ(played(Kind::orla, records)[1], "100 i T$-1001-0500\r");
}

TEST_F(ReplayTest, RecordsOfEveryFramingGetTheirOwnLengthBack) {
  EXPECT_EQ(played(Kind::tesk, formatReading(24, "2$-1000     ", 5))[0], "0 i T$-1000\r");
  EXPECT_EQ(played(Kind::tesk, formatReading(24, "T$-1000+0000", 5))[0], "0 i T$-1000+0000\r");
  EXPECT_EQ(played(Kind::glaco, formatReading(24, "T185I042    ", 5))[0], "0 i T185I042");
  const auto binary = "T\x02\n\n\x80\0\x80\0\x80\0\0\x9B\0  "s.substr(0, 14);
  EXPECT_EQ(played(Kind::tesk2, formatReading(26, binary, 5))[0], "0 i " + binary + "\xFF\xFF");
}

TEST_F(ReplayTest, WhatIsNoDataFileIsRefused) {
  Replay replay(1);
  EXPECT_NE(replay.open(path_).find(path_), std::string::npos);
  std::ofstream(path_) << "Dear diary, today I walked a line.\n";
  EXPECT_NE(replay.open(path_).find("no data file"), std::string::npos);
}

}  // namespace
}  // namespace kalmira::sim
