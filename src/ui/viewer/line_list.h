#pragma once

#include <QComboBox>
#include <functional>
#include <vector>

#include "viewer/line_table.h"

namespace kalmira {

// The drop-down list of a file's survey lines; it opens at once when a million of them stand in it.
class LineList final : public QComboBox {
 public:
  // `chosen`: an entry was confirmed, counted from 0; `closed`: the list is no longer open, chosen or not.
  LineList(std::function<void(int index)> chosen, std::function<void()> closed, QWidget* parent);

  // Selects the first one. The lines must outlive the list or be taken away: nullptr.
  void setLines(const std::vector<SurveyLine>* lines);
  void hidePopup() override;

 protected:
  void wheelEvent(QWheelEvent* event) override;

 private:
  std::function<void()> closed_;
};

}  // namespace kalmira
