#include "ui/setup/setup_dialogs.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QIcon>
#include <QLabel>
#include <QLayout>
#include <QPainter>
#include <QPixmap>
#include <QPolygon>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollArea>
#include <QScrollBar>
#include <QScroller>
#include <QSignalBlocker>
#include <QWidget>
#include <array>
#include <string>
#include <vector>

#include "instruments/catalogue.h"
#include "settings/display_options.h"
#include "ui/screen/template_dialog.h"
#include "ui/screen/theme.h"

namespace kalmira {
namespace {

constexpr int kLetters = 6;  // wished width, in widths of an "x"

// Heights of a made-up profile, in hundredths from the upper edge.
constexpr std::array kHeights{62, 60, 66, 48, 30, 24, 28, 44, 68, 74, 70, 58, 52, 55};

QPolygon profileIn(const QRect& room) {
  QPolygon profile;
  const int last = static_cast<int>(kHeights.size()) - 1;
  for (int i = 0; i <= last; ++i) {
    profile << QPoint(room.left() + room.width() * i / last,
                      room.top() + room.height() * kHeights[static_cast<std::size_t>(i)] / 100);
  }
  return profile;
}

// A piece of a profile, drawn as the chart draws it: what a colour and a thickness will look like. `theme` must live as
// long as the sample.
class LineSample final : public QWidget {
 public:
  LineSample(const Theme& theme, QWidget* parent) : QWidget(parent), theme_(theme) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  }

  // A trace that is not shown leaves only the grid line. `colour` is 0x00BBGGRR, `width` in pixels.
  void setLine(bool shown, int colour, int width) {
    shown_ = shown;
    colour_ = colour;
    width_ = width;
    update();
  }
  QSize sizeHint() const override { return {kLetters * fontMetrics().horizontalAdvance('x'), fontMetrics().height()}; }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    QPainter painter(this);
    painter.fillRect(rect(), QColor(theme_.chart));
    painter.fillRect(0, height() / 2, width(), 1, QColor(theme_.chartGrid));
    if (!shown_) return;
    painter.setPen(QPen(QColor(traceColourOn(theme_, colour_)), width_));
    painter.drawPolyline(profileIn(rect()));
  }

 private:
  const Theme& theme_;
  bool shown_ = true;
  int colour_ = 0;
  int width_ = 1;
};

// A piece of a colour as it will be drawn. The frame tells a pale one from its ground.
QIcon swatch(const Theme& theme, int colour, int side) {
  QPixmap pixmap(side, side);
  pixmap.fill(QColor(traceColourOn(theme, colour)));
  QPainter painter(&pixmap);
  painter.setPen(QColor(theme.text));
  painter.drawRect(0, 0, side - 1, side - 1);
  return pixmap;
}

// Colours are told by name and number, too.
void showColour(QPushButton& button, const Theme& theme, int colour, const QString& purpose) {
  const auto words = qtText(colourName(colour)) + ' ' + qtText(colourNumber(colour));
  button.setIcon(swatch(theme, colour, button.fontMetrics().height()));
  button.setText(words);
  button.setAccessibleName(purpose + ' ' + words);
}

int settingsColourOf(const QColor& colour) { return settingsColour(colour.red(), colour.green(), colour.blue()); }

QColor colourOf(int settingsColourValue) { return {qtText(colourNumber(settingsColourValue))}; }

// Qt's colour dialog as a part of one of ours. It is wider than a small window, and then is moved to and fro in a frame
// of its own.
QColorDialog& addPicker(QDialog& dialog, int colour) {
  auto* frame = new QScrollArea(&dialog);
  auto* picker = new QColorDialog(colourOf(colour), frame);
  picker->setWindowFlags(Qt::Widget);
  picker->setOptions(QColorDialog::DontUseNativeDialog | QColorDialog::NoButtons);
  fitForFingers(*picker);
  frame->setFrameShape(QFrame::NoFrame);
  frame->setFocusPolicy(Qt::NoFocus);
  frame->setWidget(picker);
  frame->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  frame->setMinimumHeight(picker->sizeHint().height() + frame->horizontalScrollBar()->sizeHint().height());
  QScroller::grabGesture(frame->viewport(), QScroller::TouchGesture);
  picker->show();
  auto& place = part<QWidget>(dialog, "picker");
  place.layout()->addWidget(frame);
  place.setMinimumHeight(frame->minimumHeight());
  // Escape in one of its fields closes the whole.
  QObject::connect(picker, &QDialog::rejected, &dialog, &QDialog::reject);
  return *picker;
}

