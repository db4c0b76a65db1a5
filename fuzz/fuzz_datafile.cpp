// Any bytes as a data file: read in both directions and exported. Besides not crashing, the reader must
// account for every byte, and what one direction gives must lie where it says it does.
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>
#include <string_view>

#include "datafile/record_parse.h"
#include "export/survey_writer.h"

namespace {

using namespace kalmira;

void require(bool holds) {
  if (!holds) std::abort();
}

void walk(RecordReader& reader, std::string_view bytes) {
  const auto length = static_cast<std::size_t>(reader.recordLength());
  SentenceAssembler sentences;
  Record record;
  std::uint64_t whole = length;  // header 1
  while (reader.next(record)) {
    require(record.bytes == bytes.substr(record.offset, length));
    require(recordTypeOf(record.bytes) != RecordType::unknown);
    parseNote(record.bytes);
    sentences.feed(record.bytes);
    whole += length;
  }
  if (bytes.size() >= length) require(whole + reader.skippedBytes() + reader.tornBytes() == bytes.size());
  reader.seekToEnd();
  while (reader.previous(record)) require(record.bytes == bytes.substr(record.offset, length));
}

void exportAll(const std::string& bytes) {
  RecordReader reader;
  reader.open(std::make_unique<std::istringstream>(bytes));
  std::uint64_t lines = 0;
  OutputFrame frame;
  takeChannels(frame, reader.header());
  const auto writer = makeCsvWriter(frame, TableOf::readings, [&](std::string_view text) {
    for (const char c : text) lines += c == '\n' ? 1 : 0;
    return true;
  });
  RecordReader scanner;
  scanner.open(std::make_unique<std::istringstream>(bytes));
  const auto scan = scanPositions(scanner, {.ahead_m = 1}, std::nullopt);
  const auto result = writeFile(reader, *writer, frame, {.name = "FUZZ", .header = reader.header(), .notes = {}},
                                {.scan = &scan, .positions = {.ahead_m = 1}});
  require(writer->finish() && result.readings + 1 == lines);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  RecordReader reader;
  if (reader.open(std::make_unique<std::istringstream>(bytes)).kind != FileErrorKind::none) return 0;
  walk(reader, bytes);
  exportAll(bytes);
  return 0;
}
