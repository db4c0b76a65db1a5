#include "export/cells.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <iterator>

namespace kalmira {
namespace {

constexpr std::array<double, 10> kPowersOfTen{1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};
// Scaled values up to here are exact as integers.
constexpr double kIntegerLimit = 9e15;

// `value` in exactly `width` digits.
void appendDigits(std::string& row, std::uint64_t value, std::size_t width) {
  const std::size_t end = row.size() + width;
  row.resize(end, '0');
  for (std::size_t place = end; width > 0; --width) {
    row[--place] = static_cast<char>('0' + value % 10);
    value /= 10;
  }
}

template <typename Real>
void appendFewest(std::string& row, Real value) {
  if (!std::isfinite(value)) return;
  if (value == 0) {
    row += '0';
    return;
  }
  std::array<char, 400> text;
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed).ptr;
  row.append(text.data(), end);
}

}  // namespace

void appendText(std::string& row, std::string_view text) {
  const bool plain =
      text.find_first_of(",\"\r\n") == std::string_view::npos && !text.starts_with(' ') && !text.ends_with(' ');
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

// By way of an integer: several times as fast as the general conversion, which is most of an export's time.
void appendReal(std::string& row, double value, int decimals) {
  if (!std::isfinite(value)) return;
  const auto places = static_cast<std::size_t>(decimals);
  const double scaled = std::round(std::abs(value) * kPowersOfTen.at(places));
  if (scaled >= kIntegerLimit) {
    fmt::format_to(std::back_inserter(row), "{:.{}f}", value, decimals);
    return;
  }
  const auto units = static_cast<std::uint64_t>(scaled);
  if (value < 0 && units > 0) row += '-';
  const auto one = static_cast<std::uint64_t>(kPowersOfTen.at(places));
  const fmt::format_int whole(units / one);
  row.append(whole.data(), whole.size());
  if (decimals == 0) return;
  row += '.';
  appendDigits(row, units % one, places);
}

void appendInteger(std::string& row, std::int64_t value) {
  const fmt::format_int text(value);
  row.append(text.data(), text.size());
}

void appendDate(std::string& row, std::int64_t day) {
  const std::chrono::year_month_day date{std::chrono::sys_days{std::chrono::days{day}}};
  fmt::format_to(std::back_inserter(row), "{:04}-{:02}-{:02}", static_cast<int>(date.year()),
                 static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
}

void appendTimeOfDay(std::string& row, std::uint32_t ms) {
  appendDigits(row, ms / 3600000, 2);
  row += ':';
  appendDigits(row, ms / 60000 % 60, 2);
  row += ':';
  appendDigits(row, ms / 1000 % 60, 2);
  row += '.';
  appendDigits(row, ms % 1000, 3);
}

// A few decimals are nearly always enough, and found several times as fast so.
void appendShortest(std::string& row, float value) {
  constexpr int kMostTried = 5;
  constexpr float kLargest = 1e6F;
  const auto exact = static_cast<double>(value);
  if (std::abs(value) < kLargest) {
    for (int decimals = 0; decimals <= kMostTried; ++decimals) {
      const double power = kPowersOfTen.at(static_cast<std::size_t>(decimals));
      const double units = std::nearbyint(exact * power);
      if (static_cast<float>(units / power) == value) return appendReal(row, units / power, decimals);
    }
  }
  appendFewest(row, value);
}
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