// Offers the colours that a new logger has, too: they stay apart in sunlight and for every eye, and are buttons for
// fingers that take the colour at one touch.
std::optional<int> runTraceColourDialog(QWidget* parent, const Theme& theme, int colour) {
  const auto dialog = makeDialog("GetTraceColour", parent);
  if (dialog == nullptr) return std::nullopt;
  auto& picker = addPicker(*dialog, colour);
  const Settings fresh;
  for (std::size_t i = 0; i < kTraces; ++i) {
    const int offered = fresh.traceColour[i];
    auto& button = part<QPushButton>(*dialog, ("colour" + std::to_string(i)).c_str());
    showColour(button, theme, offered, "Take");
    button.setText(qtText(colourName(offered)));
    QObject::connect(&button, &QPushButton::clicked, &picker, [&picker, &dialog, offered] {
      picker.setCurrentColor(colourOf(offered));
      dialog->accept();
    });
  }
  if (!runDialog(*dialog)) return std::nullopt;
  return settingsColourOf(picker.currentColor());
}

// The dialog while it is open.
class DisplayOptionsForm {
 public:
  DisplayOptionsForm(QDialog& dialog, const SetupFrame& frame, const Theme& theme, const Settings& settings);

  const Settings& changed() const { return settings_; }
  void takeGrid();

 private:
  // The parts of one trace.
  struct Row {
    Channel trace;
    QCheckBox* shown;
    QPushButton* colour;
    QComboBox* width;
    LineSample* sample;
  };

  template <class Widget>
  Widget& piece(const char* name, std::size_t slot) const {
    return part<Widget>(dialog_, (name + std::to_string(slot)).c_str());
  }
  Row makeRow(const Channel& trace);
  void connectRow(const Row& row);
  void orderTabs() const;
  void showRow(const Row& row) const;
  void chooseColour(const Row& row);
  void fillGrid();
  void showAxis();

  QDialog& dialog_;
  const Theme& theme_;
  Settings settings_;
  std::span<const Channel> traces_;
  std::span<const AxisChoice> axes_;
  int axis_;  // position in axes_, while there are grid lines
  std::vector<Row> rows_;
};

DisplayOptionsForm::DisplayOptionsForm(QDialog& dialog, const SetupFrame& frame, const Theme& theme,
                                       const Settings& settings)
    : dialog_(dialog),
      theme_(theme),
      settings_(settings),
      traces_(channelsOf(instrumentOf(frame.kind), frame.iceOption)),
      axes_(axisChoices(frame.kind, frame.iceOption && settings.iceDisplay == 1)),
      axis_(static_cast<int>(axisPosition(axes_, settings))) {
  for (const auto& trace : traces_) rows_.push_back(makeRow(trace));
  for (const auto& row : rows_) connectRow(row);
  orderTabs();
  fillGrid();
}

// The parts are found by name and slot.
DisplayOptionsForm::Row DisplayOptionsForm::makeRow(const Channel& trace) {
  const std::size_t slot = trace.slot;
  auto& form = *makeForm("TraceRow", nullptr);
  form.setFont(dialog_.font());  // as long as it can: a dialog with a style sheet passes no fonts on
  for (auto* widget : form.findChildren<QWidget*>(QRegularExpression("^trace"))) {
    widget->setObjectName(widget->objectName() + QString::number(slot));
  }
  dialog_.findChild<QLayout*>("traces")->addWidget(&form);
  fitForFingers(form);
  const Row row{trace, &piece<QCheckBox>("traceShown", slot), &piece<QPushButton>("traceColour", slot),
                &piece<QComboBox>("traceWidth", slot), new LineSample(theme_, &dialog_)};
  piece<QWidget>("traceSample", slot).layout()->addWidget(row.sample);
  row.shown->setText(qtText(trace.name));
  row.shown->setChecked(traceChosen(settings_, slot));
  for (int width = 1; width <= kTraceWidths; ++width) {
    row.width->addItem(qtText(traceWidthName(width)));
  }
  row.width->setAccessibleName(qtText(trace.name));
  row.width->setCurrentIndex(traceWidthOf(settings_, slot) - 1);
  showRow(row);
  return row;
}

