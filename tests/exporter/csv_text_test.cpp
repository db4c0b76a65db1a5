#include "exporter/csv_text.h"

#include <gtest/gtest.h>

#include <limits>

namespace kalmira {
namespace {

std::string real(double value, int decimals) {
  std::string text;
  appendReal(text, value, decimals);
  return text;
}

TEST(CsvReal, RoundsAndNeverShowsANegativeZero) {
  EXPECT_EQ(real(0.390625, 5), "0.39063");
  EXPECT_EQ(real(-1280.0, 5), "-1280.00000");
  EXPECT_EQ(real(0.999996, 5), "1.00000");
  EXPECT_EQ(real(-0.000004, 5), "0.00000");
  EXPECT_EQ(real(-0.0, 3), "0.000");
  EXPECT_EQ(real(-12.5, 0), "-13");
  EXPECT_EQ(real(0.05, 3), "0.050");
}

TEST(CsvReal, ShowsHugeNumbersWholeAndNothingForNone) {
  EXPECT_EQ(real(1e15, 3), "1000000000000000.000");
  EXPECT_EQ(real(-1e20, 2), "-100000000000000000000.00");
  EXPECT_EQ(real(std::numeric_limits<double>::infinity(), 3), "");
  EXPECT_EQ(real(std::numeric_limits<double>::quiet_NaN(), 3), "");
}

TEST(CsvText, IsQuotedWhereACommaOrQuoteStands) {
  for (const auto& [text, cell] : {std::pair{"12N", "12N"},
                                   {"a b", "a b"},
                                   {"", ""},
                                   {"a,b", "\"a,b\""},
                                   {"5\"", "\"5\"\"\""},
                                   {" a", "\" a\""}}) {
    std::string row;
    appendText(row, text);
    EXPECT_EQ(row, cell);
  }
}

TEST(CsvDate, CountsFrom1970) {
  std::string row;
  appendDate(row, 19790);
  appendDate(row, -1);
  appendTimeOfDay(row, 86399999);
  appendTimeOfDay(row, 3661007);
  EXPECT_EQ(row, "2024-03-081969-12-3123:59:59.99901:01:01.007");
}

}  // namespace
}  // namespace kalmira
