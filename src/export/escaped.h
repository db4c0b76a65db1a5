#pragma once

#include <string>
#include <string_view>

// Texts as JSON and XML want them, each appended. Data files that were damaged may hold any bytes: what is no UTF-8
// becomes U+FFFD, and so do in XML the control characters but line ends, which it cannot hold.
namespace kalmira {

// With its quotes.
void appendJsonText(std::string& out, std::string_view text);
// For the content of elements and attributes.
void appendXmlText(std::string& out, std::string_view text);

// An element of XML with what `append` appends to `out` in it.
template <typename Append>
void appendElement(std::string& out, std::string_view name, Append append) {
  ((out += '<') += name) += '>';
  append();
  ((out += "</") += name) += '>';
}
// With a text in it; nothing for an empty one.
inline void appendXmlElement(std::string& out, std::string_view name, std::string_view text) {
  if (!text.empty()) appendElement(out, name, [&] { appendXmlText(out, text); });
}

}  // namespace kalmira
