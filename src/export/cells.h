#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// The cells of a table of text, each appended to the row in the making. Numbers have a full stop, whatever the desktop
// speaks.
namespace kalmira {

// In quotes where a comma, a quote or a blank at its end would be lost otherwise.
void appendText(std::string& row, std::string_view text);
// Rounded to `decimals` (0 to 9) decimals, halves away from zero; never "-0.00". Nothing at all for what is no finite
// number.
void appendReal(std::string& row, double value, int decimals);
// The fewest decimals that give the same number again: "969.8", never "-0". Nothing for what is no finite number.
void appendShortest(std::string& row, float value);
void appendShortest(std::string& row, double value);
void appendInteger(std::string& row, std::int64_t value);
// "2024-03-07", from days since 1970-01-01.
void appendDate(std::string& row, std::int64_t day);
// "09:05:04.089"
void appendTimeOfDay(std::string& row, std::uint32_t ms);
// "2024-03-07T09:05:04.089Z", from seconds since 1970.
void appendUtc(std::string& row, double utc);

}  // namespace kalmira
