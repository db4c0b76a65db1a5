#include "gps/nmea.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kalmira {
namespace {

// The lines that come out of `stream`, whose bytes arrive at ticks 0, 1, 2 and so on; each with its tick in
// front.
std::vector<std::string> lines(std::string_view stream, std::size_t limit = NmeaFramer::kLoggingLimit) {
  NmeaFramer framer(limit);
  std::vector<std::string> seen;
  std::uint32_t tick = 0;
  for (const char byte : stream) {
    if (framer.feed(static_cast<std::uint8_t>(byte), tick++)) {
      seen.push_back(std::to_string(framer.line().tick) + ' ' + framer.line().text);
    }
  }
  return seen;
}

using Lines = std::vector<std::string>;

TEST(NmeaFraming, CutsAtLineFeedsAndTakesTheByteBefore) {
  EXPECT_EQ(lines("$GPGGA,1*00\r\n$GPGSA,2*00\r\n"), (Lines{"0 $GPGGA,1*00", "13 $GPGSA,2*00"}));
  EXPECT_EQ(lines("$GP12\n"), Lines{"0 $GP1"});  // whatever that byte is
  EXPECT_EQ(lines("\n\n$A\r\n\n"), Lines{"2 $A"});
  EXPECT_EQ(lines("\r\n"), Lines{"0 "});
}

TEST(NmeaFraming, StartsAgainAtEveryDollar) {
  EXPECT_EQ(lines("GGA,1*00\r\n"), Lines{"0 GGA,1*00"});
  EXPECT_EQ(lines("6,7*00$GPGGA\r\n"), Lines{"6 $GPGGA"});
  EXPECT_EQ(lines("$GPGG$GPGSA\r\n"), Lines{"5 $GPGSA"});
}

TEST(NmeaFraming, CutsTheTextAtANul) {
  EXPECT_EQ(lines(std::string_view("$GP\0GGA\r\n$B\r\n", 13)), (Lines{"0 $GP", "9 $B"}));
}

TEST(NmeaFraming, RestartsALineThatIsTooLong) {
  for (const std::size_t limit : {NmeaFramer::kLoggingLimit, NmeaFramer::kMonitorLimit}) {
    SCOPED_TRACE(limit);
    // limit + 1 bytes fit, the carriage return among them.
    const std::string longest = '$' + std::string(limit - 1, 'a');
    EXPECT_EQ(lines(longest + "\r\n", limit), Lines{"0 " + longest});
    EXPECT_EQ(lines(longest + "bc\r\n", limit), Lines{std::to_string(limit + 1) + " c"});
    const std::string endless(20 * (limit + 1), 'x');
    EXPECT_EQ(lines('$' + endless + "yz\r\n$B\r\n", limit),
              (Lines{std::to_string(endless.size()) + " xyz", std::to_string(endless.size() + 5) + " $B"}));
  }
}

TEST(NmeaChecksum, ComparesTheBytesBeforeTheFirstStarWithTheValueAfterTheLast) {
  struct Row {
    const char* line;
    bool ok;
  };
  const std::vector<Row> rows{
      {"$GPGGA,092750.000,5321.6802,N,00630.3372,W,1,8,1.03,61.7,M,55.2,M,,*76", true},
      {"$GPGGA,092750.000,5321.6802,N,00630.3372,W,1,8,1.03,61.7,M,55.2,M,,*77", false},
      {"$AB*03", true},  // 41 ^ 42
      {"$AB*3", true},
      {"$AB*03junk", true},
      {"$AB* +0x03", true},
      {"$Aj*2b", true},  // 41 ^ 6A
      {"$Aj*2B", true},
      {"$AB*", false},
      {"$AB*103", false},
      {"$AB*100000003", false},
      {"$AB*-3", false},
      {"$AA*zz", true},  // no digits are 0
      {"$AB*99*03", true},
      {"$AB*03*99", false},
      {"$AB", false},
      {"AB*03", false},
      {"$*00", true},
      {"$*", true},
      {"$", false},
      {"*00", false},
      {"", false}};
  for (const auto& [line, ok] : rows) EXPECT_EQ(nmeaChecksumOk(line), ok) << line;
}

TEST(NmeaField, CountsFromOneAndTakesTheRestForTheLast) {
  const std::string sentence = "$GPGSA,A,,1.8*33";
  const std::vector<std::string> fields{"$GPGSA", "A", "", "1.8*33"};
  std::string out;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    EXPECT_EQ(GetNmeaField(sentence, static_cast<int>(i) + 1, ',', out), 1);
    EXPECT_EQ(out, fields[i]);
  }
  for (const int n : {5, 100, 0, -1}) {
    out = "untouched";
    EXPECT_EQ(GetNmeaField(sentence, n, ',', out), 0) << n;
    EXPECT_EQ(out, "untouched");
  }
  EXPECT_EQ(GetNmeaField("nothing to cut", 1, ',', out), 1);
  EXPECT_EQ(out, "nothing to cut");
  EXPECT_EQ(GetNmeaField("a;b,c;", 3, ';', out), 1);
  EXPECT_EQ(out, "");
}

}  // namespace
}  // namespace kalmira
