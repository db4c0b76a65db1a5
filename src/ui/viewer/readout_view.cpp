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

constexpr int kMostColumns = 6;
constexpr int kNoteFlags = static_cast<int>(Qt::AlignLeft | Qt::AlignTop) | Qt::TextWordWrap;

// What a station may well have: a comment of full length and an event.
const std::vector<std::string> kUsualNotes{"10:00:00 Comment: MMMMMMMMMMM", "10:00:00 Event: $CONN BREAK"};

// The place of a trace's colour.
int swatchWidth(int lineHeight) { return lineHeight / 3; }

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

int ReadoutView::heightOfNotes(const QFontMetrics& metrics) const {
  const int wide = width() - 2 * kMargin;
  const auto all = [&](const std::vector<std::string>& notes) {
    int high = 0;
    for (const auto& note : notes) high += noteHeight(metrics, note, wide);
    return high;
  };
  return std::max(all(kUsualNotes), all(readout_.notes));
}

// The largest text with which all fields and the notes fit, in as many columns as there is room for. Room for the usual
// notes is kept where there are none, so that the text does not change its size at every other station.
ReadoutView::Grid ReadoutView::gridFor() const {
  Grid grid{.font = font(), .widths = {}};
  const int wide = width() - 2 * kMargin;
  const int count = static_cast<int>(readout_.fields.size());
  for (int pixels = largest_text_; pixels >= kSmallestText; --pixels) {
    grid.font.setPixelSize(pixels);
    grid.font.setBold(true);
    const QFontMetrics metrics(grid.font);
    QFont plain = grid.font;
    plain.setBold(false);
    grid.lineHeight = metrics.lineSpacing();
    grid.notes = heightOfNotes(QFontMetrics(plain));
    for (int columns = kMostColumns; columns >= 1; --columns) {
      grid.widths.assign(static_cast<std::size_t>(columns), 0);
      for (int i = 0; i < count; ++i) {
        const auto& field = readout_.fields[static_cast<std::size_t>(i)];
        auto& width = grid.widths[static_cast<std::size_t>(i % columns)];
        width = std::max(width, metrics.horizontalAdvance(qtText(readoutText(field))) + swatchWidth(grid.lineHeight) +
                                    4 * kSwatchGap);
      }
      if (std::accumulate(grid.widths.begin(), grid.widths.end(), 0) <= wide) break;
    }
    const int columns = static_cast<int>(grid.widths.size());
    const int rows = (count + columns - 1) / columns;
    if (grid.widths.front() <= wide && rows * grid.lineHeight + grid.notes <= height() - 2 * kMargin) break;
  }
  return grid;
}

void ReadoutView::drawField(QPainter& painter, const ReadoutField& field, const QRect& cell) const {
  const int swatch = swatchWidth(cell.height());
  if (field.trace >= 0) {
    const QRect place(cell.left(), cell.top() + cell.height() / 4, swatch, cell.height() / 2);
    painter.fillRect(place, QColor(colours_.at(static_cast<std::size_t>(field.trace))));
  }
  const QRect room = cell.adjusted(swatch + kSwatchGap, 0, 0, 0);
  painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, qtText(readoutText(field)));
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
    drawField(painter, field, cell);
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
