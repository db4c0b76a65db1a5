#include <string>
#include <vector>

#include "export/cells.h"
#include "export/survey_writer.h"

namespace kalmira {
namespace {

// Cells as text, each with the comma behind it. A row is made in a buffer with room for any next cell, and appended to
// the text as a whole.
class CsvCells {
 public:
  explicit CsvCells(std::string& text) : text_(text) {}

  void none() { end(room()); }
  void text(std::string_view cell) { end(putText(room(2 * cell.size()), cell)); }
  void integer(std::int64_t value) { end(putInteger(room(), value)); }
  void real(double value, int decimals) { end(putReal(room(), value, decimals)); }
  template <typename Real>
  void shortest(Real value) {
    end(putShortest(room(), value));
  }
  void range(int first, int second) {
    char* at = room();
    if (first != 0) at = putInteger(at, first);
    if (second != 0) {
      *at++ = '/';
      at = putInteger(at, second);
    }
    end(at);
  }
  void date(std::int64_t day) { end(putDate(room(), day)); }
  void timeOfDay(std::uint32_t ms) { end(putTimeOfDay(room(), ms)); }
  void utc(double moment) { end(putUtc(room(), moment)); }
  void endOfRow() {
    at_[-1] = '\n';
    text_.append(row_.data(), used());
    at_ = row_.data();
  }

 private:
  std::size_t used() const { return static_cast<std::size_t>(at_ - row_.data()); }
  char* room(std::size_t more = 0) {
    if (static_cast<std::size_t>(end_ - at_) < kCellRoom + more) grow(more);
    return at_;
  }
  void grow(std::size_t more) {
    const auto before = used();
    row_.resize(2 * (row_.size() + kCellRoom + more));
    at_ = row_.data() + before;
    end_ = row_.data() + row_.size();
  }
  void end(char* at) {
    *at = ',';
    at_ = at + 1;
  }

  std::string& text_;
  std::vector<char> row_;
  char* at_ = nullptr;  // in `row_`, where the next cell goes
  char* end_ = nullptr;
};

class CsvWriter final : public SurveyWriter {
 public:
  CsvWriter(const OutputFrame& frame, TableOf table, TextSink write)
      : frame_(frame), table_(table), pieces_(std::move(write)), cells_(pieces_.text) {}

  bool begin(const SourceFile& file) override {
    if (!file_) header();
    file_.emplace(frame_, file.header, file.name);
    return true;
  }
  bool take(const ReadingRow& row) override {
    if (table_ != TableOf::readings) return true;
    readingCells(cells_, row, *file_);
    return endOfRow();
  }
  bool take(const EventRow& row) override {
    if (table_ != TableOf::events) return true;
    eventCells(cells_, row, *file_);
    return endOfRow();
  }
  bool finish() override { return pieces_.flush(); }

 private:
  void header() {
    const auto readings = readingColumns(frame_);
    for (const auto& column : table_ == TableOf::readings ? std::span<const Column>(readings) : eventColumns())
      cells_.text(column.name);
    cells_.endOfRow();
  }
  bool endOfRow() {
    cells_.endOfRow();
    return pieces_.passOn();
  }

  const OutputFrame& frame_;
  TableOf table_;
  TextPieces pieces_;
  CsvCells cells_;
  std::optional<FileCells> file_;
};

}  // namespace

std::unique_ptr<SurveyWriter> makeCsvWriter(const OutputFrame& frame, TableOf table, TextSink write) {
  return std::make_unique<CsvWriter>(frame, table, std::move(write));
}

}  // namespace kalmira
