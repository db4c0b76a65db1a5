// Any bytes as a data file in the viewer: scanned, every line (of the first few) extracted into row files,
// and those read back, drawn and read out. The rows must be as many as the row files hold, and whatever the
// file says, their columns must not shift.
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>

#include "viewer/plot_points.h"
#include "viewer/readout.h"

namespace {

using namespace kalmira;

void require(bool holds) {
  if (!holds) std::abort();
}

// Nobody looks at the picture.
class BlindCanvas final : public ChartCanvas {
 public:
  void clear() override {}
  void scrollLeft(int) override {}
  void eraseColumns(int, int) override {}
  void gridPiece(int, int, int, int) override {}
  void line(int, int, int, int, int, int) override {}
  void point(int, int, int, int) override {}
};

// One folder a process, gone at its end.
struct Folder {
  Folder() { std::filesystem::create_directories(path); }
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  std::filesystem::path path =
      std::filesystem::temp_directory_path() / ("kalmira_fuzz_viewer_" + std::to_string(::getpid()));
};

void showLine(RecordReader& reader, const ScannedFile& file, const RowFiles& rows, std::size_t number) {
  ExtractedLine line;
  require(ExtractLine(reader, file, number, rows, {}, line).kind == ViewerErrorKind::none);
  const auto count = static_cast<std::uintmax_t>(line.rowCount());
  require(std::filesystem::file_size(rows.line1) == count * kLine1Row);
  require(std::filesystem::file_size(rows.line2) == count * kLine2Row);

  constexpr int kView = 20;
  std::vector<StationPoint> points;
  LoadLineRows(reader, file, line, 0, kView - 1, 0, points);
  require(points.size() == kView && !points[0].valid);
  BlindCanvas canvas;
  const auto setup = plotSetup(file, {}, kView + 2, 50);
  const PlotView view{.firstRow = 0, .rows = kView, .columns = kView, .columnsPerRow = 1};
  DrawStationPlot(canvas, setup, view, points);
  offScaleMarks(setup, view, points, 5);
  stationLabels(
      stationTicks(view, points), kView, [](const std::string& text) { return static_cast<int>(text.size()); }, 1);
  DrawOverview(canvas, setup, lineOverview(line.summary, 7), 0, true);
  for (int row = 0; row < kView; ++row) {
    readoutFields(file, placeOfRow(reader, file, line, row), points[static_cast<std::size_t>(row)]);
    for (const auto& note : readStationNotes(reader, file, line, row).notes) noteText(note);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Folder folder;
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  RecordReader reader;
  if (reader.open(std::make_unique<std::istringstream>(bytes)).kind != FileErrorKind::none) return 0;
  ScannedFile file;
  require(ScanDataFile(reader, file).kind == FileErrorKind::none);
  const auto rows = rowFilesOf(folder.path, 3);
  for (std::size_t line = 1; line <= std::min<std::size_t>(file.lines.size(), 4); ++line)
    showLine(reader, file, rows, line);
  return 0;
}
