#include "export/csv_export.h"

#include <gtest/gtest.h>

#include <limits>

namespace kalmira {
namespace {

TEST(CsvText, WritesNumbersWholeAndWithoutANegativeZero) {
  struct Row {
    double value;
    int decimals;
    std::string_view text;
  };
  for (const auto& [value, decimals, text] :
       {Row{0.390625, 5, "0.39063"}, Row{0.999996, 5, "1.00000"}, Row{-0.000004, 5, "0.00000"}, Row{-0.0, 3, "0.000"},
        Row{-12.5, 0, "-13"}, Row{0.05, 3, "0.050"}, Row{1e15, 3, "1000000000000000.000"},
        Row{-1e20, 2, "-100000000000000000000.00"}, Row{std::numeric_limits<double>::infinity(), 3, ""},
        Row{std::numeric_limits<double>::quiet_NaN(), 3, ""}}) {
    std::string cell;
    appendReal(cell, value, decimals);
    EXPECT_EQ(cell, text);
  }
}

TEST(CsvText, QuotesTextsAndCountsDaysFrom1970) {
  std::string row;
  for (const auto* text : {"12N", "a b", "", "a,b", "5\"", " a"}) appendText(row += '|', text);
  EXPECT_EQ(row, "|12N|a b||\"a,b\"|\"5\"\"\"|\" a\"");
  row.clear();
  appendDate(row, 19790);
  appendDate(row, -1);
  appendTimeOfDay(row, 86399999);
  appendTimeOfDay(row, 3661007);
  EXPECT_EQ(row, "2024-03-081969-12-3123:59:59.99901:01:01.007");
}

}  // namespace
}  // namespace kalmira
