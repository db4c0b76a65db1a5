#include "ui/viewer/viewer_saving.h"

#include <fmt/format.h>

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <QSvgGenerator>
#include <algorithm>
#include <bitset>
#include <cctype>
#include <functional>
#include <vector>

#include "export/export_run.h"
#include "instruments/catalogue.h"
#include "platform/files.h"
#include "settings/display_options.h"
#include "ui/screen/file_dialog.h"
#include "ui/screen/message_dialog.h"
#include "ui/screen/theme.h"
#include "ui/viewer/readout_view.h"
#include "ui/viewer/view_curve_window.h"
#include "ui/viewer/view_files_window.h"
#include "viewer/plot_points.h"

namespace kalmira {
namespace {

std::string upperCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return static_cast<char>(std::toupper(static_cast<unsigned char>(c))); });
  return text;
}

bool hasDataExtension(const std::filesystem::path& path) {
  const auto extension = upperCase(path.extension().string());
  for (int kind = 0; kind < kKindCount; ++kind) {
    if (extension == instrumentOf(static_cast<Kind>(kind)).extension) return true;
  }
  return false;
}

bool fitsFileName(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '-' || c == '.' || c == '+';
}

// Asks until a name was given that may be written, or none.
std::optional<std::filesystem::path> askForName(QWidget* parent, SaveQuestion question,
                                                const std::filesystem::path& openFile) {
  while (const auto path = runSaveDialog(parent, question)) {
    const auto problem = saveProblem(*path, openFile);
    std::error_code ignored;
    if (!problem.empty()) {
      tellMessage(parent, {.title = "WARNING", .text = problem, .icon = Icon::exclamation});
      continue;
    }
    const auto text = fmt::format("{} already exists. Write over it?", path->filename().string());
    if (!std::filesystem::exists(*path, ignored) ||
        askMessage(parent, {.title = "WARNING", .text = text, .icon = Icon::question}, EnterMeans::no)) {
      return path;
    }
    question.proposal = *path;
  }
  return std::nullopt;
}

constexpr QSize kSize(1600, 900);
constexpr QRect kPlot(110, 90, 1380, 680);
constexpr int kTitlePixels = 30;
constexpr int kTextPixels = 20;
constexpr int kMostStationLabels = 12;
constexpr int kTick = 6;
constexpr int kMark = 18;  // of an arrow

// The chart drawn as strokes that stay sharp at any size, each column `stretch_` wide.
class PaintedChart final : public ChartCanvas {
 public:
  PaintedChart(QPainter& painter, const QRect& place, int columns)
      : painter_(painter), place_(place), stretch_(static_cast<double>(place.width()) / columns) {}

  void clear() override { painter_.fillRect(place_, Qt::white); }
  void scrollLeft(int) override {}
  void eraseColumns(int, int) override {}
  void gridPiece(int left, int right, int y, int pixels) override {
    painter_.setPen(QPen(QColor(dayTheme().chartGrid), pixels));
    painter_.drawLine(at(left, y) - QPointF(stretch_ / 2, 0), at(right, y) + QPointF(stretch_ / 2, 0));
  }
  void line(int x1, int y1, int x2, int y2, int colour, int width) override {
    take(colour, width);
    painter_.drawLine(at(x1, y1), at(x2, y2));
  }
  void point(int x, int y, int colour, int width) override {
    take(colour, width);
    painter_.drawPoint(at(x, y));
  }

