#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "datafile/survey_notes.h"
#include "export/survey_rows.h"
#include "export/table_cells.h"
#include "platform/files.h"

// What an output is made by: told of the files in turn, and of each one's rows. Files are read as streams, so that
// nobody holds more than he must of what he is told. Not bound to a thread.
namespace kalmira {

struct SourceFile {
  std::string name;  // without its folder
  const Header1& header;
  const SurveyNotes& notes;
  bool placed = false;  // its rows may have places
};

// False from any of the functions: it cannot be written, for the reason in problem(), or for the sink's own.
class SurveyWriter {
 public:
  SurveyWriter() = default;
  SurveyWriter(const SurveyWriter&) = delete;
  SurveyWriter& operator=(const SurveyWriter&) = delete;
  virtual ~SurveyWriter() = default;

  virtual bool begin(const SourceFile& file) = 0;
  virtual bool take(const ReadingRow& row) = 0;
  virtual bool take(const EventRow&) { return true; }
  virtual bool take(const Fix&) { return true; }
  virtual bool endOfFile() { return true; }
  // There is no further file: what is written is whole then.
  virtual bool finish() = 0;
  // In words, without a full stop; empty where only whoever owns the sink can say why.
  virtual std::string problem() const { return {}; }
};

// What the notes of a survey say but its settings, a line a field: "project: Dyke".
std::string notesText(const SurveyNotes& notes);

// Tells the writer of the file that `reader` has opened, which has not read on yet. `wide`: of all readings at a
// station as one, see StationRows.
RowsResult writeFile(RecordReader& reader, SurveyWriter& writer, OutputFrame& frame, const SourceFile& file,
                     const RowOptions& options, bool wide = false);

// Takes the next piece of an output. False when it cannot; why is for the sink's owner to say.
using TextSink = std::function<bool(std::string_view)>;

// Text on its way into a sink, which gets it in large pieces.
class TextPieces {
 public:
  explicit TextPieces(TextSink write) : write_(std::move(write)) { text.reserve(kPiece + 1024); }

  std::string text;  // append to it
  // After each row.
  bool passOn() { return text.size() < kPiece || flush(); }
  bool flush() {
    const bool written = text.empty() || write_(text);
    text.clear();
    return written;
  }

 private:
  static constexpr std::size_t kPiece = 65536;
  TextSink write_;
};

// Rows of one station become one, with all their channels: place and times are those of its first reading, of a channel
// that was read again the last value holds.
class StationRows {
 public:
  using Take = std::function<bool(const ReadingRow&)>;
  explicit StationRows(Take take) : take_(std::move(take)) {}

  bool take(const ReadingRow& row);
  bool finish();

 private:
  Take take_;
  ReadingRow row_;
  bool any_ = false;
};

enum class TableOf { readings, events };

// Tables of the formats that are one text, docs/export-formats.md. The frame is told whole before the first file
// begins, but for its zone.
std::unique_ptr<SurveyWriter> makeCsvWriter(const OutputFrame& frame, TableOf table, TextSink write);
std::unique_ptr<SurveyWriter> makeXyzWriter(const OutputFrame& frame, TextSink write);
// Map layers in an SQLite file, which takes the place of OUT's own.
std::unique_ptr<SurveyWriter> makeGpkgWriter(const OutputFrame& frame, OutputFile& file);
std::unique_ptr<SurveyWriter> makeGeojsonWriter(const OutputFrame& frame, TableOf table, TextSink write);
// `spoolFolder`: for what has to wait for the end, see spool.h.
std::unique_ptr<SurveyWriter> makeGpxWriter(const OutputFrame& frame, std::filesystem::path spoolFolder,
                                            TextSink write);
std::unique_ptr<SurveyWriter> makeKmlWriter(const OutputFrame& frame, std::filesystem::path spoolFolder,
                                            TextSink write);

}  // namespace kalmira
