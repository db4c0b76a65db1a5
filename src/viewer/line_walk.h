#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "datafile/reading_context.h"
#include "datafile/record_reader.h"

// From the records of a survey line to its rows, one a station.
namespace kalmira {

struct ScannedFile;

struct ExtractOptions {
  bool teskRangeTimes10 = false;  // the program's start-up choice; the file does not say it
};

// Where in the data file a row comes from.
struct RowPlace {
  std::uint64_t offset = 0;             // of its first reading, or of the new-station record of a break row
  std::uint32_t timeOfDayMs = kNoTime;  // of that reading, since midnight

  static constexpr std::uint32_t kNoTime = UINT32_MAX;
};

struct LineRow {
  RowPlace place;
  bool isBreak = false;  // the operator entered a new station
  double station = 0;
  Channels channels;
  std::array<float, 2> extras{};  // TESK2: the auxiliary values
  bool hasThickness = false;      // of a file that asks for it, where the model's table has one
  float thickness = 0;            // metres
};

// Goes over a line and can be set on from any place where it has been.
class LineWalk {
 public:
  // All that is to be known to go on from between two records.
  struct State {
    std::uint64_t offset = 0;  // of the next record
    int rows = 0;              // before it
    bool opening = true;       // the increment has not come yet
    double start = 0;
    double increment = 0;
    double station = 0;
    int pendingReadings = 0;  // of a station that is not whole
    LineRow pending;
    std::array<float, 6> calibration{};
    RecordTimes times;
  };
  // A line begins with the offset of the record behind its name. Not `timed`, for who needs no times: rows may come
  // without theirs, and are found the sooner.
  LineWalk(const ScannedFile& file, const ExtractOptions& options, const State& from, bool timed);

  const State& state() const { return state_; }
  // Whether another line begins there.
  bool atNextLine() const { return at_next_line_; }

  // Reads on. `take` gets the rows that a record completes, four at most, before the next record is read, and says
  // whether to go on. Ends at the next line, and at the file's end, from which it can go on when the file has grown.
  template <typename Take>
  void goOn(RecordReader& reader, Take take) {
    reader.seek(state_.offset);
    Record record;
    while (reader.next(record)) {
      at_next_line_ = record.bytes[0] == tag::kLine;
      if (at_next_line_ || !take(rowsOf(record))) return;
    }
  }

 private:
  std::span<const LineRow> rowsOf(const Record& record);
  void takeIncrement(std::string_view record);
  void takeCalibration(std::string_view record);
  void takeStation(const Record& record);
  void takeReading(const Record& record);
  RowPlace placeOf(const Record& record) const;
  void decodeInto(LineRow& row, const Record& record) const;
  void finishPending();
  LineRow& addRow() { return made_[made_count_++]; }

  bool timed_;
  State state_;
  ReadingDecoder decoder_;
  std::span<const Channel> channels_;
  int readings_per_station_;
  bool at_next_line_ = false;
  std::array<LineRow, 4> made_;
  std::size_t made_count_ = 0;
};

}  // namespace kalmira
