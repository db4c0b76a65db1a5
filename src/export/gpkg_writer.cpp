#include <fmt/format.h>

#include <array>
#include <cmath>
#include <filesystem>

#include "export/gpkg_layer.h"
#include "export/survey_writer.h"
#include "platform/files.h"

namespace kalmira {
namespace {

constexpr int kLengthDecimals = 2;
constexpr int kMeanDecimals = 6;

// Of the readings of a survey line.
struct LineSums {
  struct Channel {
    double sum = 0;
    std::uint64_t count = 0;
  };
  std::string name;
  std::uint64_t block = 0;
  std::uint64_t readings = 0;
  double length_m = 0;
  std::optional<GeoPoint> last;
  std::optional<double> firstUtc, lastUtc;
  std::optional<double> firstStation, lastStation;
  std::vector<Channel> channels;
};

// Of the fixes of a stretch of the receiver.
struct TrackSums {
  std::uint64_t stretch = 0;
  std::uint64_t fixes = 0;
  double length_m = 0;
  GeoPoint last;
  bool dated = false;
  double firstUtc = 0, lastUtc = 0;
};

std::vector<Column> lineColumns(const std::vector<std::string>& means, const OutputFrame& frame) {
  using enum ColumnType;
  std::vector<Column> columns{{"line", text, {}, "name of the survey line"},
                              {"file", text, {}, "data file"},
                              {"kind", text, {}, "instrument"},
                              {"count", integer, {}, "readings"},
                              {"length", real, "m", "of the way through the readings' places"},
                              {"start_station", real},
                              {"end_station", real},
                              {"start_time", moment, {}, "by the receiver's clock"},
                              {"end_time", moment, {}, "by the receiver's clock"}};
  for (std::size_t i = 0; i < means.size(); ++i) columns.push_back({means[i], real, frame.channels[i].unit});
  return columns;
}

std::vector<Column> trackColumns() {
  using enum ColumnType;
  return {{"file", text, {}, "data file"}, {"kind", text, {}, "instrument"}, {"count", integer, {}, "fixes"},
          {"length", real, "m"},           {"start_time", moment},           {"end_time", moment}};
}

// All that is known from the first file on, for the columns are those of all files.
class GeoPackage {
 public:
  GeoPackage(Database& database, const OutputFrame& frame)
      : frame_(frame),
        database_(database),
        means_(meansOf(frame)),
        readings_(database, {"readings", "Readings of the survey", "POINT", readingColumns(frame)}),
        lines_(database, {"lines", "Survey lines", "LINESTRING", lineColumns(means_, frame)}),
        track_(database, {"track", "Way of the receiver, by the fixes used", "LINESTRING", trackColumns()}),
        events_(database, {"events",
                           "Lines, stations, comments and breaks",
                           "POINT",
                           {eventColumns().begin(), eventColumns().end()}}),
        line_(database, "line_points"),
        way_(database, "way_points"),
        samples_(frame.channels.size()) {}

  void begin(const SourceFile& file) { file_.emplace(frame_, file.header, file.name); }

  bool take(const ReadingRow& row) {
    if (row.lineBlock != sums_.block || sums_.readings == 0) {
      if (!endLine()) return false;
      sums_.name = row.line;
      sums_.block = row.lineBlock;
      sums_.firstStation = row.station;
      sums_.channels.resize(frame_.channels.size());
    }
    if (!addToLine(row)) return false;
    readingCells(readings_, row, *file_);
    return endWithPlace(readings_, row);
  }

  bool take(const EventRow& row) {
    eventCells(events_, row, *file_);
    return endWithPlace(events_, row);
  }

  bool take(const Fix& fix) {
    if (fix.stretch != way_sums_.stretch && !endWay()) return false;
    auto& sums = way_sums_;
    if (sums.fixes++ == 0) {
      sums.stretch = fix.stretch;
      sums.dated = fix.dated;
      sums.firstUtc = fix.utc;
    } else {
      sums.length_m += nearbyLength(sums.last, fix.place());
    }
    sums.last = fix.place();
    sums.lastUtc = fix.utc;
    return way_.add(coordinatesOf(fix.place()));
  }

  bool endOfFile() { return endLine() && endWay(); }

  bool finish() {
    for (auto* const layer : {&readings_, &lines_, &track_, &events_}) {
      if (!layer->finish(epsg())) return false;
    }
    if (frame_.projected && frame_.zone && !addZone(database_, *frame_.zone)) return false;
    const auto coloured = colouredChannel(frame_.coloured, samples_);
    if (!coloured || samples_[*coloured].empty()) return true;
    const auto& channel = frame_.channels[*coloured];
    return addStyle(database_, "readings", {channel.name, ColumnType::real, channel.unit},
                    samples_[*coloured].classes());
  }

 private:
  static std::vector<std::string> meansOf(const OutputFrame& frame) {
    std::vector<std::string> names;
    for (const auto& channel : frame.channels) names.push_back(fmt::format("{}_mean", channel.name));
    return names;
  }

