#pragma once

#include <string>
#include <string_view>

namespace kalmira {

// Characters of a comment that its record holds; the rest of what is typed is not kept.
inline constexpr std::size_t kCommentCharactersKept = 11;

// What the operator is told beneath the comment while typing it: how much more fits or, when it is too long,
// what will be read in the file. `comment` is UTF-8.
std::string commentHint(std::string_view comment);

}  // namespace kalmira
