#include "viewer/line_table.h"

#include <algorithm>

#include "datafile/record_parse.h"
#include "platform/text.h"

namespace kalmira {
namespace {

SurveyLine surveyLineOf(const Record& record) {
  SurveyLine line{.offset = record.offset};
  const auto columns = record.bytes.substr(1, line.letters.size());
  const auto name = columns.substr(0, columns.find(' '));
  std::copy(name.begin(), name.end(), line.letters.begin());
  return line;
}

void takeHeader(const Header1& header, ScannedFile& file) {
  file = {};
  file.header = header;
  file.iceThickness = instrumentOf(header.kind).hasIce() && header.iceOption && header.iceQuantity == 1;
  if (file.iceThickness) file.seaWaterCase = header.seaWaterChoice;
  file.readingsPerStation = readingsPerStationOf(header.kind, header.surveyMode, header.listA, header.listB);
}

}  // namespace

std::string lineNameOf(const SurveyLine& line) {
  const auto end = std::find(line.letters.begin(), line.letters.end(), '\0');
  return narrow(std::string(line.letters.begin(), end));
}

FileError ScanDataFile(RecordReader& reader, ScannedFile& file) {
  takeHeader(reader.header(), file);
  const auto skippedBefore = reader.skippedBytes();
  reader.seek(static_cast<std::uint64_t>(reader.recordLength()));
  Record record;
  while (reader.next(record)) {
    if (record.bytes[0] == tag::kLine) file.lines.push_back(surveyLineOf(record));
  }
  file.skippedBytes = reader.skippedBytes() - skippedBefore;
  file.tornBytes = reader.tornBytes();
  return reader.error();
}

}  // namespace kalmira
