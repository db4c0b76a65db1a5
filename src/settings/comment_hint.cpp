#include "settings/comment_hint.h"

#include <fmt/format.h>

#include "platform/text.h"

namespace kalmira {

std::string commentHint(std::string_view comment) {
  // As the file has it: one byte a character.
  const std::string kept = narrow(comment);
  if (kept.empty()) return fmt::format("{} characters fit", kCommentCharactersKept);
  if (kept.size() < kCommentCharactersKept) return fmt::format("{} more fit", kCommentCharactersKept - kept.size());
  if (kept.size() == kCommentCharactersKept) return "Fits exactly";
  return fmt::format("Kept: {}", kept.substr(0, kCommentCharactersKept));
}

}  // namespace kalmira