  int epsg() const { return frame_.projected && frame_.zone ? frame_.zone->epsg() : kGeographic; }
  MapPoint coordinatesOf(const GeoPoint& at) const {
    if (!frame_.projected || !frame_.zone) return {at.longitude, at.latitude};
    const auto plane = project(*frame_.zone, at);
    return {plane.easting, plane.northing};
  }
  MapPoint coordinatesOf(const Place& place) const {
    if (frame_.projected) return {place.plane.easting, place.plane.northing};
    return {place.at.longitude, place.at.latitude};
  }
  bool endWithPlace(LayerRows& layer, const SurveyMoment& row) const {
    return mapPoint(row) == nullptr ? layer.endWithout() : layer.endWithPoint(coordinatesOf(*row.place), epsg());
  }

  bool addToLine(const ReadingRow& row) {
    const bool placed = mapPoint(row) != nullptr;
    ++sums_.readings;
    sums_.lastStation = row.station;
    if (!sums_.firstUtc) sums_.firstUtc = row.utc;
    if (row.utc) sums_.lastUtc = row.utc;
    for (std::size_t i = 0; i < sums_.channels.size(); ++i) {
      const auto value = channelValue(row.reading, file_->channelSlots[i]);
      if (!value) continue;
      sums_.channels[i].sum += static_cast<double>(*value);
      ++sums_.channels[i].count;
      if (placed) samples_[i].take(static_cast<double>(*value));
    }
    if (!placed) return true;
    if (sums_.last) sums_.length_m += nearbyLength(*sums_.last, row.place->at);
    sums_.last = row.place->at;
    return line_.add(coordinatesOf(*row.place));
  }

  bool endLine() {
    if (sums_.readings == 0) return true;
    auto& row = lines_;
    row.text(sums_.name);
    row.text(file_->name);
    row.text(file_->kind);
    row.integer(static_cast<std::int64_t>(sums_.readings));
    sums_.last ? row.real(sums_.length_m, kLengthDecimals) : row.none();
    realCell(row, sums_.firstStation);
    realCell(row, sums_.lastStation);
    sums_.firstUtc ? row.utc(*sums_.firstUtc) : row.none();
    sums_.lastUtc ? row.utc(*sums_.lastUtc) : row.none();
    for (const auto& channel : sums_.channels)
      channel.count > 0 ? row.real(channel.sum / static_cast<double>(channel.count), kMeanDecimals) : row.none();
    const bool ended = line_.endRow(row, epsg());
    sums_ = {};
    return ended;
  }

  bool endWay() {
    const auto sums = std::exchange(way_sums_, {});
    if (sums.fixes == 0) return true;
    auto& row = track_;
    row.text(file_->name);
    row.text(file_->kind);
    row.integer(static_cast<std::int64_t>(sums.fixes));
    row.real(sums.length_m, kLengthDecimals);
    sums.dated ? row.utc(sums.firstUtc) : row.none();
    sums.dated ? row.utc(sums.lastUtc) : row.none();
    return way_.endRow(row, epsg());
  }

  const OutputFrame& frame_;
  Database& database_;
  std::vector<std::string> means_;  // names of columns
  LayerRows readings_, lines_, track_, events_;
  LineInMaking line_, way_;
  std::vector<ValueSample> samples_;  // of the channels
  std::optional<FileCells> file_;
  LineSums sums_;
  TrackSums way_sums_;
};

class GpkgWriter final : public SurveyWriter {
 public:
  GpkgWriter(const OutputFrame& frame, OutputFile& file) : frame_(frame), file_(file) {}

  bool begin(const SourceFile& file) override {
    if (!layers_) {
      const auto path = file_.forAnother();
      if (!path || !database_.open(*path) || !beginGeoPackage(database_)) return false;
      layers_.emplace(database_, frame_);
    }
    layers_->begin(file);
    const bool noted = !(file.notes == SurveyNotes{});
    return !noted || addNotes(database_, formatNotes(file.notes));
  }
  bool take(const ReadingRow& row) override { return layers_->take(row); }
  bool take(const EventRow& row) override { return layers_->take(row); }
  bool take(const Fix& fix) override { return layers_->take(fix); }
  bool endOfFile() override { return layers_->endOfFile(); }
  bool finish() override {
    if (!layers_) return true;
    const bool whole = layers_->finish();
    layers_.reset();  // no statement stays open
    return whole && database_.close();
  }
  std::string problem() const override { return database_.problem(); }

 private:
  const OutputFrame& frame_;
  OutputFile& file_;
  Database database_;
  std::optional<GeoPackage> layers_;
};

}  // namespace

std::unique_ptr<SurveyWriter> makeGpkgWriter(const OutputFrame& frame, OutputFile& file) {
  return std::make_unique<GpkgWriter>(frame, file);
}

}  // namespace kalmira
