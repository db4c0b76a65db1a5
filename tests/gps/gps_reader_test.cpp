#include "gps/gps_reader.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/scripted_port.h"

namespace kalmira {
namespace {

TEST(GpsReader, LinesComeWithTheTickOfTheirFirstByte) {
  FakeClock clock;
  std::atomic<bool> stop{false};
  ScriptedPort port{clock, stop};
  std::vector<GpsLine> lines;
  port.steps = {{.bytes = "junk$GPG", .silenceMs = 30},
                {.bytes = "GA,1*00\r\n$GPGSA,2\r\n", .silenceMs = 70}};
  GpsReaderThread(port, clock, stop, [&](const GpsLine& line) {
    lines.push_back(line);
    return true;
  });
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[0].text, "$GPGGA,1*00");
  EXPECT_EQ(lines[0].tick, 100030U);
  EXPECT_EQ(lines[1].text, "$GPGSA,2");
  EXPECT_EQ(lines[1].tick, 100100U);
  EXPECT_EQ(port.purges, 1) << "what came before it was listened to is of unknown age";
}

}  // namespace
}  // namespace kalmira
