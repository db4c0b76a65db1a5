#include "viewer/line_extract.h"

#include <algorithm>
#include <cmath>

#include "datafile/reading_context.h"
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
  file.wantsThickness = instrumentOf(header.kind).hasIce() && header.iceOption && header.iceQuantity == 1;
  if (file.wantsThickness) file.seaWaterCase = header.seaWaterChoice;
  file.readingsPerStation = readingsPerStationOf(header.kind, header.surveyMode, header.listA, header.listB);
}

constexpr int kBreakRows = 4;

// A number from a column (from 1) on; 0 when there is none.
double numberFrom(std::string_view record, std::size_t column) {
  const double value = parseReal(record.substr(column - 1));
  return std::isfinite(value) ? value : 0.0;
}

// A station's readings that wait for the station to be whole.
struct PendingRow {
  int count = 0;  // of readings; 0: none
  Channels channels;
  std::array<float, 2> extras{};
  RowPlace place;
};

class Extraction {
 public:
  Extraction(const ScannedFile& file, const ExtractOptions& options, RowWriter& writer, ExtractedLine& out)
      : file_(file),
        writer_(writer),
        out_(out),
        decoder_(file.header, options.teskRangeTimes10),
        extras_(decoder_.instrument().drawsAuxiliary) {}

  // Any record of the line behind its name.
  void take(const Record& record) {
    switch (recordTypeOf(record.bytes)) {
      case RecordType::startStation:
        if (opening_) start_ = numberFrom(record.bytes, 2);
        break;
      case RecordType::direction:
        if (opening_) takeIncrement(record.bytes);
        break;
      case RecordType::calibration: takeCalibration(record.bytes); break;
      case RecordType::date:
        if (const auto date = parseDate(record.bytes)) times_.takeDate(*date);
        break;
      case RecordType::timeMark:
        if (const auto mark = parseTimeMark(record.bytes)) times_.takeMark(*mark);
        break;
      case RecordType::station: takeStation(record); break;
      case RecordType::reading: takeReading(record); break;
      default: break;
    }
  }

 private:
  // The line's own "B" and "A" stand before its first reading; further ones are strays. Sentences of the satellite
  // receiver, which come whenever they come, may stand between them.
  void takeIncrement(std::string_view record) {
    increment_ = numberFrom(record, 3);
    station_ = start_ - increment_;
    opening_ = false;
  }

  void takeCalibration(std::string_view record) {
    if (!decoder_.instrument().calibrated || record[1] < '1' || record[1] > '6') return;
    decoder_.takeCalibration({.channel = record[1] - '0', .factor = numberFrom(record, 3), .replaced = 0});
  }

  void takeStation(const Record& record) {
    opening_ = false;
    const RowPlace place{.offset = record.offset, .timeOfDayMs = RowPlace::kNoTime};
    for (int i = 0; i < kBreakRows; ++i) {
      writer_.appendBreakRow();
      out_.rows.push_back(place);
      if (extras_) out_.extras.push_back({});
    }
    station_ = numberFrom(record.bytes, 2) - increment_;
  }

  void takeReading(const Record& record) {
    opening_ = false;
    if (readingRepeat(record.bytes) == 1) {
      station_ += increment_;
      // The station before was not whole. Its row bears the number of the one that begins here.
      if (pending_.count > 0) writeRow();
      pending_.count = 1;
    } else {
      pending_.count = std::max(pending_.count, 1) + 1;
    }
    decodeInto(record);
    if (pending_.count == file_.readingsPerStation) writeRow();
  }

  void decodeInto(const Record& record) {
    if (pending_.place.offset == 0) {
      pending_.place.offset = record.offset;
      pending_.place.timeOfDayMs = timeOf(record.bytes);
    }
    const auto reading = decoder_.decode(readingText(record.bytes));
    pending_.extras = reading.auxiliary;
    // Ice thickness is derived again from what the row files hold.
    for (const auto& channel : channelsOf(decoder_.instrument(), false)) {
      if (reading.channels.present[channel.slot] == 0) continue;
      pending_.channels.present[channel.slot] = 1;
      pending_.channels.value[channel.slot] = reading.channels.value[channel.slot];
    }
  }

  std::uint32_t timeOf(std::string_view record) const {
    const auto tick = parseTick(record);
    const auto moment = tick ? times_.at(*tick) : std::nullopt;
    return moment ? moment->timeOfDayMs : RowPlace::kNoTime;
  }

  void writeRow() {
    writer_.appendRow(station_, pending_.channels);
    out_.rows.push_back(pending_.place);
    if (extras_) out_.extras.push_back(pending_.extras);
    pending_ = {};
  }

  const ScannedFile& file_;
  RowWriter& writer_;
  ExtractedLine& out_;
  ReadingDecoder decoder_;
  bool extras_;
  RecordTimes times_;
  bool opening_ = true;  // the increment has not come yet
  double start_ = 0;
  double increment_ = 0;
  double station_ = 0;
  PendingRow pending_;
};

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

ViewerError ExtractLine(RecordReader& reader, const ScannedFile& file, std::size_t line, const RowFiles& rowFiles,
                        const ExtractOptions& options, ExtractedLine& extracted) {
  extracted = {};
  extracted.line = line;
  RowWriter writer;
  if (auto error = writer.open(rowFiles); error.kind != ViewerErrorKind::none) return error;
  if (line < 1 || line > file.lines.size()) return {ViewerErrorKind::noSuchLine, "The file has no such line"};
  const auto begin = file.lines[line - 1].offset;
  if (!goToLine(reader, begin)) {
    if (auto error = readError(reader.error()); error.kind != ViewerErrorKind::none) return error;
    return {ViewerErrorKind::noSuchLine, "The line is no longer in the file"};
  }
  extracted.begin = begin;
  extracted.end = begin + static_cast<std::uint64_t>(reader.recordLength());

  Extraction extraction(file, options, writer, extracted);
  Record record;
  while (!writer.failed() && reader.next(record)) {
    if (record.bytes[0] == tag::kLine) break;
    extraction.take(record);
    extracted.end = record.offset + record.bytes.size();
  }
  const auto written = writer.finish();
  return written.kind != ViewerErrorKind::none ? written : readError(reader.error());
}

}  // namespace kalmira
