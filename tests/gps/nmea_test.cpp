#include "gps/nmea.h"

#include <gtest/gtest.h>

#include <vector>

namespace kalmira {
namespace {

using Lines = std::vector<std::string>;

// The lines that come out of `stream`, whose bytes arrive at ticks 0, 1, 2 and so on; each with its tick in
// front.
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

TEST(NmeaField, CountsFromOneAndTakesTheRestForTheLast) {
  struct Row {
    const char* sentence;
    int number;
    char separator;
    const char* field;  // nullptr: there is none
  };
  const auto* gsa = "$GPGSA,A,,1.8*33";
  for (const auto& row :
       {Row{gsa, 1, ',', "$GPGSA"}, Row{gsa, 2, ',', "A"}, Row{gsa, 3, ',', ""}, Row{gsa, 4, ',', "1.8*33"},
        Row{gsa, 5, ',', nullptr}, Row{gsa, 100, ',', nullptr}, Row{gsa, 0, ',', nullptr}, Row{gsa, -1, ',', nullptr},
        Row{"nothing to cut", 1, ',', "nothing to cut"}, Row{"a;b,c;", 3, ';', ""}}) {
    std::string out = "untouched";
    EXPECT_EQ(GetNmeaField(row.sentence, row.number, row.separator, out), row.field == nullptr ? 0 : 1);
    EXPECT_EQ(out, row.field == nullptr ? "untouched" : row.field) << row.number;
  }
}

}  // namespace
}  // namespace kalmira
