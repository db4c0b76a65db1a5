#include "viewer/line_extract.h"

#include <algorithm>

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
  file.wantsThickness = instrumentOf(header.kind).hasIce() && header.iceOption && header.iceQuantity == 1;
  if (file.wantsThickness) file.seaWaterCase = header.seaWaterChoice;
  file.readingsPerStation = readingsPerStationOf(header.kind, header.surveyMode, header.listA, header.listB);
}

// A line of so many rows is written while it is opened: nobody notices.
constexpr int kRowsAtOnce = 20000;
constexpr int kRowsPerWaypoint = 1024;

// Stands behind the line's name record when it returns true.
bool goToLine(RecordReader& reader, std::uint64_t offset) {
  reader.seek(offset);
  Record record;
  return reader.next(record) && record.offset == offset && record.bytes[0] == tag::kLine;
}

ViewerError readError(const FileError& error) {
  if (error.kind == FileErrorKind::none) return {};
  return {ViewerErrorKind::cannotRead, "The data file " + error.text};
}

}  // namespace

std::string lineNameOf(const SurveyLine& line) {
  const auto end = std::find(line.letters.begin(), line.letters.end(), '\0');
  return narrow(std::string(line.letters.begin(), end));
}

FileError ScanDataFile(RecordReader& reader, ScannedFile& file) {
  takeHeader(reader.header(), file);
  file.scannedTo = static_cast<std::uint64_t>(reader.recordLength());
  extendScan(reader, file);
  return reader.error();
}

bool extendScan(RecordReader& reader, ScannedFile& file) {
  const auto skippedBefore = reader.skippedBytes();
  const auto linesBefore = file.lines.size();
  reader.seek(file.scannedTo);
  Record record;
  while (reader.next(record)) {
    if (record.bytes[0] == tag::kLine) file.lines.push_back(surveyLineOf(record));
    file.scannedTo = record.offset + record.bytes.size();
  }
  file.skippedBytes += reader.skippedBytes() - skippedBefore;
  file.tornBytes = reader.tornBytes();
  return file.lines.size() > linesBefore;
}

ViewerError ExtractLine(RecordReader& reader, const ScannedFile& file, std::size_t line, const RowFiles& rowFiles,
                        const ExtractOptions& options, ExtractedLine& extracted) {
  extracted = {};
  extracted.line = line;
  extracted.options = options;
  if (auto error = extracted.filling.writer.open(rowFiles); error.kind != ViewerErrorKind::none) return error;
  if (line < 1 || line > file.lines.size()) return {ViewerErrorKind::noSuchLine, "The file has no such line"};
  extracted.begin = file.lines[line - 1].offset;
  if (!goToLine(reader, extracted.begin)) {
    if (auto error = readError(reader.error()); error.kind != ViewerErrorKind::none) return error;
    return {ViewerErrorKind::noSuchLine, "The line is no longer in the file"};
  }
  extracted.last.offset = extracted.begin + static_cast<std::uint64_t>(reader.recordLength());
  extracted.waypoints.push_back(extracted.last);
  extracted.filling.place = extracted.last;
  extendLine(reader, file, extracted);
  const auto failure = readError(reader.error());
  const auto written = fillRows(reader, file, extracted, kRowsAtOnce);
  return written.kind != ViewerErrorKind::none ? written : failure;
}

bool extendLine(RecordReader& reader, const ScannedFile& file, ExtractedLine& extracted) {
  if (extracted.line == 0 || extracted.complete) return false;
  const int before = extracted.rowCount();
  const bool withExtras = instrumentOf(file.header.kind).drawsAuxiliary;
  LineWalk walk(file, extracted.options, extracted.last, false);
  walk.goOn(reader, [&](std::span<const LineRow> rows) {
    for (const auto& row : rows) extracted.summary.take(row, withExtras);
    if (walk.state().rows - extracted.waypoints.back().rows >= kRowsPerWaypoint)
      extracted.waypoints.push_back(walk.state());
    return true;
  });
  extracted.last = walk.state();
  extracted.complete = walk.atNextLine();
  return extracted.rowCount() > before;
}

ViewerError fillRows(RecordReader& reader, const ScannedFile& file, ExtractedLine& line, int upTo) {
  auto& writer = line.filling.writer;
  auto& place = line.filling.place;
  const int wanted = std::min(upTo, line.rowCount());
  if (place.rows >= wanted || writer.failed()) return writer.error();
  LineWalk walk(file, line.options, place, false);
  walk.goOn(reader, [&](std::span<const LineRow> rows) {
    for (const auto& row : rows) row.isBreak ? writer.appendBreakRow() : writer.appendRow(row.station, row.channels);
    return walk.state().rows < wanted && !writer.failed();
  });
  place = walk.state();
  writer.flush();
  return writer.error();
}

void walkRows(RecordReader& reader, const ScannedFile& file, const ExtractedLine& line, int first,
              const std::function<bool(int row, const LineRow&)>& take, std::uint64_t until) {
  if (first < 1 || first > line.rowCount()) return;
  const auto after = std::upper_bound(line.waypoints.begin(), line.waypoints.end(), first - 1,
                                      [](int rows, const LineWalk::State& state) { return rows < state.rows; });
  LineWalk walk(file, line.options, *std::prev(after), true);
  walk.goOn(reader, [&](std::span<const LineRow> rows) {
    int row = walk.state().rows - static_cast<int>(rows.size());
    for (const auto& each : rows) {
      if (++row >= first && (row > line.rowCount() || !take(row, each))) return false;
    }
    return walk.state().offset < std::min(until, line.end());
  });
}

}  // namespace kalmira
