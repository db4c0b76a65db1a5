#include "viewer/row_files.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <limits>
#include <string_view>
#include <system_error>

#include "instruments/ice_model.h"
#include "platform/files.h"
#include "platform/text.h"
#include "viewer/line_extract.h"

namespace kalmira {
namespace {

constexpr std::size_t kField = 12;
constexpr std::size_t kFlag = 2;
constexpr std::size_t kFlushBytes = 65536;
constexpr std::int64_t kBlockRows = 256;
constexpr std::size_t kConductivityHorizontal = 1;

constexpr std::string_view kBreakRow1 = "          -1 0 0 0 0 0 0 0 0\n";
constexpr std::string_view kBreakRow2 =
    "          -1       -9999       -9999       -9999       -9999       -9999       -9999       -9999"
    "       -9999\n";
static_assert(kBreakRow1.size() == kLine1Row && kBreakRow2.size() == kLine2Row);

// Halves go to the even neighbour, by the exact value and not by the product's rounding.
std::int64_t hundredthsOf(double magnitude) {
  const double product = magnitude * 100.0;
  const double lost = std::fma(magnitude, 100.0, -product);
  const double below = std::floor(product);
  const double part = product - below;
  const auto whole = static_cast<std::int64_t>(below);
  if (part != 0.5) return part > 0.5 ? whole + 1 : whole;
  if (lost != 0.0) return lost > 0.0 ? whole + 1 : whole;
  return whole + (whole % 2);
}

// "%12.2f", several times as fast: a line may have half a million numbers.
void putReal(char* field, double value) {
  constexpr double kWidest = 99999999.0;
  if (!(std::abs(value) < kWidest)) {
    std::memcpy(field, fixedField(value, kField, 2).data(), kField);
    return;
  }
  std::memset(field, ' ', kField);
  auto rest = hundredthsOf(std::abs(value));
  char* at = field + kField;
  for (int digit = 0; digit < 3 || rest > 0; ++digit, rest /= 10) {
    if (digit == 2) *--at = '.';
    *--at = static_cast<char>('0' + rest % 10);
  }
  if (std::signbit(value)) *--at = '-';
}

std::string errorText(const std::filesystem::path& path, int error) {
  return fmt::format("Cannot write {}: {}", path.string(), std::generic_category().message(error));
}

class OutFile {
 public:
  OutFile() = default;
  OutFile(const OutFile&) = delete;
  OutFile& operator=(const OutFile&) = delete;
  ~OutFile() {
    if (fd_ >= 0) ::close(fd_);
  }

  // All return 0 or the error number.
  int open(const std::filesystem::path& path) {
    // Not waiting, should a pipe have taken the name.
    fd_ = ::open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_NONBLOCK | O_CLOEXEC, 0666);
    buffer_.reserve(kFlushBytes + kLine2Row);
    return fd_ < 0 ? errno : 0;
  }
  int append(std::string_view row) {
    buffer_ += row;
    return buffer_.size() < kFlushBytes ? 0 : flush();
  }
  int flush() {
    std::string_view rest = buffer_;
    while (!rest.empty()) {
      const auto written = ::write(fd_, rest.data(), rest.size());
      if (written < 0 && errno == EINTR) continue;
      if (written < 0) return errno;
      rest.remove_prefix(static_cast<std::size_t>(written));
    }
    buffer_.clear();
    return 0;
  }

