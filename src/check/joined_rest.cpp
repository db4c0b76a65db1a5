#include "check/joined_rest.h"

#include <fmt/format.h>

#include <algorithm>
#include <deque>

#include "instruments/catalogue.h"

namespace kalmira {
namespace {

struct Placed {
  std::uint64_t offset = 0;
  std::string bytes;
};

// Where the first of `records` stands in a file that ends with `tail`: such that every record of the tail from there on
// is the one that belongs there. A rest begins with records that are in the file where the medium failed; some of these
// may be damaged there.
std::optional<std::uint64_t> placeOf(std::string_view records, std::size_t length, const std::deque<Placed>& tail) {
  if (tail.empty()) return std::nullopt;
  const auto& last = tail.back();
  const auto fits = [&](std::uint64_t start) {
    return std::all_of(tail.rbegin(), tail.rend(), [&](const Placed& placed) {
      const auto at = placed.offset - start;
      return placed.offset < start || (at % length == 0 && records.substr(at, length) == placed.bytes);
    });
  };
  for (std::uint64_t at = records.size(); at >= length; at -= length) {
    if (records.substr(at - length, length) != last.bytes || last.offset + length < at) continue;
    if (const auto start = last.offset + length - at; fits(start)) return start;
  }
  return std::nullopt;
}

// Puts the records of one more file behind those that are known.
void join(Rest& rest, RestFile& file, const std::string& records, std::size_t length, const std::deque<Placed>& tail) {
  const auto start = placeOf(records, length, tail);
  const auto standing = [&](const Placed& placed) { return start && placed.offset >= *start; };
  file.already = static_cast<std::uint64_t>(std::count_if(tail.begin(), tail.end(), standing));
  if (rest.records.empty()) {
    rest.from = start;
  } else if (start) {
    rest.records.resize(static_cast<std::size_t>(*start));
  }
  rest.records += records;
}

// Of records that stand one behind the other.
std::deque<Placed> placedFromZero(const std::string& records, std::size_t length) {
  std::deque<Placed> placed;
  for (std::size_t at = 0; at < records.size(); at += length) placed.push_back({at, records.substr(at, length)});
  return placed;
}

FileError readRecords(RecordReader& reader, const ReadWatch& watch, std::string& records) {
  reader.watch(watch);
  Record record;
  while (reader.next(record)) records += record.bytes;
  return reader.error();
}

// The last records of the data file, as many as `bytes` hold.
std::deque<Placed> tailOf(const std::filesystem::path& dataFile, Kind kind, const ReadWatch& watch, std::size_t bytes) {
  std::deque<Placed> tail;
  RecordReader reader;
  if (reader.openWithoutHeader(dataFile, kind).kind != FileErrorKind::none) return tail;
  reader.watch(watch);
  Record record;
  while (reader.next(record)) {
    tail.push_back({record.offset, std::string(record.bytes)});
    while (tail.front().offset + bytes <= record.offset) tail.pop_front();
  }
  return tail;
}

}  // namespace

bool Rest::adds() const {
  return std::any_of(files.begin(), files.end(), [](const RestFile& file) { return file.already < file.records; });
}

Rest findRest(const std::filesystem::path& dataFile, Kind kind, const ReadWatch& watch) {
  Rest rest;
  const auto length = static_cast<std::size_t>(instrumentOf(kind).fileRecordLength);
  std::error_code ignored;
  for (int number = 1;; ++number) {
    auto path = dataFile;
    path += number == 1 ? ".REST" : fmt::format(".REST{}", number);
    if (!std::filesystem::exists(path, ignored)) return rest;
    RestFile file{.name = path.filename().string()};
    std::string records;
    RecordReader reader;
    auto error = reader.openWithoutHeader(path, kind);
    if (error.kind == FileErrorKind::none) error = readRecords(reader, watch, records);
    if (error.kind != FileErrorKind::none && error.kind != FileErrorKind::empty) {
      rest.problem = fmt::format("{} {}", file.name, error.text);
      return rest;
    }
    file.records = records.size() / length;
    file.damagedBytes = reader.skippedBytes() + reader.tornBytes();
    const auto tail =
        rest.records.empty() ? tailOf(dataFile, kind, watch, records.size()) : placedFromZero(rest.records, length);
    join(rest, file, records, length, tail);
    rest.files.push_back(std::move(file));
  }
}

}  // namespace kalmira
