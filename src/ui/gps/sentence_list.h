#pragma once

#include <QAbstractScrollArea>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "ui/screen/theme.h"

namespace kalmira {

// The receiver's lines, the newest last, in a font of fixed width: a line too long for one row goes on, indented, in
// the next. Old lines go when there are too many. Scrolls by finger, wheel and bar; takes no keyboard focus.
class SentenceList final : public QAbstractScrollArea {
 public:
  SentenceList(const Theme& theme, QWidget* parent);

  // Scrolls on until the new line is the first in view, or the last one stands at the lower edge. A `bad` line is
  // marked.
  void addLine(std::string line, bool bad = false);
  void clearLines();
  const std::deque<std::string>& lines() const { return lines_; }
  void setFontSize(int pixelSize);
  // By rows, down or (negative) up.
  void scroll(int rows);
  int rowsInView() const;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  std::vector<std::string_view> rowsOf(const std::string& line) const;
  int rowHeight() const;
  void breakAnew();
  void showRange();

  const Theme* theme_;
  std::deque<std::string> lines_;
  std::deque<int> row_counts_;  // of each line
  std::deque<bool> bad_;        // likewise
  int rows_ = 0;                // in all
  std::size_t columns_ = 1;
};

}  // namespace kalmira
