#include "viewer/opened_file.h"

#include <fmt/format.h>

#include <system_error>
#include <tuple>

namespace kalmira {

std::unique_ptr<OpenedFile> openDataFile(const std::filesystem::path& path, std::string& problem) {
  auto file = std::make_unique<OpenedFile>();
  file->path = path;
  const auto tell = [&](const FileError& error) {
    if (error.kind != FileErrorKind::none) problem = fmt::format("{}: {}", path.filename().string(), error.text);
    return error.kind == FileErrorKind::none;
  };
  if (!tell(file->reader.open(path))) return nullptr;
  const bool whole = tell(ScanDataFile(file->reader, file->scanned));
  std::string noteProblem;
  file->notes = readNotesBeside(path, noteProblem).value_or(SurveyNotes{});
  if (whole && !noteProblem.empty())
    problem = fmt::format("{}: the notes beside it: {}", path.filename().string(), noteProblem);
  return file;
}

std::string openLine(OpenedFile& file, std::size_t index, const RowFiles& rowFiles, const ExtractOptions& options) {
  file.line = {};
  file.points.clear();
  if (index >= file.scanned.lines.size()) return {};
  auto chosen = options;
  chosen.teskRangeTimes10 = options.teskRangeTimes10 || file.notes.teskRangeTimes10.value_or(false);
  return ExtractLine(file.reader, file.scanned, index + 1, rowFiles, chosen, file.line).text;
}

std::vector<std::string> loadView(OpenedFile& file, const PlotView& view, const Navigation& state) {
  file.points.clear();
  if (file.line.line == 0) return {};
  file.firstPoint = view.summed() ? rowAtBar(state) : view.firstRow;
  const auto outcome = LoadLineRows(file.reader, file.scanned, file.line, 0, view.summed() ? 0 : view.rows - 1,
                                    file.firstPoint, file.points);
  std::vector<std::string> messages;
  if (outcome.line1Missing) messages.emplace_back(kInvalidHandle1);
  if (outcome.line2Missing) messages.emplace_back(kInvalidHandle2);
  return messages;
}

bool fillSome(OpenedFile& file, std::string& problem) {
  constexpr int kRows = 10000;
  const int written = file.line.filling.place.rows;
  const auto error = fillRows(file.reader, file.scanned, file.line, written + kRows);
  problem = error.text;
  return error.kind == ViewerErrorKind::none && file.line.filling.place.rows < file.line.rowCount();
}

FileGrowth followFile(OpenedFile& file) {
  std::error_code ignored;
  const auto size = std::filesystem::file_size(file.path, ignored);
  if (ignored || size <= file.scanned.scannedTo || file.reader.error().kind != FileErrorKind::none) return {};
  FileGrowth growth;
  growth.lines = extendScan(file.reader, file.scanned);
  growth.rows = extendLine(file.reader, file.scanned, file.line);
  return growth;
}

std::string fileCaption(const OpenedFile& file) {
  const auto& header = file.scanned.header;
  auto text = fmt::format("{}  {}{}{}", file.path.filename().string(), instrumentOf(header.kind).name,
                          header.iceOption ? " ice" : "", file.scanned.skippedBytes > 0 ? ", damaged" : "");
  const auto& [project, site] = std::tie(file.notes.project, file.notes.site);
  if (!project.empty() || !site.empty())
    text += fmt::format("  {}{}{}", project, project.empty() || site.empty() ? "" : ", ", site);
  return text;
}

RowReadout readoutOf(OpenedFile& file, const Navigation& state) {
  const int row = rowAtBar(state);
  const auto index = static_cast<std::size_t>(row - file.firstPoint);
  if (row < 1 || row > state.totalRows || row < file.firstPoint || index >= file.points.size())
    return {.fields = {}, .notes = {"No station here"}};
  RowReadout readout;
  const auto place = placeOfRow(file.reader, file.scanned, file.line, row);
  readout.fields = readoutFields(file.scanned, place, file.points[index]);
  const auto found = readStationNotes(file.reader, file.scanned, file.line, row);
  for (const auto& note : found.notes) readout.notes.push_back(noteText(note));
  if (found.more) readout.notes.emplace_back("and more");
  return readout;
}

}  // namespace kalmira
