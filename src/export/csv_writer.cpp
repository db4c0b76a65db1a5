#include "export/survey_writer.h"
#include "export/text_cells.h"

namespace kalmira {
namespace {

// Cells each with the comma behind it.
class CsvForm {
 public:
  explicit CsvForm(std::string& text) : text_(text) {}

  template <typename Append>
  void number(Append append) {
    append(text_);
    text_ += ',';
  }
  template <typename Append>
  void word(Append append) {
    number(append);
  }
  void text(std::string_view cell) {
    number([=](std::string& text) { appendText(text, cell); });
  }
  void endOfRow() { text_.back() = '\n'; }

 private:
  std::string& text_;
};

class CsvWriter final : public SurveyWriter {
 public:
  CsvWriter(const OutputFrame& frame, TableOf table, TextSink write)
      : frame_(frame), table_(table), pieces_(std::move(write)), cells_(CsvForm(pieces_.text)) {}

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
    cells_.form.endOfRow();
  }
  bool endOfRow() {
    cells_.form.endOfRow();
    return pieces_.passOn();
  }

  const OutputFrame& frame_;
  TableOf table_;
  TextPieces pieces_;
  TextCells<CsvForm> cells_;
  std::optional<FileCells> file_;
};

}  // namespace

std::unique_ptr<SurveyWriter> makeCsvWriter(const OutputFrame& frame, TableOf table, TextSink write) {
  return std::make_unique<CsvWriter>(frame, table, std::move(write));
}

}  // namespace kalmira
