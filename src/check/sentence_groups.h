#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

#include "datafile/record_reader.h"

namespace kalmira {

// Passes the records of a file on, those of a GPS sentence together and only where all are there: what is left of a
// sentence that lost one would be read as another. With them goes one whose checksum was right when it was recorded and
// is not any more.
class SentenceGroups {
 public:
  // What is passed on; bytes are valid during the call.
  std::function<void(const Record&)> take = [](const Record&) {};
  // Records of a sentence that is not passed on, from the first one's offset on.
  std::function<void(std::uint64_t offset, std::size_t records, bool altered)> drop = [](auto...) {};

  // In file order. Bytes missing between two records end a sentence.
  void feed(const Record& record);
  // Nothing comes any more.
  void finish() { dropOpen(); }

 private:
  void add(const Record& record);
  void complete(std::size_t length);
  void dropOpen(bool altered = false);

  std::string open_;  // the sentence's records so far; empty while there is none
  std::size_t count_ = 0;
  char more_ = 0;  // tag of its further records
  std::uint64_t start_ = 0;
  std::uint64_t end_ = 0;
};

}  // namespace kalmira
