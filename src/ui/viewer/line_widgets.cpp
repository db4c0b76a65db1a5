#include "ui/viewer/line_widgets.h"

#include <QAbstractListModel>
#include <QListView>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <utility>

#include "ui/session/curve_window.h"
#include "ui/viewer/view_curve_window.h"

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
    known_ = lines == nullptr ? 0 : static_cast<int>(lines->size());
    endResetModel();
  }
  void takeNewLines() {
    const int now = lines_ == nullptr ? 0 : static_cast<int>(lines_->size());
    if (now <= known_) return;
    beginInsertRows({}, known_, now - 1);
    known_ = now;
    endInsertRows();
  }
  int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : known_; }
  QVariant data(const QModelIndex& index, int role) const override {
    if (role != Qt::DisplayRole || !index.isValid()) return {};
    return qtText(lineNameOf((*lines_)[static_cast<std::size_t>(index.row())]));
  }

 private:
  const std::vector<SurveyLine>* lines_ = nullptr;
  int known_ = 0;
};

constexpr int kMark = 8;    // pixels, of an arrow
constexpr int kFrame = 2;   // pixels, of the shown window's
constexpr int kVeil = 145;  // of 255, over what is not in the window: it stands back

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
  // However it is closed: not every version of Qt asks the box to hide its list.
  list->window()->installEventFilter(this);
  connect(this, &QComboBox::activated, this, std::move(chosen));
}

void LineList::setLines(const std::vector<SurveyLine>* lines) {
  static_cast<LineModel*>(model())->setLines(lines);
  setCurrentIndex(count() == 0 ? -1 : 0);
}

void LineList::takeNewLines() { static_cast<LineModel*>(model())->takeNewLines(); }

bool LineList::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Hide) {
    QMetaObject::invokeMethod(
        this, [this] { closed_(); }, Qt::QueuedConnection);
  }
  return QComboBox::eventFilter(watched, event);
}

// A line is changed by choosing one, not by chance.
void LineList::wheelEvent(QWheelEvent* event) { event->ignore(); }

OverviewStrip::OverviewStrip(const Theme& theme, std::function<void(int)> rowWanted, QWidget* parent)
    : QWidget(parent), theme_(&theme), row_wanted_(std::move(rowWanted)) {
  setObjectName("overview");
  setAttribute(Qt::WA_OpaquePaintEvent);
  setFocusPolicy(Qt::NoFocus);
  setAccessibleName(QStringLiteral("The whole survey line"));
}

OverviewStrip::~OverviewStrip() = default;

void OverviewStrip::showLine(const ProfileSetup& setup, Overview overview, std::span<const StationPoint> points) {
  overview_ = std::move(overview);
  picture_ = std::make_unique<ChartPicture>(chartColoursOf(*theme_), setup.width, setup.height);
  if (points.empty()) {
    DrawOverview(*picture_, setup, overview_, 0, false);
    marks_ = offScaleMarks(setup, overview_, 0, kMark);
  } else {
    const int columns = std::max(1, setup.width - 2 * kFirstColumn);
    const PlotView view{.rows = overview_.rowCount,
                        .columns = columns,
                        .columnsPerRow = static_cast<double>(columns) / overview_.rowCount};
    DrawStationPlot(*picture_, setup, view, points);
    marks_ = offScaleMarks(setup, view, points, kMark);
  }
  update();
}

void OverviewStrip::clearLine() {
  overview_ = {};
  picture_.reset();
  update();
}

void OverviewStrip::setWindow(int firstRow, int lastRow, int barRow) {
  first_row_ = firstRow;
  last_row_ = lastRow;
  bar_row_ = barRow;
  update();
}

void OverviewStrip::mousePressEvent(QMouseEvent* event) { askForRow(event->position().toPoint().x()); }

void OverviewStrip::mouseMoveEvent(QMouseEvent* event) {
  if ((event->buttons() & Qt::LeftButton) != 0) askForRow(event->position().toPoint().x());
}

void OverviewStrip::askForRow(int x) {
  if (overview_.rowCount < 1) return;
  const std::int64_t within = std::clamp(x, 0, std::max(0, width() - 1));
  row_wanted_(overviewRow(overview_, static_cast<int>(within * overview_.columns / std::max(1, width()))));
}

// The left edge of the row's column.
int OverviewStrip::leftOf(int row) const {
  const std::int64_t column = overviewColumn(overview_, std::clamp(row, 1, overview_.rowCount));
  return static_cast<int>(column * width() / std::max(1, overview_.columns));
}

// Where the row's point is drawn.
int OverviewStrip::middleOf(int row) const {
  const int right = row >= overview_.rowCount ? width() : leftOf(row + 1);
  return (leftOf(row) + right) / 2;
}

void OverviewStrip::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), QColor(theme_->chart));
  if (picture_ && overview_.rowCount > 0) {
    painter.drawImage(rect(), imageOf(*picture_));
    paintOffScale(painter, marks_, chartColoursOf(*theme_), rect(), kMark);
    const int left = leftOf(std::max(1, first_row_));
    const int end = last_row_ >= overview_.rowCount ? width() - 1 : std::max(left, leftOf(last_row_ + 1) - 1);
    QColor veil = QColor(theme_->chart);
    veil.setAlpha(kVeil);
    painter.fillRect(QRect(0, 0, left, height()), veil);
    painter.fillRect(QRect(end + 1, 0, width() - end - 1, height()), veil);
    if (bar_row_ >= 1 && bar_row_ <= overview_.rowCount)
      painter.fillRect(QRect(middleOf(bar_row_), 0, 1, height()), QColor(theme_->focus));
    painter.setPen(QPen(QColor(theme_->focus), kFrame, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter.drawRect(QRect(QPoint(left, 1), QPoint(std::max(left + kFrame, end - 1), height() - kFrame)));
  }
  painter.setPen(QColor(theme_->faintText));
  painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

}  // namespace kalmira