 private:
  int fd_ = -1;
  std::string buffer_;
};

class InFile {
 public:
  explicit InFile(const std::filesystem::path& path) : fd_(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {}
  InFile(const InFile&) = delete;
  InFile& operator=(const InFile&) = delete;
  ~InFile() {
    if (fd_ >= 0) ::close(fd_);
  }

  bool isOpen() const { return fd_ >= 0; }
  // Fewer bytes than asked for at the file's end. Valid until the next call.
  std::string_view readAt(std::int64_t offset, std::size_t count) {
    buffer_.resize(count);
    std::size_t got = 0;
    while (fd_ >= 0 && got < count) {
      const auto bytes = ::pread(fd_, buffer_.data() + got, count - got, offset + static_cast<std::int64_t>(got));
      if (bytes < 0 && errno == EINTR) continue;
      if (bytes <= 0) break;
      got += static_cast<std::size_t>(bytes);
    }
    return std::string_view(buffer_).substr(0, got);
  }

 private:
  int fd_;
  std::string buffer_;
};

// A row file may have been changed by anybody: no infinities.
double realField(std::string_view row, std::size_t column) {
  const double value = parseReal(row.substr(column, kField));
  return std::isfinite(value) ? value : 0.0;
}

float valueField(std::string_view row, std::size_t column) {
  constexpr double kMost = std::numeric_limits<float>::max();
  return static_cast<float>(std::clamp(realField(row, column), -kMost, kMost));
}

class PointReader {
 public:
  PointReader(const RowFiles& rowFiles, const ScannedFile& file)
      : one_(rowFiles.line1), two_(rowFiles.line2), thickness_(file.wantsThickness) {
    if (thickness_) LoadIceTable(file.seaWaterCase, file.header.shortInstrument, model_);
  }

  LoadOutcome outcome() const { return {.line1Missing = !one_.isOpen(), .line2Missing = !two_.isOpen()}; }

  // Hands out the points of `count` rows from `row` on.
  template <typename Taker>
  void read(std::int64_t row, std::int64_t count, Taker take) {
    for (; row < 1 && count > 0; ++row, --count) take(row, StationPoint{});
    while (count > 0) {
      const std::int64_t rows = std::min(count, kBlockRows);
      const auto size = static_cast<std::size_t>(rows);
      const auto block1 = one_.readAt((row - 1) * std::int64_t{kLine1Row}, size * kLine1Row);
      const auto block2 = two_.readAt((row - 1) * std::int64_t{kLine2Row}, size * kLine2Row);
      for (std::size_t i = 0; i < size; ++i, ++row) take(row, pointAt(block1, block2, i));
      count -= rows;
    }
  }

 private:
  StationPoint pointAt(std::string_view block1, std::string_view block2, std::size_t i) const {
    if ((i + 1) * kLine1Row > block1.size() || (i + 1) * kLine2Row > block2.size()) return {};
    const auto row1 = block1.substr(i * kLine1Row, kLine1Row);
    const auto row2 = block2.substr(i * kLine2Row, kLine2Row);
    StationPoint point;
    point.valid = row2.find('.') != std::string_view::npos;
    point.station = realField(row1, 0);
    for (std::size_t slot = 0; slot < kSlots; ++slot) {
      point.channels.present[slot] = parseInt(row1.substr(kField + slot * kFlag, kFlag)) == 1 ? 1 : 0;
      point.channels.value[slot] = valueField(row2, kField + slot * kField);
    }
    if (point.valid) addThickness(point);
    return point;
  }

  void addThickness(StationPoint& point) const {
    // The model is made for horizontal dipoles.
    if (thickness_ && point.channels.present[kConductivityHorizontal] == 1) {
      point.hasThickness = true;
      const auto conductivity = static_cast<double>(point.channels.value[kConductivityHorizontal]);
      point.thickness = IceThickness(conductivity, model_, &point.channels);
    }
  }

