#pragma once

#include <string>
#include <string_view>

// Texts as JSON and XML want them, each appended. Data files that were damaged may hold any bytes: what is no UTF-8
// becomes U+FFFD, and so do in XML the control characters, which it cannot hold.
namespace kalmira {

// With its quotes.
void appendJsonText(std::string& out, std::string_view text);
// For the content of elements and attributes.
void appendXmlText(std::string& out, std::string_view text);

}  // namespace kalmira
