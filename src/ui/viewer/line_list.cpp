#include "ui/viewer/line_list.h"

#include <QAbstractListModel>
#include <QListView>
#include <QWheelEvent>
#include <utility>

#include "ui/screen/qt_text.h"

namespace kalmira {
namespace {

constexpr int kLettersWide = 5;

// The lines as they stand in the file's table, without a copy.
class LineModel final : public QAbstractListModel {
 public:
  using QAbstractListModel::QAbstractListModel;
  void setLines(const std::vector<SurveyLine>* lines) {
    beginResetModel();
    lines_ = lines;
    endResetModel();
  }
  int rowCount(const QModelIndex& parent = {}) const override {
    return parent.isValid() || lines_ == nullptr ? 0 : static_cast<int>(lines_->size());
  }
  QVariant data(const QModelIndex& index, int role) const override {
    if (role != Qt::DisplayRole || !index.isValid()) return {};
    return qtText(lineNameOf((*lines_)[static_cast<std::size_t>(index.row())]));
  }

 private:
  const std::vector<SurveyLine>* lines_ = nullptr;
};

}  // namespace

LineList::LineList(std::function<void(int)> chosen, std::function<void()> closed, QWidget* parent)
    : QComboBox(parent), closed_(std::move(closed)) {
  setObjectName("lines");
  setAccessibleName(QStringLiteral("Survey line"));
  setFocusPolicy(Qt::ClickFocus);
  // Neither the box nor its list asks every entry for its size.
  setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  setMinimumContentsLength(kLettersWide);
  auto* list = new QListView(this);
  list->setUniformItemSizes(true);
  setView(list);
  setModel(new LineModel(this));
  connect(this, &QComboBox::activated, this, std::move(chosen));
}

void LineList::setLines(const std::vector<SurveyLine>* lines) {
  static_cast<LineModel*>(model())->setLines(lines);
  setCurrentIndex(count() == 0 ? -1 : 0);
}

void LineList::hidePopup() {
  QComboBox::hidePopup();
  QMetaObject::invokeMethod(
      this, [this] { closed_(); }, Qt::QueuedConnection);
}

// A line is changed by choosing one, not by chance.
void LineList::wheelEvent(QWheelEvent* event) { event->ignore(); }

}  // namespace kalmira
