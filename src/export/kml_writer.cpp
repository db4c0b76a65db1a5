#include <fmt/format.h>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>

#include "export/colour_scale.h"
#include "export/escaped.h"
#include "export/spool.h"
#include "export/survey_writer.h"
#include "export/text_cells.h"

namespace kalmira {
namespace {

constexpr std::uint32_t kGrey = 0x808080;

// Cells that stand in XML as they are, each with a zero behind it.
class SpooledForm {
 public:
  explicit SpooledForm(std::string& text) : text_(text) {}

  template <typename Append>
  void number(Append append) {
    append(text_);
    text_ += '\0';
  }
  template <typename Append>
  void word(Append append) {
    number(append);
  }
  void text(std::string_view cell) {
    number([=](std::string& text) { appendXmlText(text, cell); });
  }

 private:
  std::string& text_;
};

// What a class of values looks like on the map, and in its legend, which is the list of folders.
struct Look {
  std::string id;
  std::string name;
  std::uint32_t rgb = kGrey;
};

void appendStyle(std::string& text, const Look& look) {
  const auto rgb = look.rgb;
  const auto turned = (rgb & 0xFFU) << 16U | (rgb & 0xFF00U) | rgb >> 16U;  // the format has blue first
  text += fmt::format(
      "<Style id=\"{}\"><IconStyle><color>ff{:06x}</color><scale>0.5</scale></IconStyle>"
      "<LabelStyle><scale>0</scale></LabelStyle></Style>\n",
      look.id, turned);
}

// Version 2.2. The classes of values are known only when all values are: until then readings wait, and are then gone
// over once a class.
class KmlWriter final : public SurveyWriter {
 public:
  KmlWriter(const OutputFrame& frame, std::filesystem::path folder, TextSink write)
      : frame_(frame),
        columns_(readingColumns(frame)),
        samples_(frame.channels.size()),
        values_(frame.channels.size()),
        spool_(std::move(folder)),
        cells_(SpooledForm(piece_)),
        pieces_(std::move(write)) {
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      if (columns_[i].name == "longitude") longitude_ = i;
      if (columns_[i].name == "utc") utc_ = i;
    }
  }

  bool begin(const SourceFile& file) override {
    file_.emplace(frame_, file.header, file.name);
    if (const auto notes = notesText(file.notes); !notes.empty())
      notes_ += fmt::format("{}{}\n{}", notes_.empty() ? "" : "\n", file.name, notes);
    return true;
  }

  bool take(const ReadingRow& row) override {
    if (mapPoint(row) == nullptr) return true;
    ++placed_;
    for (std::size_t i = 0; i < values_.size(); ++i) {
      const auto value = channelValue(row.reading, file_->channelSlots[i]);
      const bool valid = value && std::isfinite(*value);
      values_[i] = valid ? *value : std::numeric_limits<float>::quiet_NaN();
      if (valid) samples_[i].take(static_cast<double>(*value));
    }
    piece_.resize(valuesSize());
    if (!values_.empty()) std::memcpy(piece_.data(), values_.data(), valuesSize());
    readingCells(cells_, row, *file_);
    return spool_.add(piece_);
  }

  bool finish() override {
    chooseLooks();
    auto& text = pieces_.text;
    text += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<kml xmlns=\"http://www.opengis.net/kml/2.2\"><Document>\n";
    appendXmlElement(text, "name", frame_.title);
    appendXmlElement(text, "description", about());
    text += '\n';
    for (const auto& look : looks_) appendStyle(text, look);
    for (std::size_t i = 0; i < looks_.size(); ++i) {
      if (!appendFolder(i)) return false;
    }
    text += "</Document></kml>\n";
    return pieces_.flush();
  }
  std::string problem() const override { return spool_.problem(); }

 private:
  std::size_t valuesSize() const { return values_.size() * sizeof(float); }

  void chooseLooks() {
    coloured_ = colouredChannel(frame_.coloured, samples_);
    if (coloured_) classes_ = samples_[*coloured_].classes();
    for (const auto& range : classes_)
      looks_.push_back(
          {fmt::format("class{}", looks_.size() + 1), classText(range, frame_.channels[*coloured_].unit), range.rgb});
    if (placed_ > (coloured_ ? samples_[*coloured_].count() : 0)) looks_.push_back({"none", "no value", kGrey});
  }

  std::string about() const {
    if (!coloured_) return notes_;
    const auto& channel = frame_.channels[*coloured_];
    return fmt::format("coloured by {}{}{}{}{}", channel.name, channel.unit.empty() ? "" : " in ", channel.unit,
                       notes_.empty() ? "" : "\n", notes_);
  }

  // Of a reading in the spool.
  std::size_t lookOf(std::string_view piece) const {
    float value = std::numeric_limits<float>::quiet_NaN();
    if (coloured_) std::memcpy(&value, piece.data() + *coloured_ * sizeof value, sizeof value);
    return std::isnan(value) ? classes_.size() : classOf(classes_, static_cast<double>(value));
  }

  bool appendFolder(std::size_t look) {
    appendXmlElement(pieces_.text += "<Folder>", "name", looks_[look].name);
    pieces_.text += '\n';
    const bool whole = spool_.each([this, look](std::string_view piece) {
      if (lookOf(piece) == look) appendPlacemark(piece.substr(valuesSize()), looks_[look]);
      return pieces_.passOn();
    });
    pieces_.text += "</Folder>\n";
    return whole;
  }

  void appendPlacemark(std::string_view cells, const Look& look) {
    row_.clear();
    while (!cells.empty()) {
      row_.push_back(cells.substr(0, cells.find('\0')));
      cells.remove_prefix(row_.back().size() + 1);
    }
    auto& text = pieces_.text;
    (text += "<Placemark><name>") += row_[0];
    if (!row_[1].empty()) ((text += row_[0].empty() ? "" : " ") += row_[1]);
    text += "</name>";
    if (!row_[utc_].empty()) ((text += "<TimeStamp><when>") += row_[utc_]) += "</when></TimeStamp>";
    ((text += "<styleUrl>#") += look.id) += "</styleUrl><ExtendedData>";
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      if (row_[i].empty()) continue;
      ((text += "<Data name=\"") += columns_[i].name) += "\"><value>";
      (text += row_[i]) += "</value></Data>";
    }
    (text += "</ExtendedData><Point><coordinates>") += row_[longitude_];
    ((text += ',') += row_[longitude_ + 1]) += "</coordinates></Point></Placemark>\n";
  }

  const OutputFrame& frame_;
  std::vector<Column> columns_;
  std::size_t longitude_ = 0, utc_ = 0;  // of the columns; the latitude is behind the longitude
  std::optional<FileCells> file_;
  std::string notes_;  // of all files so far
  std::vector<ValueSample> samples_;
  std::vector<float> values_;  // of a reading; no number where it has none
  std::uint64_t placed_ = 0;
  Spool spool_;
  std::string piece_;  // the values, then the cells
  TextCells<SpooledForm> cells_;
  TextPieces pieces_;
  // Known at the end.
  std::optional<std::size_t> coloured_;
  std::vector<ColourClass> classes_;
  std::vector<Look> looks_;  // of the classes, and of what has no value
  std::vector<std::string_view> row_;
};

}  // namespace

std::unique_ptr<SurveyWriter> makeKmlWriter(const OutputFrame& frame, std::filesystem::path spoolFolder,
                                            TextSink write) {
  return std::make_unique<KmlWriter>(frame, std::move(spoolFolder), std::move(write));
}

}  // namespace kalmira