 private:
  // A y far outside is brought nearer: painters have their limits.
  QPointF at(int x, int y) const {
    const int within = std::clamp(y, -10 * place_.height(), 10 * place_.height());
    return {place_.left() + (x + 0.5) * stretch_, static_cast<double>(place_.top() + within)};
  }
  void take(int colour, int width) {
    painter_.setPen(
        QPen(QColor(traceColourOn(dayTheme(), colour)), width + 1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  }

  QPainter& painter_;
  QRect place_;
  double stretch_;
};

void takeFont(QPainter& painter, int pixels, bool bold) {
  QFont font = painter.font();
  font.setPixelSize(pixels);
  font.setBold(bold);
  painter.setFont(font);
}

void drawText(QPainter& painter, const QRect& place, Qt::Alignment flags, const std::string& text) {
  painter.setPen(Qt::black);
  painter.drawText(place, static_cast<int>(flags) | Qt::TextSingleLine, qtText(text));
}

StationPoint pointAt(const LinePicture& picture, int row) {
  std::vector<StationPoint> points;
  LoadLineRows(picture.file.reader, picture.file.scanned, picture.file.line, 0, 0, row, points);
  return points.empty() ? StationPoint{} : points.front();
}

// `columnOf` a row, of `columns`: of a line longer than the plot has pixels, several rows share one.
void drawStations(QPainter& painter, const LinePicture& picture, int columns,
                  const std::function<int(int row)>& columnOf) {
  const int step = std::max(1, picture.rows() / kMostStationLabels);
  for (int row = picture.firstRow; row <= picture.lastRow; row += step) {
    const auto point = pointAt(picture, row);
    if (!point.valid) continue;
    const auto x = static_cast<int>(kPlot.left() + (columnOf(row) + 0.5) * kPlot.width() / columns);
    painter.setPen(Qt::black);
    painter.drawLine(x, kPlot.bottom(), x, kPlot.bottom() + kTick);
    drawText(painter, {x - 60, kPlot.bottom() + kTick, 120, kTextPixels + 6}, Qt::AlignCenter,
             fmt::format("{:.2f}", point.station));
  }
}

ProfileSetup setupOf(const LinePicture& picture, int columns) {
  return plotSetup(picture.file.scanned, picture.settings, columns, kPlot.height());
}

// `marks` by columns.
void drawMarks(QPainter& painter, std::vector<OffScaleMark> marks, int columns) {
  for (auto& mark : marks) mark.column = static_cast<int>((mark.column + 0.5) * kPlot.width() / columns);
  paintOffScale(painter, marks, chartColoursOf(dayTheme()), kPlot, kMark);
}

void drawTraces(QPainter& painter, const LinePicture& picture) {
  painter.save();
  painter.setClipRect(kPlot);
  auto& file = picture.file;
  const int rows = picture.rows();
  if (rows <= kPlot.width() || rows < file.line.rowCount()) {
    std::vector<StationPoint> points;
    if (rows > 0) LoadLineRows(file.reader, file.scanned, file.line, 0, rows - 1, picture.firstRow, points);
    const int columns = rows + 2 * kFirstColumn;
    const PlotView view{.firstRow = picture.firstRow, .rows = rows, .columns = rows};
    const auto setup = setupOf(picture, columns);
    PaintedChart chart(painter, kPlot, columns);
    DrawStationPlot(chart, setup, view, points);
    drawMarks(painter, offScaleMarks(setup, view, points, kMark * columns / kPlot.width()), columns);
    painter.restore();
    return drawStations(painter, picture, columns, [&](int row) { return row - picture.firstRow + kFirstColumn; });
  }
  const auto overview = lineOverview(file.line.summary, kPlot.width());
  PaintedChart chart(painter, kPlot, overview.columns);
  const auto setup = setupOf(picture, overview.columns);
  DrawOverview(chart, setup, overview, 0, true);
  drawMarks(painter, offScaleMarks(setup, overview, 0, kMark), overview.columns);
  painter.restore();
  drawStations(painter, picture, overview.columns, [&](int row) { return overviewColumn(overview, row); });
}

// One scale with its limits at the side and its name along it.
void drawScale(QPainter& painter, const ProfileAxis& axis, bool atLeft, const std::string& name, int decimals) {
  const float bottom = axis.top - static_cast<float>(kPlot.height()) / axis.scale;
  const int side = atLeft ? kPlot.left() - 100 : kPlot.right() + 10;
  const auto flags = Qt::AlignVCenter | (atLeft ? Qt::AlignRight : Qt::AlignLeft);
  const QRect place(side, kPlot.top() - kTextPixels / 2, 90, kTextPixels + 6);
  drawText(painter, place, flags, fmt::format("{:.{}f}", axis.top, decimals));
  drawText(painter, place.translated(0, kPlot.height() - 6), flags, fmt::format("{:.{}f}", bottom, decimals));
  painter.save();
  painter.translate(atLeft ? kPlot.left() - 60 : kPlot.right() + 60, kPlot.center().y());
  painter.rotate(-90);
  drawText(painter, {-300, -15, 600, 30}, Qt::AlignCenter, name);
  painter.restore();
}

void drawScales(QPainter& painter, const LinePicture& picture) {
  const auto kind = picture.file.scanned.header.kind;
  const auto setup = setupOf(picture, kPlot.width());
  if (picture.file.scanned.wantsThickness) {
    return drawScale(painter, setup.axes.ice, true, "Ice thickness, m", 1);
  }
  const auto fields = scaleFieldsOf(kind, false);
  const bool thickness = fields.firstIsThickness;
  drawScale(painter, setup.axes.conductivity, true, thickness ? "Thickness, m" : "Conductivity, mS/m",
            thickness ? 1 : 0);
  if (fields.inphase) drawScale(painter, setup.axes.inphase, false, thickness ? "Inphase" : "Inphase, ppt", 0);
}

// The names of the traces that the line has.
std::vector<ReadoutField> tracesOf(const LinePicture& picture) {
  const auto spans = picture.file.line.summary.spans();
  StationPoint all{.valid = true, .channels = {}};
  for (std::size_t slot = 0; slot < kSlots; ++slot) all.channels.present[slot] = spans[slot].any() ? 1 : 0;
  all.hasThickness = picture.file.scanned.wantsThickness;
  all.hasExtras = spans[kSlots].any();
  auto traces = readoutFields(picture.file.scanned, {}, all);
  std::erase_if(traces, [](const ReadoutField& field) { return field.trace < 0; });
  return traces;
}

void drawLegend(QPainter& painter, const LinePicture& picture) {
  const auto setup = setupOf(picture, kPlot.width());
  int left = kPlot.left();
  const int top = kPlot.bottom() + 2 * kTextPixels + 24;
  for (const auto& field : tracesOf(picture)) {
    const auto trace = static_cast<std::size_t>(field.trace);
    if (trace < kTraces ? setup.traceShown[trace] == 0 : !setup.secondCoil) continue;
    painter.setPen(QPen(QColor(traceColourOn(dayTheme(), setup.traceColour[penOf(trace)])), 4));
    painter.drawLine(left, top, left + 30, top);
    const auto name = field.unit.empty() ? field.label : fmt::format("{}, {}", field.label, field.unit);
    const int wide = painter.fontMetrics().horizontalAdvance(qtText(name));
    drawText(painter, {left + 38, top - kTextPixels, wide + 4, 2 * kTextPixels}, Qt::AlignVCenter, name);
    left += wide + 70;
  }
  drawText(painter, {kPlot.right() - 200, top - kTextPixels, 200, 2 * kTextPixels}, Qt::AlignVCenter | Qt::AlignRight,
           "Station");
}

void drawAll(QPainter& painter, const LinePicture& picture) {
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillRect(QRect(QPoint(0, 0), kSize), Qt::white);
  takeFont(painter, kTitlePixels, true);
  drawText(painter, {kPlot.left(), 20, kPlot.width(), kTitlePixels + 16}, Qt::AlignLeft | Qt::AlignVCenter,
           picture.title);
  takeFont(painter, kTextPixels, false);
  drawTraces(painter, picture);
  painter.setPen(QPen(Qt::black, 2));
  painter.setBrush(Qt::NoBrush);
  painter.drawRect(kPlot);
  drawScales(painter, picture);
  drawLegend(painter, picture);
}

}  // namespace

std::string saveProblem(const std::filesystem::path& target, const std::filesystem::path& openFile) {
  std::error_code ignored;
  if (hasDataExtension(target)) return "This is the name of a data file. Please enter another name";
  if (std::filesystem::equivalent(target, openFile, ignored))
    return "This is the open data file. Please enter another name";
  return {};
}

std::filesystem::path proposedName(const std::filesystem::path& dataFile, std::string_view lineName,
                                   std::string_view extension) {
  auto name = dataFile.stem().string();
  if (!lineName.empty()) name += "-";
  for (const char c : lineName) name += fitsFileName(c) ? c : '_';
  return dataFile.parent_path() / (name + "." + std::string(extension));
}

void ViewFilesWnd::saveAs(const SaveQuestion& question, const WriteFile& write) {
  const auto path = askForName(this, question, file_->path);
  if (!path) return;
  const auto written = write(*path);
  if (!written.problem.empty()) return tell(written.problem);
  auto text = written.what + " is in\r\n" + path->string();
  if (!written.remarks.empty()) text += "\r\n\r\n" + written.remarks;
  tellMessage(this, {.title = "Saved", .text = text, .icon = Icon::information});
}

void ViewFilesWnd::savePicture() {
  if (file_ == nullptr) return;
  const auto& lines = file_->scanned.lines;
  const auto lineName = lines.empty() ? "" : lineNameOf(lines[navigation_.selectedLine]);
  const SaveQuestion question{.title = "Save Picture",
                              .filter = "Pictures (*.png *.svg)",
                              .extension = "png",
                              .proposal = proposedName(file_->path, lineName, "png")};
  saveAs(question, [&](const std::filesystem::path& path) -> Written {
    const WaitingCursor cursor;
    const LinePicture picture{.file = *file_,
                              .settings = shown_,
                              .title = fmt::format("{}   Line {}", fileCaption(*file_), lineName),
                              .firstRow = std::max(view_.firstRow, 1),
                              .lastRow = std::min(view_.lastRow(), file_->line.rowCount())};
    const bool svg = path.extension() == ".svg" || path.extension() == ".SVG";
    const auto content = svg ? linePictureSvg(picture) : linePicturePng(picture);
    return {.problem = replaceFile(path, {content.constData(), static_cast<std::size_t>(content.size())}),
            .what = fmt::format("The picture of line {}", lineName)};
  });
}

void ViewFilesWnd::exportFile() {
  if (file_ == nullptr) return;
  const auto& lines = file_->scanned.lines;
  const auto lineName = lines.empty() ? "" : lineNameOf(lines[navigation_.selectedLine]);
  const auto choice = runExportDialog(this, lines.empty() ? std::nullopt : std::optional(lineName), exported_);
  if (!choice) return;
  exported_ = *choice;
  const auto& format = formatRow(choice->format);
  const bool line = !lines.empty() && !choice->wholeFile;
  const SaveQuestion question{.title = "Export",
                              .filter = fmt::format("{} (*.{})", format.name, format.ending),
                              .extension = std::string(format.ending),
                              .proposal = proposedName(file_->path, line ? lineName : "", format.ending)};
  saveAs(question, [&](const std::filesystem::path& path) -> Written {
    // A name with the ending of another format asks for that one.
    const auto* const named = formatOfFile(path);
    const auto& made = named == nullptr ? format : *named;
    ExportRequest request{
        .files = {file_->path}, .out = path, .format = made.format, .teskTimes10 = host_.extract.teskRangeTimes10};
    if (line) request.stretch = {.begin = file_->line.begin, .end = file_->line.end()};
    const auto outcome = runWatchedExport(this, request);
    if (outcome.status != kExportDone) return {.problem = outcome.said, .what = {}};
    return {.problem = {},
            .what = fmt::format("The {} of {} readings", made.name, outcome.readings),
            .remarks = outcome.said};
  });
}

QByteArray linePicturePng(const LinePicture& picture) {
  QImage image(kSize, QImage::Format_RGB32);
  QPainter painter(&image);
  drawAll(painter, picture);
  painter.end();
  QByteArray content;
  QBuffer buffer(&content);
  buffer.open(QIODevice::WriteOnly);
  image.save(&buffer, "PNG");
  return content;
}

QByteArray linePictureSvg(const LinePicture& picture) {
  QByteArray content;
  QBuffer buffer(&content);
  QSvgGenerator generator;
  generator.setOutputDevice(&buffer);
  generator.setSize(kSize);
  generator.setViewBox(QRect(QPoint(0, 0), kSize));
  generator.setTitle(qtText(picture.title));
  QPainter painter(&generator);
  drawAll(painter, picture);
  painter.end();
  return content;
}

}  // namespace kalmira
