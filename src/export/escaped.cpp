#include "export/escaped.h"

#include <fmt/format.h>

#include <array>
#include <iterator>

namespace kalmira {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

// Bytes of the character of more than one byte that `text` begins with; 0 for what is none, or none that XML knows.
std::size_t longCharacter(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text[0]);
  if (lead < 0xC2 || lead > 0xF4) return 0;
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (text.size() < length) return 0;
  unsigned code = lead & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    const auto next = static_cast<unsigned char>(text[i]);
    if ((next & 0xC0U) != 0x80U) return 0;
    code = code << 6U | (next & 0x3FU);
  }
  constexpr std::array<unsigned, 5> kLeast{0, 0, 0x80, 0x800, 0x10000};
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  if (code < kLeast[length] || code > 0x10FFFF || surrogate || code == 0xFFFE || code == 0xFFFF) return 0;
  return length;
}

// `plain`: may stand as it is; `escape` appends any other character of one byte.
template <typename Plain, typename Escape>
void append(std::string& out, std::string_view text, Plain plain, Escape escape) {
  while (!text.empty()) {
    std::size_t count = 0;
    while (count < text.size() && plain(text[count])) ++count;
    out += text.substr(0, count);
    text.remove_prefix(count);
    if (text.empty()) return;
    count = static_cast<unsigned char>(text[0]) < 0x80 ? 1 : longCharacter(text);
    if (count == 1) {
      escape(text[0]);
    } else {
      out += count == 0 ? kReplacement : text.substr(0, count);
    }
    text.remove_prefix(count == 0 ? 1 : count);
  }
}

bool isAscii(char c) { return c >= ' ' && c <= '~'; }

}  // namespace

void appendJsonText(std::string& out, std::string_view text) {
  out += '"';
  append(
      out, text, [](char c) { return isAscii(c) && c != '"' && c != '\\'; },
      [&out](char c) {
        if (c == '"' || c == '\\') {
          (out += '\\') += c;
        } else {
          fmt::format_to(std::back_inserter(out), "\\u{:04x}", static_cast<unsigned>(c));
        }
      });
  out += '"';
}

void appendXmlText(std::string& out, std::string_view text) {
  append(
      out, text, [](char c) { return (isAscii(c) || c == '\n') && c != '&' && c != '<' && c != '>' && c != '"'; },
      [&out](char c) {
        switch (c) {
          case '&': out += "&amp;"; break;
          case '<': out += "&lt;"; break;
          case '>': out += "&gt;"; break;
          case '"': out += "&quot;"; break;
          default: out += kReplacement;
        }
      });
}

}  // namespace kalmira
