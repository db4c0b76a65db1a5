#include "sim/replay.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "support/temp_folder.h"

namespace kalmira::sim {
namespace {

TEST(Replay, PlaysReadingsAndSentencesAtTheirTicks) {
  const TempFolder folder;
  const auto path = (folder.path() / "survey").string();
  const std::string gga = "$GPGGA,080000.00,5924.75000,N,02444.16593,E,1,09,1.1,34.2,M,18.0,M,,*55";
  writeFile(path, formatHeader1({.kind = Kind::tesk}) + formatNote(24, tag::kEvent, "$STARTED", 900) +
                      formatReading(24, "T$-1000", 4294967290U) + formatReading(24, "3$-1001-0500", 85) +
                      formatGpsSentence(24, gga, 44, tag::kGpsFirst, tag::kGpsMore) + "T$-10");
  Replay replay(0.5);
  ASSERT_EQ(replay.open(path), "");
  std::string played;
  while (const auto piece = replay.next()) {
    played += fmt::format("{:.0f} {} {}|", piece->time_s * 1000, piece->port == Port::gps ? 'g' : 'i',
                          piece->bytes);
  }
  EXPECT_EQ(played, "0 i T$-1000\r|182 i T$-1001-0500\r|182 g " + gga + "\r\n|");
  EXPECT_EQ(replay.error(), "");
}

}  // namespace
}  // namespace kalmira::sim
