#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "datafile/record_reader.h"

namespace kalmira {

// Records that found no room in the data file, from a file beside it.
struct RestFile {
  std::string name;
  std::uint64_t records = 0;
  std::uint64_t already = 0;       // of them, that the data file ends with
  std::uint64_t damagedBytes = 0;  // that are no records
};

// What is to be put at a data file's end.
struct Rest {
  std::vector<RestFile> files;
  std::string records;  // of all files, each once
  // Offset in the data file from which on `records` take the place of what stands there; nothing: at its end.
  std::optional<std::uint64_t> from;
  std::string problem;  // why one of the files could not be read; empty: they were

  // Whether there is a record that the data file has not.
  bool adds() const;
};

// Looks for NAME.REST, NAME.REST2 and so on beside the data file, which is of that kind.
Rest findRest(const std::filesystem::path& dataFile, Kind kind, const ReadWatch& watch);

}  // namespace kalmira
