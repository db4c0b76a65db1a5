#include "ui/viewer/readout_view.h"

#include <QPainter>
#include <algorithm>
#include <utility>

#include "viewer/plot_points.h"

namespace kalmira {
namespace {

constexpr int kSmallestText = 9;  // pixels
constexpr int kMargin = 3;
constexpr int kSwatchGap = 3;

// Between two columns, and the place of a trace's colour.
int swatchWidth(int lineHeight) { return lineHeight / 3; }

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

// The largest text with which all fields and the notes fit. A line for notes is kept even where there are none, so that
// the text does not change its size at every other station.
ReadoutView::Grid ReadoutView::gridFor(int noteLines) const {
  Grid grid{.font = font()};
  const int wide = width() - 2 * kMargin;
  for (int pixels = largest_text_; pixels >= kSmallestText; --pixels) {
    grid.font.setPixelSize(pixels);
    grid.font.setBold(true);
    const QFontMetrics metrics(grid.font);
    grid.lineHeight = metrics.lineSpacing();
    int widest = 1;
    for (const auto& field : readout_.fields) {
      widest = std::max(widest, metrics.horizontalAdvance(qtText(readoutText(field))));
    }
    grid.columnWidth = widest + swatchWidth(grid.lineHeight) + 4 * kSwatchGap;
    grid.columns = std::max(1, wide / grid.columnWidth);
    const int fields = static_cast<int>(readout_.fields.size());
    const int rows = (fields + grid.columns - 1) / grid.columns + std::max(1, noteLines);
    if (grid.columnWidth <= wide && rows * grid.lineHeight <= height() - 2 * kMargin) break;
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
  if (readout_.fields.empty()) return;
  const auto grid = gridFor(static_cast<int>(readout_.notes.size()));
  painter.setFont(grid.font);
  painter.setPen(QColor(theme_->text));
  int index = 0;
  const int columnStep = std::max(grid.columnWidth, (width() - 2 * kMargin) / grid.columns);
  for (const auto& field : readout_.fields) {
    drawField(painter, field,
              {kMargin + index % grid.columns * columnStep, kMargin + index / grid.columns * grid.lineHeight,
               grid.columnWidth, grid.lineHeight});
    ++index;
  }
  int top = kMargin + (index + grid.columns - 1) / grid.columns * grid.lineHeight;
  QFont plain = grid.font;
  plain.setBold(false);
  painter.setFont(plain);
  const QFontMetrics metrics(plain);
  for (const auto& note : readout_.notes) {
    const QRect line(kMargin, top, width() - 2 * kMargin, grid.lineHeight);
    const QString shown = metrics.elidedText(qtText(note), Qt::ElideRight, line.width());
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, shown);
    top += grid.lineHeight;
  }
}

}  // namespace kalmira
