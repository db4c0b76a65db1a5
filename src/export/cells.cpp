#include "export/cells.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstring>
#include <iterator>

namespace kalmira {
namespace {

constexpr std::array<double, 10> kPowersOfTen{1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};
// Scaled values up to here are exact as integers.
constexpr double kIntegerLimit = 9e15;

// "00" to "99": two digits a step, for the divisions are what writing a number costs.
constexpr auto kPairs = [] {
  std::array<char, 200> pairs{};
  for (std::size_t i = 0; i < 100; ++i) {
    pairs[2 * i] = static_cast<char>('0' + i / 10);
    pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
  }
  return pairs;
}();

// Each of these writes before `end` and returns where its text begins.
char* putPair(char* end, std::uint64_t below100) {
  std::memcpy(end - 2, kPairs.data() + 2 * below100, 2);
  return end - 2;
}
char* putWhole(char* end, std::uint64_t value) {
  for (; value >= 100; value /= 100) end = putPair(end, value % 100);
  if (value >= 10) return putPair(end, value);
  *--end = static_cast<char>('0' + value);
  return end;
}

// `units` of 10 to the minus `decimals`.
char* putUnits(char* at, bool negative, std::uint64_t units, int decimals) {
  constexpr std::size_t kLongest = 24;  // a sign, 20 digits and a point
  std::array<char, 2 * kLongest> text{};
  char* const end = text.data() + kLongest;
  char* start = end;
  negative = negative && units > 0;
  for (; decimals > 1; decimals -= 2, units /= 100) start = putPair(start, units % 100);
  for (; decimals > 0; decimals -= 1, units /= 10) *--start = static_cast<char>('0' + units % 10);
  if (start != end) *--start = '.';
  start = putWhole(start, units);
  if (negative) *--start = '-';
  std::memcpy(at, start, kLongest);  // always as many, which is fast
  return at + (end - start);
}

// Halves go up.
std::uint64_t rounded(double positive) {
  const auto whole = static_cast<std::int64_t>(positive);
  return static_cast<std::uint64_t>(positive - static_cast<double>(whole) >= 0.5 ? whole + 1 : whole);
}

// A few decimals are nearly always enough, and found several times as fast as by the general conversion.
template <typename Real>
char* putFewest(char* at, Real value) {
  constexpr int kMostTried = 5;
  constexpr double kLargest = 1e6;
  if (!std::isfinite(value)) return at;
  const auto size = static_cast<double>(std::abs(value));
  for (int decimals = 0; decimals <= kMostTried && size < kLargest; ++decimals) {
    const double power = kPowersOfTen.at(static_cast<std::size_t>(decimals));
    const double units = std::nearbyint(size * power);
    if (static_cast<Real>(units / power) == std::abs(value))
      return putUnits(at, value < 0, static_cast<std::uint64_t>(units), decimals);
  }
  return std::to_chars(at, at + kCellRoom, value, std::chars_format::fixed).ptr;
}

template <typename Put>
void append(std::string& row, Put put) {
  std::array<char, kCellRoom> cell;
  const char* const end = put(cell.data());
  row.append(cell.data(), static_cast<std::size_t>(end - cell.data()));
}

}  // namespace

char* putText(char* at, std::string_view text) {
  const auto breaksOut = [](char c) { return c <= ',' && (c == ',' || c == '"' || c == '\r' || c == '\n'); };
  const bool plain = std::ranges::none_of(text, breaksOut) && !text.starts_with(' ') && !text.ends_with(' ');
  if (plain) return std::ranges::copy(text, at).out;
  *at++ = '"';
  for (const char c : text) {
    if (c == '"') *at++ = '"';
    *at++ = c;
  }
  *at++ = '"';
  return at;
}

// By way of an integer: several times as fast as the general conversion.
char* putReal(char* at, double value, int decimals) {
  if (!std::isfinite(value)) return at;
  const double scaled = std::abs(value) * kPowersOfTen.at(static_cast<std::size_t>(decimals));
  if (scaled >= kIntegerLimit) return fmt::format_to(at, "{:.{}f}", value, decimals);
  return putUnits(at, value < 0, rounded(scaled), decimals);
}

char* putShortest(char* at, float value) { return putFewest(at, value); }
char* putShortest(char* at, double value) { return putFewest(at, value); }

char* putInteger(char* at, std::int64_t value) {
  const auto size = static_cast<std::uint64_t>(value);
  return putUnits(at, value < 0, value < 0 ? 0 - size : size, 0);
}

char* putDate(char* at, std::int64_t day) {
  const std::chrono::year_month_day date{std::chrono::sys_days{std::chrono::days{day}}};
  const auto year = static_cast<int>(date.year());
  if (year < 0 || year > 9999) {
    at = fmt::format_to(at, "{:04}", year);
  } else {
    at += 4;
    putPair(putPair(at, static_cast<std::uint64_t>(year % 100)), static_cast<std::uint64_t>(year / 100));
  }
  *at = '-';
  putPair(at + 3, static_cast<unsigned>(date.month()));
  at[3] = '-';
  putPair(at + 6, static_cast<unsigned>(date.day()));
  return at + 6;
}

char* putTimeOfDay(char* at, std::uint32_t ms) {
  putPair(at + 2, ms / 3600000 % 100);
  at[2] = ':';
  putPair(at + 5, ms / 60000 % 60);
  at[5] = ':';
  putPair(at + 8, ms / 1000 % 60);
  at[8] = '.';
  putPair(at + 11, ms / 10 % 100);
  at[11] = static_cast<char>('0' + ms % 10);
  return at + 12;
}

char* putUtc(char* at, double utc) {
  constexpr std::int64_t kDay_ms = 86400000;
  const auto ms = static_cast<std::int64_t>(std::llround(utc * 1000));
  const auto day = (ms >= 0 ? ms : ms - kDay_ms + 1) / kDay_ms;
  at = putDate(at, day);
  *at++ = 'T';
  at = putTimeOfDay(at, static_cast<std::uint32_t>(ms - day * kDay_ms));
  *at++ = 'Z';
  return at;
}

void appendReal(std::string& row, double value, int decimals) {
  append(row, [=](char* at) { return putReal(at, value, decimals); });
}
void appendShortest(std::string& row, float value) {
  append(row, [=](char* at) { return putShortest(at, value); });
}
void appendShortest(std::string& row, double value) {
  append(row, [=](char* at) { return putShortest(at, value); });
}
void appendInteger(std::string& row, std::int64_t value) {
  append(row, [=](char* at) { return putInteger(at, value); });
}
void appendDate(std::string& row, std::int64_t day) {
  append(row, [=](char* at) { return putDate(at, day); });
}
void appendTimeOfDay(std::string& row, std::uint32_t ms) {
  append(row, [=](char* at) { return putTimeOfDay(at, ms); });
}
void appendUtc(std::string& row, double utc) {
  append(row, [=](char* at) { return putUtc(at, utc); });
}

}  // namespace kalmira
