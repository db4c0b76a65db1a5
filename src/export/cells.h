#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// The cells of a table of text. Numbers have a full stop, whatever the desktop speaks.
namespace kalmira {

// Each of these writes a cell where `at` points, and returns its end; more bytes behind it may be written over. There
// has to be this much room, for texts by putText twice their length besides.
inline constexpr std::size_t kCellRoom = 416;

// In quotes where a comma, a quote or a blank at its end would be lost otherwise.
char* putText(char* at, std::string_view text);
// Rounded to `decimals` (0 to 9) decimals, halves away from zero; never "-0.00". Nothing at all for what is no finite
// number.
char* putReal(char* at, double value, int decimals);
// The fewest decimals that give the same number again: "969.8", never "-0". Nothing for what is no finite number.
char* putShortest(char* at, float value);
char* putShortest(char* at, double value);
char* putInteger(char* at, std::int64_t value);
// "2024-03-07", from days since 1970-01-01.
char* putDate(char* at, std::int64_t day);
// "09:05:04.089"
char* putTimeOfDay(char* at, std::uint32_t ms);
// "2024-03-07T09:05:04.089Z", from seconds since 1970.
char* putUtc(char* at, double utc);

// The same, appended.
void appendReal(std::string& row, double value, int decimals);
void appendShortest(std::string& row, float value);
void appendShortest(std::string& row, double value);
void appendInteger(std::string& row, std::int64_t value);
void appendDate(std::string& row, std::int64_t day);
void appendTimeOfDay(std::string& row, std::uint32_t ms);
void appendUtc(std::string& row, double utc);

}  // namespace kalmira
