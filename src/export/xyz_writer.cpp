#include <fmt/format.h>

#include "export/cells.h"
#include "export/survey_writer.h"
#include "platform/text.h"

namespace kalmira {
namespace {

// Cells with a blank between them, "*" for what is missing.
class XyzWriter final : public SurveyWriter {
 public:
  XyzWriter(const OutputFrame& frame, TextSink write) : frame_(frame), pieces_(std::move(write)) {}

  bool begin(const SourceFile& file) override {
    auto& text = pieces_.text;
    if (!file_) {
      placed_ = file.placed;
      text += placed_ ? "/ easting northing altitude station" : "/ grid_x grid_y altitude station";
      for (const auto& channel : frame_.channels) (text += ' ') += channel.name;
      text += '\n';
    }
    for (const auto& field : notesFields()) {
      const auto note = field.asked ? printable(noteText(file.notes, field)) : "";
      if (!note.empty()) text += fmt::format("/ {}: {}\n", field.name, note);
    }
    file_.emplace(frame_, file.header, file.name);
    line_.reset();
    return pieces_.passOn();
  }

  bool take(const ReadingRow& row) override {
    if (line_ != row.lineBlock) pieces_.text += fmt::format("Line {}\n", row.line);
    line_ = row.lineBlock;
    cell(placed_ ? plane(row, &PlanePoint::easting) : row.grid ? std::optional(row.grid->x) : std::nullopt);
    cell(placed_ ? plane(row, &PlanePoint::northing) : row.grid ? std::optional(row.grid->y) : std::nullopt);
    cell(row.place ? row.place->altitude : std::nullopt);
    cell(row.station);
    for (const auto slot : file_->channelSlots) {
      const auto value = channelValue(row.reading, slot);
      if (value) appendShortest(pieces_.text, *value);
      pieces_.text += value ? " " : "* ";
    }
    pieces_.text.back() = '\n';
    return pieces_.passOn();
  }

  bool finish() override { return pieces_.flush(); }

 private:
  static std::optional<double> plane(const ReadingRow& row, double PlanePoint::*of) {
    return row.place ? std::optional(row.place->plane.*of) : std::nullopt;
  }
  void cell(const std::optional<double>& value) {
    if (value) appendReal(pieces_.text, *value, kDecimals);
    pieces_.text += value ? " " : "* ";
  }

  const OutputFrame& frame_;
  TextPieces pieces_;
  std::optional<FileCells> file_;
  std::optional<std::uint64_t> line_;
  bool placed_ = false;  // by their positions, else in the survey's own grid
};

}  // namespace

std::unique_ptr<SurveyWriter> makeXyzWriter(const OutputFrame& frame, TextSink write) {
  return std::make_unique<XyzWriter>(frame, std::move(write));
}

}  // namespace kalmira
