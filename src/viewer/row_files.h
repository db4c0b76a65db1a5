#pragma once

#include <array>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "instruments/reading.h"
#include "viewer/line_walk.h"

// The two row files of an extracted line, one row a station: LINE1 has the station and eight channel flags (29 bytes),
// LINE2 the station and eight values (109 bytes). Four break rows stand where the operator entered a new station.
namespace kalmira {

struct ExtractedLine;

enum class ViewerErrorKind { none, cannotRead, cannotWrite, noSuchLine };
// A kind and a sentence for the operator.
struct ViewerError {
  ViewerErrorKind kind = ViewerErrorKind::none;
  std::string text;
};

struct RowFiles {
  std::filesystem::path line1;
  std::filesystem::path line2;
};
inline constexpr std::size_t kLine1Row = 29;
inline constexpr std::size_t kLine2Row = 109;

// In the settings folder of the storage class (0 to 3), whatever the instrument; 2 and 3 have it in the root itself.
RowFiles rowFilesOf(const std::filesystem::path& root, int storageClass);

// One station of the plot. Of a row that does not exist everything is 0.
struct StationPoint {
  bool valid = false;  // false: a break row, or no row at all
  double station = 0;  // -1 of a break row
  Channels channels;   // an ORLA's ice thickness, metres, in slot 4
  bool hasExtras = false;
  std::array<float, 2> extras{};  // TESK2: the auxiliary values
  bool hasThickness = false;      // a horizontal reading of a file that asks for it
  float thickness = 0;            // metres; below 0: outside the model's table
};

// Both messages can come together; reading goes on regardless.
struct LoadOutcome {
  bool line1Missing = false;
  bool line2Missing = false;
};
inline constexpr const char* kInvalidHandle1 = "invalid handle 1";
inline constexpr const char* kInvalidHandle2 = "invalid handle 2";

// Writes row files: makes the folder when it is missing, and truncates what was there.
class RowWriter {
 public:
  RowWriter();
  RowWriter(RowWriter&&) noexcept;
  RowWriter& operator=(RowWriter&&) noexcept;
  ~RowWriter();

  ViewerError open(const RowFiles& rowFiles);
  // A value too wide for its 12 columns loses decimals or is brought to the widest number; the columns stay.
  void appendRow(double station, const Channels& channels);
  void appendBreakRow();
  bool failed() const { return error().kind != ViewerErrorKind::none; }
  // Hands what is left to the system, for whoever reads the files.
  void flush();
  // The first thing that went wrong, or kind none.
  const ViewerError& error() const;
  const RowFiles& files() const;

 private:
  struct Files;
  std::unique_ptr<Files> files_;
};

// How far a line's row files are written.
struct RowFilling {
  RowWriter writer;
  LineWalk::State place{};
};

// Fills points[firstIndex] to points[lastIndex] (both included; `points` is made long enough) with the rows from
// `firstRow` on, counted from 1; rows that have not been written yet are. Rows below 1 and rows past the line's end
// read as cleared points, so that every row keeps its column.
LoadOutcome LoadLineRows(RecordReader& reader, const ScannedFile& file, ExtractedLine& line, int firstIndex,
                         int lastIndex, int firstRow, std::vector<StationPoint>& points);

}  // namespace kalmira
