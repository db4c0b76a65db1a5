#include "ui/gps/sentence_list.h"

#include <QFontDatabase>
#include <QFontMetrics>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QScroller>
#include <algorithm>
#include <utility>

#include "gps/monitor.h"

namespace kalmira {
namespace {

constexpr std::size_t kIndent = 2;  // characters
constexpr int kEdge = 2;            // pixels left and right of the text

// Taken of a whole row, for a single character's is rounded. Should the system have no font of fixed width, hardly
// anything is wider than this.
double characterWidth(const QFont& font) {
  constexpr int kMany = 100;
  return std::max(1.0, QFontMetricsF(font).horizontalAdvance(QString(kMany, 'W')) / kMany);
}

}  // namespace

SentenceList::SentenceList(const Theme& theme, QWidget* parent) : QAbstractScrollArea(parent), theme_(&theme) {
  setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  setFocusPolicy(Qt::NoFocus);
  viewport()->setFocusPolicy(Qt::NoFocus);
  setFrameShape(QFrame::Box);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  // Always there, so that its coming does not break every line anew.
  setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  setAccessibleName("GPS sentences");
  QScroller::grabGesture(viewport(), QScroller::TouchGesture);
}

std::vector<std::string_view> SentenceList::rowsOf(const std::string& line) const {
  return monitorRows(line, columns_, kIndent);
}

int SentenceList::rowHeight() const { return std::max(1, fontMetrics().height()); }

int SentenceList::rowsInView() const { return std::max(1, viewport()->height() / rowHeight()); }

void SentenceList::addLine(std::string line, bool bad) {
  lines_.push_back(std::move(line));
  bad_.push_back(bad);
  row_counts_.push_back(static_cast<int>(rowsOf(lines_.back()).size()));
  rows_ += row_counts_.back();
  if (lines_.size() > kMostMonitorLines) {
    rows_ -= row_counts_.front();
    row_counts_.pop_front();
    lines_.pop_front();
    bad_.pop_front();
  }
  showRange();
  verticalScrollBar()->setValue(rows_ - row_counts_.back());
  viewport()->update();
}

void SentenceList::clearLines() {
  lines_.clear();
  bad_.clear();
  breakAnew();
}

void SentenceList::setFontSize(int pixelSize) {
  QFont sized = font();
  sized.setPixelSize(std::max(1, pixelSize));
  setFont(sized);
  breakAnew();
}

void SentenceList::scroll(int rows) { verticalScrollBar()->setValue(verticalScrollBar()->value() + rows); }

void SentenceList::breakAnew() {
  const int room = viewport()->width() - 2 * kEdge;
  columns_ = static_cast<std::size_t>(std::max(1.0, room / characterWidth(font())));
  row_counts_.clear();
  rows_ = 0;
  for (const auto& line : lines_) {
    row_counts_.push_back(static_cast<int>(rowsOf(line).size()));
    rows_ += row_counts_.back();
  }
  showRange();
  verticalScrollBar()->setValue(verticalScrollBar()->maximum());
  viewport()->update();
}

void SentenceList::showRange() {
  verticalScrollBar()->setRange(0, std::max(0, rows_ - rowsInView()));
  verticalScrollBar()->setPageStep(rowsInView());
}

void SentenceList::resizeEvent(QResizeEvent*) { breakAnew(); }

void SentenceList::paintEvent(QPaintEvent* event) {
  QPainter painter(viewport());
  painter.fillRect(event->rect(), QColor(theme_->background));
  const int height = rowHeight();
  const int indent = static_cast<int>(static_cast<double>(kIndent) * characterWidth(font()));
  int row = -verticalScrollBar()->value();
  for (std::size_t i = 0; i < lines_.size() && row * height < viewport()->height(); ++i) {
    if (row + row_counts_[i] > 0) {
      int left = kEdge;
      int baseline = row * height + fontMetrics().ascent();
      if (bad_[i]) {
        painter.fillRect(0, row * height, viewport()->width(), row_counts_[i] * height, QColor(theme_->warning));
      }
      painter.setPen(QColor(bad_[i] ? theme_->warningText : theme_->text));
      for (const auto text : rowsOf(lines_[i])) {
        painter.drawText(left, baseline, QString::fromLatin1(text.data(), static_cast<int>(text.size())));
        left = kEdge + indent;
        baseline += height;
      }
    }
    row += row_counts_[i];
  }
}

}  // namespace kalmira
