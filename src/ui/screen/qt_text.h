#pragma once

#include <QString>
#include <string_view>

namespace kalmira {

inline QString qtText(std::string_view utf8) {
  return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

}  // namespace kalmira
