#include "gps/nmea.h"

#include <gmock/gmock.h>

#include "gps/fix_summary.h"
#include "gps/monitor.h"

namespace kalmira {
namespace {

using Lines = std::vector<std::string>;

// The lines that come out of `stream`, each with its tick in front; bytes arrive at ticks 0, 1, 2 and so on.
Lines lines(std::string_view stream, std::size_t limit = NmeaFramer::kLoggingLimit) {
  NmeaFramer framer(limit);
  Lines seen;
  std::uint32_t tick = 0;
  for (const char byte : stream) {
    if (framer.feed(static_cast<std::uint8_t>(byte), tick++))
      seen.push_back(std::to_string(framer.line().tick) + ' ' + framer.line().text);
  }
  return seen;
}

TEST(NmeaFraming, CutsAtLineFeedsAndStartsAgainAtEveryDollar) {
  struct Row {
    std::string_view stream;
    Lines lines;
  };
  for (const auto& row :
       std::initializer_list<Row>{{"$GPGGA,1*00\r\n$GPGSA,2*00\r\n", {"0 $GPGGA,1*00", "13 $GPGSA,2*00"}},
                                  {"$GP12\n", {"0 $GP1"}},  // the byte before, whatever it is
                                  {"\n\n$A\r\n\n", {"2 $A"}},
                                  {"\r\n", {"0 "}},
                                  {"GGA,1*00\r\n", {"0 GGA,1*00"}},
                                  {"6,7*00$GPGGA\r\n", {"6 $GPGGA"}},
                                  {"$GPGG$GPGSA\r\n", {"5 $GPGSA"}},
                                  {{"$GP\0GGA\r\n$B\r\n", 13}, {"0 $GP", "9 $B"}}}) {
    EXPECT_EQ(lines(row.stream), row.lines) << row.stream;
  }
  for (const std::size_t limit : {NmeaFramer::kLoggingLimit, NmeaFramer::kMonitorLimit}) {
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
  // "$AB" is 03, 41 ^ 42; no digits are 0.
  for (const auto* right : {"$GPGGA,092750.000,5321.6802,N,00630.3372,W,1,8,1.03,61.7,M,55.2,M,,*76", "$AB*03", "$AB*3",
                            "$AB*03junk", "$AB* +0x03", "$Aj*2b", "$Aj*2B", "$AA*zz", "$AB*99*03", "$*00", "$*"}) {
    EXPECT_TRUE(nmeaChecksumOk(right)) << right;
  }
  for (const auto* wrong : {"$GPGGA,092750.000,5321.6802,N,00630.3372,W,1,8,1.03,61.7,M,55.2,M,,*77", "$AB*", "$AB*103",
                            "$AB*100000003", "$AB*-3", "$AB*03*99", "$AB", "AB*03", "$", "*00", ""}) {
    EXPECT_FALSE(nmeaChecksumOk(wrong)) << wrong;
  }
}

TEST(FixSummary, SaysWhereTheReceiverIsAndHowWellItKnows) {
  using testing::ElementsAre;
  FixSummary summary;
  EXPECT_THAT(summary.texts(1000), ElementsAre("No position yet"));
  summary.take("$GPGGA,101307.00,5057.90000,S,00659.10000,W,2,09,1.1,50.0,M,46.0,M,3.5,0120*5D", true, 1000);
  summary.take("$GPGSV,3,1,11,10,63,137,17*4A", true, 1000);
  summary.take("$GLGSV,1,1,03,70,63,137,17*4A", true, 1000);
  summary.take("$GPGSV,3,1,12,10,63,137,17*4A", true, 2000);  // in place of the first
  summary.take("$GPGGA,111111,0000.0,N,00000.0,E,1,01,9.9*00", false, 2000);
  EXPECT_THAT(summary.texts(3100), ElementsAre("DGPS", "10:13:07 UTC", "50.965000 S  6.985000 W", "Sat: 09 of 15",
                                               "HDOP 1.1", "age 2 s", "corrections 3.5 s old", "1 bad"));
  summary.take("$GNGGA,,,,,,0,00,,,M,,M,,*5D", true, 4000);
  EXPECT_THAT(summary.texts(4000), ElementsAre("NO FIX", "Sat: 00 of 15", "age 0 s", "1 bad"));
}

TEST(GpsMessage, IsOneByteACharacter) { EXPECT_EQ(gpsMessageBytes("$Gr\xC3\xBC\xC3\x9F,\xE2\x82\xAC"), "$Gr??,?\r\n"); }

}  // namespace
}  // namespace kalmira
