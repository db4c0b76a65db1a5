#include "platform/text.h"

#include <gtest/gtest.h>

#include <array>
#include <clocale>
#include <cmath>
#include <limits>
#include <locale>

namespace kalmira {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(ParseInt, TakesTheNumberInFrontAndKeepsItInRange) {
  using Case = std::pair<std::string_view, int>;
  for (const auto& [text, value] :
       {Case{"", 0}, Case{"x", 0}, Case{"-", 0}, Case{"+-4", 0}, Case{"+17", 17}, Case{" \t-42km", -42}, Case{"7.9", 7},
        Case{"0x10", 0}, Case{"1.234", 1}, Case{"2147483648", 2147483647}, Case{"-99999999999", -2147483647 - 1}}) {
    EXPECT_EQ(parseInt(text), value) << '"' << text << '"';
  }
}

TEST(ParseReal, TakesTheNumberInFront) {
  using Case = std::pair<std::string_view, double>;
  for (const auto& [text, value] : {Case{"", 0}, Case{"A7", 0}, Case{" +2.5", 2.5}, Case{"-0012", -12}, Case{"1,5", 1},
                                    Case{"1.5e2mS", 150}, Case{".25", 0.25}, Case{"3e", 3}, Case{"-1e999", -kInfinity},
                                    Case{"1e999", kInfinity}, Case{"-1e-999", 0}, Case{"inf", kInfinity}}) {
    EXPECT_EQ(parseReal(text), value) << '"' << text << '"';
  }
  EXPECT_TRUE(std::isnan(parseReal("nan")));
}

TEST(FixedField, NeverLeavesItsColumns) {
  struct Case {
    double value;
    int width, decimals;
    std::string_view text;
  };
  for (const auto& item :
       {Case{2.5, 7, 3, "  2.500"}, Case{-0.25, 5, 1, " -0.2"}, Case{12345.678, 7, 3, "12345.7"},
        Case{-123456.7, 7, 2, "-123457"}, Case{1234567.6, 7, 3, "1234568"}, Case{99999999.0, 7, 3, "9999999"},
        Case{-99999999.0, 7, 3, "-999999"}, Case{1e300, 11, 2, "99999999999"}, Case{-kInfinity, 4, 2, "-999"},
        Case{std::nan(""), 7, 2, "   0.00"}}) {
    EXPECT_EQ(fixedField(item.value, item.width, item.decimals), item.text) << item.value;
  }
}

TEST(Text, IsCutPaddedAndNarrowedByCharacters) {
  EXPECT_EQ(textField("abc", 5), "abc  ");
  EXPECT_EQ(textField("abcdef", 5), "abcde");
  // Two, three and four bytes; a control character; a lone continuation byte; a lead byte without its rest.
  EXPECT_EQ(narrow("\xC3\x84z \xE2\x82\xAC \xF0\x9F\x8C\x8D\t\x80\xE2\x82"), "?z ? ?????");
  EXPECT_EQ(firstCharacters("a\xC3\x84\xE2\x82\xAC\xF0\x9F\x8C\x8Dz", 4), "a\xC3\x84\xE2\x82\xAC\xF0\x9F\x8C\x8D");
  EXPECT_EQ(firstCharacters("\xE2\x82", 1), "\xE2");
  EXPECT_EQ(firstCharacters("ab", 9), "ab");
}

// Whatever the language of the desktop is: that of the library, and that of the system.
TEST(Text, NoLanguageChangesANumber) {
  class CommaPoint final : public std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
  };
  const auto before = std::locale::global(std::locale(std::locale::classic(), new CommaPoint));
  const std::string systemBefore = std::setlocale(LC_ALL, nullptr);
  for (const char* name : {"C", "de_DE.UTF-8", "fi_FI.UTF-8"}) {
    if (std::setlocale(LC_ALL, name) == nullptr) continue;  // script/test sees to the second
    EXPECT_EQ(fixedField(1234567.5, 11, 2), " 1234567.50");
    EXPECT_EQ(parseReal("1234.5"), 1234.5);
  }
  std::setlocale(LC_ALL, systemBefore.c_str());
  std::locale::global(before);
}

}  // namespace
}  // namespace kalmira
