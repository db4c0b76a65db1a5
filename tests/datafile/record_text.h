#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace kalmira {

// Records of `recordLength` bytes from their texts, which may leave off the blanks at their ends.
inline std::string records(std::size_t recordLength, std::initializer_list<std::string_view> texts) {
  std::string bytes;
  for (const auto text : texts) {
    bytes += text;
    bytes.append(recordLength - 1 - text.size(), ' ');
    bytes += '\n';
  }
  return bytes;
}

inline std::string records24(std::initializer_list<std::string_view> texts) { return records(24, texts); }

}  // namespace kalmira
