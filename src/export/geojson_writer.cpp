#include <fmt/format.h>

#include <set>

#include "export/escaped.h"
#include "export/survey_writer.h"
#include "export/text_cells.h"
#include "platform/text.h"

namespace kalmira {
namespace {

// Members of an object, by the names of the columns in turn.
class JsonForm {
 public:
  JsonForm(std::string& text, std::span<const Column> columns) : text_(text) {
    for (const auto& column : columns) {
      appendJsonText(names_.emplace_back(names_.empty() ? "{" : ","), column.name);
      names_.back() += ':';
    }
  }

  template <typename Append>
  void number(Append append) {
    text_ += names_[next_++];
    const auto size = text_.size();
    append(text_);
    if (text_.size() == size) text_ += "null";
  }
  template <typename Append>
  void word(Append append) {
    text_ += names_[next_++];
    text_ += '"';
    append(text_);
    text_ += '"';
  }
  void text(std::string_view cell) {
    number([=](std::string& text) {
      if (!cell.empty()) appendJsonText(text, cell);
    });
  }
  void endOfObject() {
    text_ += '}';
    next_ = 0;
  }

 private:
  std::string& text_;
  std::vector<std::string> names_;
  std::size_t next_ = 0;
};

// RFC 7946: degrees on WGS 84 whatever the zone of the eastings is.
class GeojsonWriter final : public SurveyWriter {
 public:
  GeojsonWriter(const OutputFrame& frame, TableOf table, TextSink write)
      : frame_(frame), table_(table), pieces_(std::move(write)) {
    pieces_.text += R"({"type":"FeatureCollection","features":[)";
  }

  bool begin(const SourceFile& file) override {
    if (!cells_) {
      const auto readings = readingColumns(frame_);
      const auto columns = table_ == TableOf::readings ? std::span<const Column>(readings) : eventColumns();
      cells_.emplace(JsonForm(pieces_.text, columns));
    }
    file_.emplace(frame_, file.header, file.name);
    takeNotes(file);
    return true;
  }
  bool take(const ReadingRow& row) override {
    if (table_ != TableOf::readings) return true;
    beginFeature(row);
    readingCells(*cells_, row, *file_);
    return endFeature();
  }
  bool take(const EventRow& row) override {
    if (table_ != TableOf::events) return true;
    beginFeature(row);
    eventCells(*cells_, row, *file_);
    return endFeature();
  }
  bool finish() override {
    pieces_.text += "\n]";
    if (!notes_.empty()) (pieces_.text += ",\"notes\":") += notes_ + "\n}";
    pieces_.text += "}\n";
    return pieces_.flush();
  }

 private:
  // Files of two folders may have one name.
  void takeNotes(const SourceFile& file) {
    if (file.notes == SurveyNotes{}) return;
    auto name = file.name;
    for (int i = 2; !names_.insert(name).second; ++i) name = fmt::format("{} ({})", file.name, i);
    notes_ += notes_.empty() ? "{\n" : ",\n";
    appendJsonText(notes_, name);
    const auto notes = formatNotes(file.notes);
    (notes_ += ":") += std::string_view(notes).substr(0, notes.find_last_not_of('\n') + 1);
  }

  void beginFeature(const SurveyMoment& row) {
    auto& text = pieces_.text;
    text += any_ ? ",\n" : "\n";
    any_ = true;
    text += R"({"type":"Feature","geometry":)";
    if (const auto* at = mapPoint(row)) {
      appendReal(text += R"({"type":"Point","coordinates":[)", at->longitude, kDegreeDecimals);
      appendReal(text += ',', at->latitude, kDegreeDecimals);
      text += "]}";
    } else {
      text += "null";
    }
    text += R"(,"properties":)";
  }
  bool endFeature() {
    cells_->form.endOfObject();
    pieces_.text += '}';
    return pieces_.passOn();
  }

  const OutputFrame& frame_;
  TableOf table_;
  TextPieces pieces_;
  std::optional<TextCells<JsonForm>> cells_;
  std::optional<FileCells> file_;
  std::string notes_;  // of all files so far
  std::set<std::string> names_;
  bool any_ = false;
};

}  // namespace

std::unique_ptr<SurveyWriter> makeGeojsonWriter(const OutputFrame& frame, TableOf table, TextSink write) {
  return std::make_unique<GeojsonWriter>(frame, table, std::move(write));
}

}  // namespace kalmira
