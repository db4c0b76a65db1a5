#include "export/cells.h"
#include "export/survey_writer.h"

namespace kalmira {
namespace {

// Cells as text, each with the comma behind it.
class CsvCells {
 public:
  explicit CsvCells(std::string& text) : text_(text) {}

  void none() { text_ += ','; }
  void text(std::string_view cell) { appendText(text_, cell), none(); }
  void integer(std::int64_t value) { appendInteger(text_, value), none(); }
  void real(double value, int decimals) { appendReal(text_, value, decimals), none(); }
  template <typename Real>
  void shortest(Real value) {
    appendShortest(text_, value), none();
  }
  void range(int first, int second) {
    if (first != 0) appendInteger(text_, first);
    if (second != 0) appendInteger(text_ += '/', second);
    none();
  }
  // A day has many readings.
  void date(std::int64_t day) {
    if (day_ != day) appendDate(date_ = {}, day);
    day_ = day;
    text_ += date_;
    none();
  }
  void timeOfDay(std::uint32_t ms) { appendTimeOfDay(text_, ms), none(); }
  void utc(double moment) { appendUtc(text_, moment), none(); }
  void endOfRow() { text_.back() = '\n'; }

 private:
  std::string& text_;
  std::optional<std::int64_t> day_;  // of `date_`
  std::string date_;
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