  InFile one_;
  InFile two_;
  bool thickness_;
  IceModel model_;
};

}  // namespace

RowFiles rowFilesOf(const std::filesystem::path& root, int storageClass) {
  std::string_view folder = "KALINI";
  if (storageClass == 0) folder = "C_DRIVE\\KALINI";
  if (storageClass == 1) folder = "Storage\\KALINI";
  const auto path = localPath(root, folder);
  return {.line1 = path / "LINE1.RXX", .line2 = path / "LINE2.RXX"};
}

LoadOutcome LoadLineRows(RecordReader& reader, const ScannedFile& file, ExtractedLine& line, int firstIndex,
                         int lastIndex, int firstRow, std::vector<StationPoint>& points) {
  const std::int64_t count = std::max<std::int64_t>(0, std::int64_t{lastIndex} - firstIndex + 1);
  const std::int64_t lastRow = std::min<std::int64_t>(firstRow + count - 1, line.rowCount());
  fillRows(reader, file, line, static_cast<int>(std::max<std::int64_t>(lastRow, 0)));
  PointReader rows(line.filling.writer.files(), file);
  if (firstIndex < 0 || count == 0) return rows.outcome();
  auto index = static_cast<std::size_t>(firstIndex);
  points.resize(std::max(points.size(), static_cast<std::size_t>(lastIndex) + 1));
  rows.read(firstRow, count, [&](std::int64_t, const StationPoint& point) { points[index++] = point; });
  if (!instrumentOf(file.header.kind).drawsAuxiliary) return rows.outcome();
  // The row files have no room for the auxiliary values.
  walkRows(reader, file, line, std::max(firstRow, 1), [&](int row, const LineRow& made) {
    if (row > lastRow) return false;
    auto& point = points[static_cast<std::size_t>(firstIndex + row - firstRow)];
    point.hasExtras = point.valid;
    if (point.valid) point.extras = made.extras;
    return row < lastRow;
  });
  return rows.outcome();
}

struct RowWriter::Files {
  RowFiles names;
  OutFile one;
  OutFile two;
  ViewerError error;

  void note(const std::filesystem::path& path, int errorNumber) {
    if (errorNumber == 0 || error.kind != ViewerErrorKind::none) return;
    error = {ViewerErrorKind::cannotWrite, errorText(path, errorNumber)};
  }
  void append(std::string_view row1, std::string_view row2) {
    if (error.kind != ViewerErrorKind::none) return;
    note(names.line1, one.append(row1));
    note(names.line2, two.append(row2));
  }
};

RowWriter::RowWriter() : files_(std::make_unique<Files>()) {}
RowWriter::RowWriter(RowWriter&&) noexcept = default;
RowWriter& RowWriter::operator=(RowWriter&&) noexcept = default;
RowWriter::~RowWriter() = default;

ViewerError RowWriter::open(const RowFiles& rowFiles) {
  files_ = std::make_unique<Files>();
  files_->names = rowFiles;
  std::error_code failure;
  std::filesystem::create_directories(rowFiles.line1.parent_path(), failure);
  if (failure) files_->note(rowFiles.line1, failure.value());
  if (!failed()) files_->note(rowFiles.line1, files_->one.open(rowFiles.line1));
  if (!failed()) files_->note(rowFiles.line2, files_->two.open(rowFiles.line2));
  return files_->error;
}

void RowWriter::appendRow(double station, const Channels& channels) {
  std::array<char, kLine1Row> row1;
  std::array<char, kLine2Row> row2;
  putReal(row1.data(), station);
  std::memcpy(row2.data(), row1.data(), kField);
  for (std::size_t slot = 0; slot < kSlots; ++slot) {
    row1[kField + slot * kFlag] = ' ';
    row1[kField + slot * kFlag + 1] = channels.present[slot] != 0 ? '1' : '0';
    putReal(row2.data() + kField + slot * kField, static_cast<double>(channels.value[slot]));
  }
  row1.back() = '\n';
  row2.back() = '\n';
  files_->append({row1.data(), row1.size()}, {row2.data(), row2.size()});
}

void RowWriter::appendBreakRow() { files_->append(kBreakRow1, kBreakRow2); }

void RowWriter::flush() {
  if (failed()) return;
  files_->note(files_->names.line1, files_->one.flush());
  files_->note(files_->names.line2, files_->two.flush());
}

const ViewerError& RowWriter::error() const { return files_->error; }

const RowFiles& RowWriter::files() const { return files_->names; }

}  // namespace kalmira
