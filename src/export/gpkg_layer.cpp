#include "export/gpkg_layer.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <bit>
#include <charconv>
#include <cmath>

#include "export/cells.h"

namespace kalmira {
namespace {

constexpr std::size_t kPieceBytes = 65536;
constexpr std::size_t kPointBytes = 16;
constexpr std::size_t kLineHead = 8 + 32 + 9;  // header, envelope, and the line string's own

// Least significant byte first.
template <typename Value>
void put(std::string& bytes, Value value) {
  static_assert(std::endian::native == std::endian::little);
  const auto raw = std::bit_cast<std::array<char, sizeof value>>(value);
  bytes.append(raw.data(), raw.size());
}

// Flags: least significant byte first, with or without an envelope of four numbers.
void putHeader(std::string& bytes, int epsg, bool envelope) {
  bytes += {'G', 'P', '\0', static_cast<char>(envelope ? 3 : 1)};
  put(bytes, static_cast<std::int32_t>(epsg));
}

void putPoint(std::string& bytes, const MapPoint& point) {
  put(bytes, point.x);
  put(bytes, point.y);
}

std::string insertStatement(Database& database, const LayerShape& shape) {
  createLayer(database, shape);
  auto text = fmt::format("INSERT INTO \"{}\" VALUES (NULL, ?", shape.name);
  for (std::size_t i = 0; i < shape.columns.size(); ++i) text += ", ?";
  return text + ")";
}

}  // namespace

LayerRows::LayerRows(Database& database, LayerShape shape)
    : database_(database),
      shape_(std::move(shape)),
      statement_(database, insertStatement(database, shape_)),
      index_(database, fmt::format("rtree_{}_geom", shape_.name)) {}

bool LayerRows::endWithout() {
  statement_.null();
  return endRow(std::nullopt);
}

bool LayerRows::endWithPoint(const MapPoint& point, int epsg) {
  geometry_.clear();
  putHeader(geometry_, epsg, false);
  geometry_ += '\1';
  put(geometry_, std::uint32_t{1});
  putPoint(geometry_, point);
  statement_.blob(geometry_);
  return endRow(Box{.west = point.x, .east = point.x, .south = point.y, .north = point.y});
}

bool LayerRows::endWithRoom(std::uint64_t bytes, const Box& box) {
  statement_.zeroes(bytes);
  return endRow(box);
}

bool LayerRows::endRow(const std::optional<Box>& box) {
  ++rows_;
  next_text_ = 0;
  if (!statement_.run()) return false;
  if (!box) return true;
  if (!extent_) extent_ = box;
  extent_->widen(*box);
  return index_.add(rows_, *box);
}

bool LayerRows::finish(int epsg) { return index_.finish() && finishLayer(database_, shape_, extent_, epsg); }

std::string& LayerRows::fresh() {
  auto& text = texts_.at(next_text_++);
  text.clear();
  return text;
}

void LayerRows::real(double value, int decimals) {
  constexpr std::array kPowers{1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};
  const double power = kPowers.at(static_cast<std::size_t>(decimals));
  statement_.real(std::round(value * power) / power);
}

void LayerRows::shortest(double value) { statement_.real(value); }

// The decimals that are written elsewhere, not those that double precision would add.
void LayerRows::shortest(float value) {
  std::array<char, 32> text;
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
  double real = 0;
  std::from_chars(text.data(), end, real);
  statement_.real(real);
}

void LayerRows::range(int first, int second) {
  if (first == 0) return none();
  auto& text = fresh();
  appendInteger(text, first);
  if (second != 0) appendInteger(text += '/', second);
  statement_.text(text);
}

void LayerRows::date(std::int64_t day) {
  appendDate(fresh(), day);
  statement_.text(texts_.at(next_text_ - 1));
}

void LayerRows::timeOfDay(std::uint32_t ms) {
  appendTimeOfDay(fresh(), ms);
  statement_.text(texts_.at(next_text_ - 1));
}

void LayerRows::utc(double moment) {
  appendUtc(fresh(), moment);
  statement_.text(texts_.at(next_text_ - 1));
}

LineInMaking::LineInMaking(Database& database, std::string_view name)
    : database_(database),
      name_(name),
      keep_(database, (database.run(fmt::format("CREATE TEMP TABLE {} (id INTEGER PRIMARY KEY, points BLOB)", name)),
                       fmt::format("INSERT INTO temp.{} VALUES (?, ?)", name))) {}

bool LineInMaking::add(const MapPoint& point) {
  const Box box{.west = point.x, .east = point.x, .south = point.y, .north = point.y};
  if (points_++ == 0) box_ = box;
  box_.widen(box);
  putPoint(piece_, point);
  if (piece_.size() < kPieceBytes) return true;
  keep_.integer(++pieces_);
  keep_.blob(piece_);
  const bool kept = keep_.run();
  piece_.clear();
  return kept;
}

bool LineInMaking::endRow(LayerRows& layer, int epsg) {
  const bool ended = points_ < 2 ? layer.endWithout()
                                 : layer.endWithRoom(kLineHead + points_ * kPointBytes, box_) && writeInto(layer, epsg);
  if (pieces_ > 0) database_.run(fmt::format("DELETE FROM temp.{}", name_));
  pieces_ = 0;
  points_ = 0;
  piece_.clear();
  return ended && database_.good();
}

bool LineInMaking::writeInto(const LayerRows& layer, int epsg) {
  auto* const sqlite = database_.handle();
  const auto open = [&](const char* where, std::string_view table, const char* column, std::int64_t row, bool write) {
    sqlite3_blob* blob = nullptr;
    database_.take(sqlite3_blob_open(sqlite, where, std::string(table).c_str(), column, row, write ? 1 : 0, &blob));
    return std::unique_ptr<sqlite3_blob, int (*)(sqlite3_blob*)>(blob, sqlite3_blob_close);
  };
  std::string bytes;
  putHeader(bytes, epsg, true);
  for (const double limit : {box_.west, box_.east, box_.south, box_.north}) put(bytes, limit);
  bytes += '\1';
  put(bytes, std::uint32_t{2});
  put(bytes, static_cast<std::uint32_t>(points_));
  const auto line = open("main", layer.shape().name, "geom", layer.rows(), true);
  int place = 0;
  const auto write = [&](const std::string& part) {
    if (database_.good())
      database_.take(sqlite3_blob_write(line.get(), part.data(), static_cast<int>(part.size()), place));
    place += static_cast<int>(part.size());
  };
  write(bytes);
  for (std::int64_t id = 1; id <= pieces_ && database_.good(); ++id) {
    const auto piece = open("temp", name_, "points", id, false);
    if (!database_.good()) return false;
    bytes.resize(static_cast<std::size_t>(sqlite3_blob_bytes(piece.get())));
    database_.take(sqlite3_blob_read(piece.get(), bytes.data(), static_cast<int>(bytes.size()), 0));
    write(bytes);
  }
  write(piece_);
  return database_.good();
}

}  // namespace kalmira
