#include "platform/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>

namespace kalmira {
namespace {

bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// Blanks and a plus sign, which from_chars does not take.
std::string_view numberStart(std::string_view text) {
  while (!text.empty() && isBlank(text[0])) text.remove_prefix(1);
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  return text;
}

// So many digits a double holds exactly, and after so few decimals one division rounds as it should.
constexpr std::size_t kMostDigits = 15;
constexpr std::array kPowers{1.0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

// "-12.5". What else may stand in a number is left to from_chars.
std::optional<double> plainReal(std::string_view digits) {
  const bool negative = digits.starts_with('-');
  std::uint64_t whole = 0;
  std::size_t count = 0;
  std::size_t decimals = 0;
  bool point = false;
  for (const char c : digits.substr(negative ? 1 : 0)) {
    if (c == '.' && !point) {
      point = true;
      continue;
    }
    if (c < '0' || c > '9') {
      if (c == 'e' || c == 'E') return std::nullopt;
      break;
    }
    if (++count > kMostDigits) return std::nullopt;
    whole = whole * 10 + static_cast<std::uint64_t>(c - '0');
    if (point) ++decimals;
  }
  if (count == 0) return std::nullopt;
  const double value = static_cast<double>(whole) / kPowers[decimals];
  return negative ? -value : value;
}

bool isContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; }

// Bytes of the UTF-8 character at the start of `text` (1 for a malformed one).
std::size_t characterLength(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text[0]);
  std::size_t length = 1;
  if (lead >= 0xF0) {
    length = 4;
  } else if (lead >= 0xE0) {
    length = 3;
  } else if (lead >= 0xC0) {
    length = 2;
  }
  for (std::size_t i = 1; i < length; ++i) {
    if (i >= text.size() || !isContinuation(text[i])) return 1;
  }
  return length;
}

}  // namespace

int parseInt(std::string_view text) {
  const auto digits = numberStart(text);
  int value = 0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (result.ec == std::errc::result_out_of_range) {
    return digits[0] == '-' ? std::numeric_limits<int>::min() : std::numeric_limits<int>::max();
  }
  return value;
}

double parseReal(std::string_view text) {
  const auto digits = numberStart(text);
  if (const auto plain = plainReal(digits)) return *plain;
  double value = 0.0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (result.ec == std::errc::result_out_of_range) {
    // Too large and too small are told apart by the exponent's sign, the only way to either in a short text.
    const auto exponent = digits.find_first_of("eE");
    const bool tiny = exponent != std::string_view::npos && digits.substr(exponent + 1).starts_with('-');
    const double magnitude = tiny ? 0.0 : std::numeric_limits<double>::infinity();
    return digits[0] == '-' ? -magnitude : magnitude;
  }
  return value;
}

std::optional<double> plainNumber(std::string_view text) {
  const char* at = text.data();
  const char* const end = at + text.size();
  std::uint64_t digits = 0;
  const auto takeDigits = [&] {
    for (; at != end && *at >= '0' && *at <= '9'; ++at) digits = digits * 10 + static_cast<std::uint64_t>(*at - '0');
  };
  takeDigits();
  if (at == text.data()) return std::nullopt;
  std::size_t decimals = 0;
  if (at != end && *at == '.') {
    const char* const point = at++;
    takeDigits();
    decimals = static_cast<std::size_t>(at - point) - 1;
  }
  if (at != end) return std::nullopt;
  return text.size() <= kMostDigits ? static_cast<double>(digits) / kPowers[decimals] : parseReal(text);
}

std::string fixedField(double value, int width, int decimals) {
  if (std::isnan(value)) value = 0.0;
  const auto limit = static_cast<std::size_t>(width);
  if (std::abs(value) < 1e15) {
    for (int places = decimals; places >= 0; --places) {
      std::string text = fmt::format("{:>{}.{}f}", value, width, places);
      if (text.size() <= limit) return text;
    }
  }
  return value < 0 ? '-' + std::string(limit - 1, '9') : std::string(limit, '9');
}

std::string textField(std::string_view text, std::size_t width) {
  std::string field(text.substr(0, width));
  field.resize(width, ' ');
  return field;
}

std::string_view trimmedEnd(std::string_view text) { return text.substr(0, text.find_last_not_of(' ') + 1); }

std::string_view trimmed(std::string_view text) {
  text = trimmedEnd(text);
  return text.substr(std::min(text.find_first_not_of(' '), text.size()));
}

std::string narrow(std::string_view utf8) {
  std::string out;
  out.reserve(utf8.size());
  while (!utf8.empty()) {
    const auto lead = static_cast<unsigned char>(utf8[0]);
    out.push_back(lead >= 0x20 && lead < 0x7F ? utf8[0] : '?');
    utf8.remove_prefix(characterLength(utf8));
  }
  return out;
}

std::string firstCharacters(std::string_view utf8, std::size_t count) {
  std::size_t end = 0;
  for (; count > 0 && end < utf8.size(); --count) end += characterLength(utf8.substr(end));
  return std::string(utf8.substr(0, end));
}

bool hasControlCharacters(std::string_view text) {
  return std::any_of(text.begin(), text.end(), [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7F;
  });
}

std::string printable(std::string_view text) {
  std::string shown(text);
  for (char& c : shown) {
    if (hasControlCharacters({&c, 1})) c = '?';
  }
  return shown;
}

}  // namespace kalmira
