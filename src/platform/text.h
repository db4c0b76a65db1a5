#pragma once

#include <charconv>
#include <cmath>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

// Numbers and text of files and wires. Nothing here looks at the system's locale: a decimal mark is always a full stop,
// whatever language the desktop speaks. Every function may be called from any thread.
namespace kalmira {

// Leading blanks, a sign, decimal digits; what follows is ignored. No digits give 0, and a number outside the range of
// int is brought to its nearest end.
int parseInt(std::string_view text);

// As parseInt, for a real number with optional fraction and exponent ("nan" and "inf" are numbers too). Magnitudes
// beyond double give infinity or 0.
double parseReal(std::string_view text);

// "12", "12.5" or "12.": digits, with a fraction or without, from the first character to the last; the same number that
// parseReal gives, in one step. Nothing for any other text.
std::optional<double> plainNumber(std::string_view text);

// A text that is a number from its first character to its last; nothing when it is none, beyond the range of `Number`
// or not finite. A real number may have a plus sign.
template <class Number>
std::optional<Number> wholeNumber(std::string_view text) {
  if constexpr (std::is_floating_point_v<Number>) {
    if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  }
  Number value{};
  const auto* const end = text.data() + text.size();
  const auto [last, error] = std::from_chars(text.data(), end, value);
  if (text.empty() || error != std::errc{} || last != end) return std::nullopt;
  if constexpr (std::is_floating_point_v<Number>) {
    if (!std::isfinite(value)) return std::nullopt;
  }
  return value;
}

// `value` right-justified in exactly `width` characters with `decimals` decimals. A value too wide loses decimals, then
// is brought to the widest number that fits; no number at all (NaN) becomes 0. Records have fixed columns, so a field
// may not grow.
std::string fixedField(double value, int width, int decimals);

// `text` cut or padded with blanks on the right to exactly `width` bytes.
std::string textField(std::string_view text, std::size_t width);

// Without blanks at its ends, at its end.
std::string_view trimmed(std::string_view text);
std::string_view trimmedEnd(std::string_view text);

// UTF-8 to one byte a character: every character that is not plain printable ASCII becomes "?". A malformed byte counts
// as one character.
std::string narrow(std::string_view utf8);

// The first `count` characters of a UTF-8 text, never splitting one.
std::string firstCharacters(std::string_view utf8, std::size_t count);

// Line ends and their like, which break a line of output or a name in two.
bool hasControlCharacters(std::string_view text);
// With "?" in their place.
std::string printable(std::string_view text);

}  // namespace kalmira
