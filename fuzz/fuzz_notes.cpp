// Notes beside a data file: any bytes are read, and what was understood of them is the same after writing and reading.
#include <cstdlib>
#include <string>

#include "datafile/survey_notes.h"
#include "platform/text.h"

using namespace kalmira;

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string problem;
  const auto notes = parseNotes(std::string(data, data + size), problem);
  require(!hasControlCharacters(problem));
  const auto text = formatNotes(notes);
  const auto again = parseNotes(text, problem);
  require(problem.empty() && formatNotes(again) == text);
  return 0;
}