void DisplayOptionsForm::connectRow(const Row& row) {
  const std::size_t slot = row.trace.slot;
  QObject::connect(row.shown, &QCheckBox::toggled, &dialog_, [this, &row, slot](bool shown) {
    settings_.traceShown.at(slot) = shown ? 1 : 0;
    showRow(row);
  });
  QObject::connect(row.width, &QComboBox::currentIndexChanged, &dialog_, [this, &row, slot](int position) {
    settings_.traceWidth.at(slot) = position + 1;
    showRow(row);
  });
  QObject::connect(row.colour, &QPushButton::clicked, &dialog_, [this, &row] { chooseColour(row); });
}

// The traces were made last and come first: each of the rest moves to right behind them.
void DisplayOptionsForm::orderTabs() const {
  for (const char* name : {"cancel", "ok", "axis", "grid"}) {
    QWidget::setTabOrder(rows_.back().colour, &part<QWidget>(dialog_, name));
  }
}

void DisplayOptionsForm::showRow(const Row& row) const {
  const std::size_t slot = row.trace.slot;
  const int colour = settings_.traceColour.at(slot);
  showColour(*row.colour, theme_, colour, qtText(row.trace.name));
  row.sample->setLine(traceChosen(settings_, slot), colour, traceWidthOf(settings_, slot));
}

void DisplayOptionsForm::chooseColour(const Row& row) {
  auto& colour = settings_.traceColour.at(row.trace.slot);
  // In the whole room of the window, not just of this dialog.
  auto* window = dialog_.parentWidget() == nullptr ? &dialog_ : dialog_.parentWidget();
  if (const auto chosen = runTraceColourDialog(window, theme_, colour)) colour = *chosen;
  showRow(row);
}

void DisplayOptionsForm::fillGrid() {
  auto& grid = part<QCheckBox>(dialog_, "grid");
  auto& axis = part<QComboBox>(dialog_, "axis");
  for (const auto& choice : axes_) axis.addItem(qtText(choice.name));
  grid.setChecked(gridChosen(settings_));
  showAxis();
  QObject::connect(&grid, &QCheckBox::toggled, &dialog_, [this] { showAxis(); });
  QObject::connect(&axis, &QComboBox::currentIndexChanged, &dialog_, [this](int position) { axis_ = position; });
}

// Without grid lines the axis shows the first scale, and there is nothing to choose.
void DisplayOptionsForm::showAxis() {
  const bool grid = part<QCheckBox>(dialog_, "grid").isChecked();
  auto& axis = part<QComboBox>(dialog_, "axis");
  const QSignalBlocker quiet(&axis);
  axis.setCurrentIndex(grid ? axis_ : 0);
  axis.setEnabled(grid && axes_.size() > 1);
  part<QLabel>(dialog_, "axisLabel").setEnabled(axis.isEnabled());
}

void DisplayOptionsForm::takeGrid() {
  const bool grid = part<QCheckBox>(dialog_, "grid").isChecked();
  settings_.profileGrid = profileGridOf(grid, axes_[static_cast<std::size_t>(axis_)].group);
}

}  // namespace

std::optional<Settings> runDisplayOptionsDialog(QWidget* parent, const SetupFrame& frame, const Theme& theme,
                                                const Settings& settings) {
  const auto dialog = makeDialog(displayOptionsTemplate(frame.kind, frame.iceOption), parent);
  if (dialog == nullptr) return std::nullopt;
  DisplayOptionsForm options(*dialog, frame, theme, settings);
  if (!runDialog(*dialog)) return std::nullopt;
  options.takeGrid();
  return options.changed();
}

}  // namespace kalmira
