#include <fmt/format.h>

#include "export/cells.h"
#include "export/escaped.h"
#include "export/spool.h"
#include "export/survey_writer.h"
#include "platform/command_line.h"

namespace kalmira {
namespace {

// Longitudes end before 180 degrees here.
void appendLongitude(std::string& text, double longitude) {
  const auto start = text.size();
  appendReal(text, longitude, kDegreeDecimals);
  if (std::string_view(text).substr(start).starts_with("180")) text.insert(start, 1, '-');
}

void beginPoint(std::string& text, std::string_view element, const GeoPoint& at) {
  appendReal(((text += '<') += element) += " lat=\"", at.latitude, kDegreeDecimals);
  appendLongitude(text += "\" lon=\"", at.longitude);
  text += "\">";
}

// Of the GGA digits: real-time kinematic positions are differential, too.
bool isDifferential(int quality) { return quality == 2 || quality == 4 || quality == 5; }

// Version 1.1: waypoints before tracks, and the parts of each in their settled order.
class GpxWriter final : public SurveyWriter {
 public:
  GpxWriter(const OutputFrame& frame, std::filesystem::path folder, TextSink write)
      : tracks_(std::move(folder)), pieces_(std::move(write)) {
    auto& text = pieces_.text;
    text += fmt::format(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<gpx version=\"1.1\" creator=\"Kalmira {}\" xmlns=\"http://www.topografix.com/GPX/1/1\">\n<metadata>",
        programVersion());
    appendXmlElement(text, "name", frame.title);
    text += "</metadata>\n";
  }

  bool begin(const SourceFile& file) override {
    track_.clear();
    appendXmlElement(track_ += "<trk>", "name", file.name);
    appendXmlElement(track_, "desc", notesText(file.notes));
    stretch_.reset();
    return true;
  }
  bool take(const ReadingRow&) override { return true; }
  bool take(const EventRow& row) override {
    const auto* at = mapPoint(row);
    if (at == nullptr) return true;
    auto& text = pieces_.text;
    beginPoint(text, "wpt", *at);
    if (row.place->altitude) appendElement(text, "ele", [&] { appendReal(text, *row.place->altitude, kDecimals); });
    if (row.utc) appendElement(text, "time", [&] { appendUtc(text, *row.utc); });
    appendXmlElement(text, "name", row.text);
    appendXmlElement(text, "type", row.event);
    text += "</wpt>\n";
    return pieces_.passOn();
  }
  // The receiver's own: its antenna's place.
  bool take(const Fix& fix) override {
    std::string text = stretch_ ? "" : track_ + "\n";
    if (stretch_ != fix.stretch) text += stretch_ ? "</trkseg>\n<trkseg>\n" : "<trkseg>\n";
    stretch_ = fix.stretch;
    const auto& position = fix.position;
    beginPoint(text, "trkpt", fix.place());
    if (position.altitude) appendElement(text, "ele", [&] { appendReal(text, *position.altitude, kDecimals); });
    if (fix.dated) appendElement(text, "time", [&] { appendUtc(text, fix.utc); });
    if (isDifferential(position.quality)) appendXmlElement(text, "fix", "dgps");
    if (position.satellites) appendElement(text, "sat", [&] { appendInteger(text, *position.satellites); });
    if (position.hdop) appendElement(text, "hdop", [&] { appendShortest(text, *position.hdop); });
    return tracks_.add(text += "</trkpt>\n");
  }
  bool endOfFile() override { return !stretch_ || tracks_.add("</trkseg>\n</trk>\n"); }
  bool finish() override {
    const bool whole = tracks_.each([this](std::string_view text) {
      pieces_.text += text;
      return pieces_.passOn();
    });
    pieces_.text += "</gpx>\n";
    return whole && pieces_.flush();
  }
  std::string problem() const override { return tracks_.problem(); }

 private:
  Spool tracks_;
  TextPieces pieces_;
  std::string track_;                     // how that of the file begins
  std::optional<std::uint64_t> stretch_;  // of the last fix; nothing before the first
};

}  // namespace

std::unique_ptr<SurveyWriter> makeGpxWriter(const OutputFrame& frame, std::filesystem::path spoolFolder,
                                            TextSink write) {
  return std::make_unique<GpxWriter>(frame, std::move(spoolFolder), std::move(write));
}

}  // namespace kalmira
