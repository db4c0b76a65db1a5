#include "ui/viewer/readout_view.h"

#include <QPainter>
#include <algorithm>
#include <numeric>
#include <utility>

#include "viewer/plot_points.h"

namespace kalmira {
namespace {

constexpr int kSmallestText = 9;  // pixels
constexpr int kMargin = 3;
constexpr int kSwatchGap = 3;

constexpr std::size_t kMostColumns = 6;
constexpr int kNoteFlags = static_cast<int>(Qt::AlignLeft | Qt::AlignTop) | Qt::TextWordWrap;

// What a station may well have: a comment of full length and an event.
const std::vector<std::string> kUsualNotes{"10:00:00 Comment: MMMMMMMMMMM", "10:00:00 Event: $CONN BREAK"};

// The place of a trace's colour.
int swatchWidth(int lineHeight) { return lineHeight / 3; }

std::string shownText(const ReadoutField& field, bool units) {
  return units ? readoutText(field) : field.label + ": " + field.value;
}

int noteHeight(const QFontMetrics& metrics, const std::string& note, int width) {
  return metrics.boundingRect(QRect(0, 0, width, 1), kNoteFlags, qtText(note)).height();
}

}  // namespace

ReadoutView::ReadoutView(const Theme& theme, QWidget* parent) : QWidget(parent), theme_(&theme) {
  setAttribute(Qt::WA_OpaquePaintEvent);
  setAccessibleName(QStringLiteral("Values at the bar"));
}

void ReadoutView::showReadout(RowReadout readout, const ProfileSetup& setup) {
  readout_ = std::move(readout);
  for (std::size_t trace = 0; trace < kProfilePoints; ++trace) {
    colours_[trace] = traceColourOn(*theme_, setup.traceColour[penOf(trace)]);
  }
  setAccessibleDescription(qtText(text()));
  update();
}

void ReadoutView::setLargestText(int pixels) {
  largest_text_ = std::max(pixels, kSmallestText);
  update();
}

std::string ReadoutView::text() const {
  std::string all;
  for (const auto& field : readout_.fields) all += readoutText(field) + "\n";
  for (const auto& note : readout_.notes) all += note + "\n";
  return all;
}

// Room for the usual notes is kept where there are none, so that the text does not change its size at every other
// station.
int ReadoutView::heightOfNotes(const QFontMetrics& metrics) const {
  const int wide = width() - 2 * kMargin;
  const auto all = [&](const std::vector<std::string>& notes) {
    int high = 0;
    for (const auto& note : notes) high += noteHeight(metrics, note, wide);
    return high;
  };
  return std::max(all(kUsualNotes), all(readout_.notes));
}

// In as many columns as there is room for.
ReadoutView::Grid ReadoutView::gridOf(int pixels, bool units) const {
  Grid grid{.font = font(), .widths = {}, .units = units};
  grid.font.setPixelSize(pixels);
  QFont plain = grid.font;
  grid.font.setBold(true);
  const QFontMetrics metrics(grid.font);
  const int wide = width() - 2 * kMargin;
  grid.lineHeight = metrics.lineSpacing();
  const int beside = swatchWidth(grid.lineHeight) + 4 * kSwatchGap;
  for (std::size_t columns = kMostColumns; columns >= 1; --columns) {
    grid.widths.assign(columns, 0);
    std::size_t column = 0;
    for (const auto& field : readout_.fields) {
      auto& width = grid.widths[column++ % columns];
      width = std::max(width, metrics.horizontalAdvance(qtText(shownText(field, units))) + beside);
    }
    if (std::accumulate(grid.widths.begin(), grid.widths.end(), 0) <= wide) break;
  }
  const auto columns = grid.widths.size();
  const auto rows = static_cast<int>((readout_.fields.size() + columns - 1) / columns);
  const int high = rows * grid.lineHeight + heightOfNotes(QFontMetrics(plain));
  grid.fits = grid.widths.front() <= wide && high <= height() - 2 * kMargin;
  return grid;
}

// The largest text with which all fields and the notes fit; where none does, without the units, which the letters
// before the values tell, too.
ReadoutView::Grid ReadoutView::gridFor() const {
  for (const bool units : {true, false}) {
    for (int pixels = largest_text_; pixels >= kSmallestText; --pixels) {
      if (auto grid = gridOf(pixels, units); grid.fits) return grid;
    }
  }
  return gridOf(kSmallestText, false);
}

void ReadoutView::drawField(QPainter& painter, const ReadoutField& field, const QRect& cell, bool units) const {
  const int swatch = swatchWidth(cell.height());
  if (field.trace >= 0) {
    const QRect place(cell.left(), cell.top() + cell.height() / 4, swatch, cell.height() / 2);
    painter.fillRect(place, QColor(colours_.at(static_cast<std::size_t>(field.trace))));
  }
  const QRect room = cell.adjusted(swatch + kSwatchGap, 0, 0, 0);
  painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, qtText(shownText(field, units)));
}

void ReadoutView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), QColor(theme_->background));
  const auto grid = gridFor();
  painter.setFont(grid.font);
  painter.setPen(QColor(theme_->text));
  const int spare = width() - 2 * kMargin - std::accumulate(grid.widths.begin(), grid.widths.end(), 0);
  QRect cell(kMargin, kMargin, 0, grid.lineHeight);
  std::size_t column = 0;
  for (const auto& field : readout_.fields) {
    if (column == grid.widths.size()) {
      column = 0;
      cell.moveTo(kMargin, cell.top() + grid.lineHeight);
    }
    cell.setWidth(grid.widths[column++]);
    drawField(painter, field, cell, grid.units);
    cell.moveLeft(cell.left() + cell.width() + spare / static_cast<int>(grid.widths.size()));
  }
  QFont plain = grid.font;
  plain.setBold(false);
  painter.setFont(plain);
  int top = readout_.fields.empty() ? kMargin : cell.top() + grid.lineHeight;
  for (const auto& note : readout_.notes) {
    QRect drawn;
    const QRect room(kMargin, top, width() - 2 * kMargin, height() - top);
    painter.drawText(room, kNoteFlags, qtText(note), &drawn);
    top += drawn.height();
  }
}

}  // namespace kalmira
