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
void appendUnits(std::string& row, bool negative, std::uint64_t units, int decimals) {
  std::array<char, 32> text;
  char* const end = text.data() + text.size();
  char* start = end;
  negative = negative && units > 0;
  for (; decimals > 1; decimals -= 2, units /= 100) start = putPair(start, units % 100);
  for (; decimals > 0; decimals -= 1, units /= 10) *--start = static_cast<char>('0' + units % 10);
  if (start != end) *--start = '.';
  start = putWhole(start, units);
  if (negative) *--start = '-';
  row.append(start, static_cast<std::size_t>(end - start));
}

// Halves go up.
std::uint64_t rounded(double positive) {
  const auto whole = static_cast<std::int64_t>(positive);
  return static_cast<std::uint64_t>(positive - static_cast<double>(whole) >= 0.5 ? whole + 1 : whole);
}

// A few decimals are nearly always enough, and found several times as fast as by the general conversion.
template <typename Real>
void appendFewest(std::string& row, Real value) {
  constexpr int kMostTried = 5;
  constexpr double kLargest = 1e6;
  if (!std::isfinite(value)) return;
  const auto size = static_cast<double>(std::abs(value));
  for (int decimals = 0; decimals <= kMostTried && size < kLargest; ++decimals) {
    const double power = kPowersOfTen.at(static_cast<std::size_t>(decimals));
    const double units = std::nearbyint(size * power);
    if (static_cast<Real>(units / power) == std::abs(value))
      return appendUnits(row, value < 0, static_cast<std::uint64_t>(units), decimals);
  }
  std::array<char, 400> text;
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed).ptr;
  row.append(text.data(), static_cast<std::size_t>(end - text.data()));
}

}  // namespace

void appendText(std::string& row, std::string_view text) {
  const auto breaksOut = [](char c) { return c <= ',' && (c == ',' || c == '"' || c == '\r' || c == '\n'); };
  const bool plain = std::ranges::none_of(text, breaksOut) && !text.starts_with(' ') && !text.ends_with(' ');
  if (plain) {
    row += text;
    return;
  }
  row += '"';
  for (const char c : text) {
    if (c == '"') row += '"';
    row += c;
  }
  row += '"';
}

// By way of an integer: several times as fast as the general conversion.
void appendReal(std::string& row, double value, int decimals) {
  if (!std::isfinite(value)) return;
  const double scaled = std::abs(value) * kPowersOfTen.at(static_cast<std::size_t>(decimals));
  if (scaled >= kIntegerLimit) {
    fmt::format_to(std::back_inserter(row), "{:.{}f}", value, decimals);
    return;
  }
  appendUnits(row, value < 0, rounded(scaled), decimals);
}

void appendInteger(std::string& row, std::int64_t value) {
  if (value >= 0 && value < 10) {
    row += static_cast<char>('0' + value);
    return;
  }
  const auto size = static_cast<std::uint64_t>(value);
  appendUnits(row, value < 0, value < 0 ? 0 - size : size, 0);
}

void appendDate(std::string& row, std::int64_t day) {
  const std::chrono::year_month_day date{std::chrono::sys_days{std::chrono::days{day}}};
  const auto year = static_cast<int>(date.year());
  std::array<char, 10> text;
  char* at = putPair(text.data() + text.size(), static_cast<unsigned>(date.day()));
  *--at = '-';
  at = putPair(at, static_cast<unsigned>(date.month()));
  *--at = '-';
  if (year >= 0 && year <= 9999) {
    at = putPair(at, static_cast<std::uint64_t>(year % 100));
    at = putPair(at, static_cast<std::uint64_t>(year / 100));
  } else {
    fmt::format_to(std::back_inserter(row), "{:04}", year);
  }
  row.append(at, static_cast<std::size_t>(text.data() + text.size() - at));
}

void appendTimeOfDay(std::string& row, std::uint32_t ms) {
  std::array<char, 12> text;
  char* at = text.data() + text.size();
  *--at = static_cast<char>('0' + ms % 10);
  at = putPair(at, ms / 10 % 100);
  *--at = '.';
  at = putPair(at, ms / 1000 % 60);
  *--at = ':';
  at = putPair(at, ms / 60000 % 60);
  *--at = ':';
  putPair(at, ms / 3600000 % 100);
  row.append(text.data(), text.size());
}

void appendShortest(std::string& row, float value) { appendFewest(row, value); }
void appendShortest(std::string& row, double value) { appendFewest(row, value); }

void appendUtc(std::string& row, double utc) {
  constexpr std::int64_t kDay_ms = 86400000;
  const auto ms = static_cast<std::int64_t>(std::llround(utc * 1000));
  const auto day = (ms >= 0 ? ms : ms - kDay_ms + 1) / kDay_ms;
  appendDate(row, day);
  row += 'T';
  appendTimeOfDay(row, static_cast<std::uint32_t>(ms - day * kDay_ms));
  row += 'Z';
}

}  // namespace kalmira
