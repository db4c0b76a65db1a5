#include "ui/viewer/view_files_window.h"

#include <QAbstractItemView>
#include <QEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <utility>

#include "logging/keys.h"
#include "ui/screen/file_dialog.h"
#include "ui/screen/key_table.h"
#include "ui/screen/message_dialog.h"
#include "ui/screen/theme.h"
#include "ui/screen/touch_button.h"
#include "ui/session/dialogs.h"
#include "ui/viewer/line_widgets.h"
#include "ui/viewer/readout_view.h"
#include "ui/viewer/view_curve_window.h"
#include "ui/viewer/viewer_layout.h"

namespace kalmira {
namespace {

constexpr double kReadoutUnits = 13;  // high, of the largest text
constexpr double kLabelUnits = 9;     // of texts at the plot
constexpr int kSmallestLabel = 9;     // pixels

constexpr int kWheelNotch = 120;
constexpr int kFollow_ms = 500;
constexpr int kConcernShare = 7;  // of the height, for what the session has to say

bool movesView(ViewCommand command) { return command <= ViewCommand::lineEnd; }

bool isRepeated(ViewCommand command) {
  const auto same = [command](const ViewEntry& entry) { return entry.command == command && entry.repeats; };
  return std::ranges::any_of(viewEntries(), same);
}

}  // namespace

ViewFilesWnd::ViewFilesWnd(ViewerHost host, const Theme& theme, QWidget* parent)
    : CoverWindow("ViewFilesWnd", "View files", host.onLeft, parent),
      host_(std::move(host)),
      theme_(&theme),
      row_files_(rowFilesOf(host_.place.root, host_.place.storageClass)),
      lines_(new LineList([this](int index) { chooseLine(index); },
                          [this] {
                            lines_->setCurrentIndex(static_cast<int>(navigation_.selectedLine));
                            showPlot();
                            window()->activateWindow();  // the list was a window of its own
                            setFocus();
                          },
                          this)),
      readout_(new ReadoutView(theme, this)),
      plot_(new ViewCurveWnd(
          theme, [this](int column) { moveBarTo(column); }, this)),
      overview_(new OverviewStrip(
          theme, [this](int row) { moveToRow(row); }, this)),
      buttons_(this, theme, [this](int index) { run(viewEntries().at(static_cast<std::size_t>(index)).command); }) {
  makeButtons();
  concern_ = new QLabel(this);
  concern_->setObjectName("concern");
  concern_->setAlignment(Qt::AlignCenter);
  concern_->setWordWrap(true);
  concern_->setAutoFillBackground(true);
  concern_->hide();
  connect(&following_, &QTimer::timeout, this, [this] { follow(); });
  connect(&filling_, &QTimer::timeout, this, [this] {
    std::string problem;
    if (file_ != nullptr && fillSome(*file_, problem)) return;
    filling_.stop();
    if (!problem.empty()) tell(problem);
  });
}

ViewFilesWnd::~ViewFilesWnd() = default;

void ViewFilesWnd::makeButtons() {
  std::vector<Action> actions;
  int first = 0;
  for (const auto& entry : viewEntries()) {
    if (entry.command == ViewCommand::openFile) first = static_cast<int>(actions.size());
    actions.push_back({.text = entry.text,
                       .toolTip = entry.toolTip,
                       .identifier = kFirstCommandId + static_cast<int>(entry.command),
                       .repeats = entry.repeats});
  }
  buttons_.setActions(actions);
  buttons_.setHighlight(first);
  showButtons();
}

void ViewFilesWnd::open() {
  outer_title_ = window()->windowTitle();
  cover();
  arrange();
  following_.start(kFollow_ms);
}

void ViewFilesWnd::leave() {
  finishRows();
  following_.stop();
  concern_->hide();
  fileClosed(navigation_);
  lines_->setLines(nullptr);
  plot_->clearPlot();
  overview_->clearLine();
  file_.reset();
  status_.clear();
  showReadout();
  showCaption();
  showButtons();
  uncover();
}

void ViewFilesWnd::run(ViewCommand command) {
  if (acting_ || isHidden()) return;
  acting_ = true;
  act(command);
  acting_ = false;
  if (!isHidden() && command != ViewCommand::lineList) setFocus();
}

void ViewFilesWnd::act(ViewCommand command) {
  setPlotWidth(navigation_, plot_->plotSize().width());
  if (movesView(command)) return apply(moveView(navigation_, command));
  if (command == kFitScale) return fitScale();
  if (command == kZoomIn || command == kZoomOut) return changeZoom(command);
  if (command == kSavePicture) return savePicture();
  if (command == kExport) return exportFile();
  switch (command) {
    case ViewCommand::openFile: return chooseFile();
    case ViewCommand::scale: return enterScale();
    case ViewCommand::exit: return leave();
    case ViewCommand::help: return showHelp();
    case ViewCommand::lineList: lines_->setFocus(); return lines_->showPopup();
    default: return;
  }
}

void ViewFilesWnd::chooseFile() {
  if (const auto path = runOpenFileDialog(this, host_.place)) openFile(*path);
}

bool ViewFilesWnd::openFile(const std::filesystem::path& path) {
  std::string problem;
  std::unique_ptr<OpenedFile> opened;
  {
    const WaitingCursor cursor;
    opened = openDataFile(path, problem);
  }
  if (!opened) {
    tell(problem);
    return false;
  }
  lines_->setLines(nullptr);
  file_ = std::move(opened);
  const auto& header = file_->scanned.header;
  settings_ = host_.settingsFor(header.kind, header.iceOption);
  status_.clear();
  lines_->setLines(&file_->scanned.lines);
  const auto extractProblem = extractShown();
  zoom_ = {};
  setPlotWidth(navigation_, plot_->plotSize().width());
  apply(fileOpened(navigation_, file_->line.rowCount()));
  showOverview();
  showCaption();
  showButtons();
  for (const auto& text : {problem, extractProblem}) {
    if (!text.empty()) tell(text);
  }
  return true;
}

std::string ViewFilesWnd::extractShown() {
  const WaitingCursor cursor;
  auto problem =
      openLine(*file_, static_cast<std::size_t>(std::max(0, lines_->currentIndex())), row_files_, host_.extract);
  takeScale();
  filling_.start(0);
  return problem;
}

// What is written beside the screen is whole before it is left.
void ViewFilesWnd::finishRows() {
  filling_.stop();
  if (file_ == nullptr) return;
  const WaitingCursor cursor;
  fillRows(file_->reader, file_->scanned, file_->line, file_->line.rowCount());
}

void ViewFilesWnd::takeScale() {
  const bool fit = !host_.confirmedScales.test(static_cast<std::size_t>(file_->scanned.header.kind));
  shown_ = fit ? fittedSettings(file_->scanned, file_->line.summary.spans(), settings_) : settings_;
}

// The list shows another entry already.
void ViewFilesWnd::chooseLine(int index) {
  if (index < 0 || file_ == nullptr || !selectLine(navigation_, static_cast<std::size_t>(index))) return;
  const auto problem = extractShown();
  setPlotWidth(navigation_, plot_->plotSize().width());
  apply(lineExtracted(navigation_, file_->line.rowCount()));
  showOverview();
  if (!problem.empty()) tell(problem);
}

void ViewFilesWnd::showEnd() {
  if (file_ == nullptr || file_->scanned.lines.empty()) return;
  lines_->setCurrentIndex(lines_->count() - 1);
  chooseLine(lines_->currentIndex());
  apply(goToEnd(navigation_));
}

void ViewFilesWnd::follow() {
  showConcern();
  if (file_ == nullptr || acting_ || telling_ || lines_->view()->isVisible()) return;
  const bool newest = navigation_.selectedLine + 1 == file_->scanned.lines.size() || file_->scanned.lines.empty();
  const bool atEnd = newest && navigation_.lastRow >= navigation_.totalRows;
  const auto growth = followFile(*file_);
  if (growth.rows) {
    takeScale();
    apply(lineGrew(navigation_, file_->line.rowCount()));
    showOverview();
    filling_.start(0);
  }
  if (!growth.lines) return;
  lines_->takeNewLines();
  showButtons();
  showCaption();
  if (atEnd) showEnd();
}

void ViewFilesWnd::showConcern() {
  const auto text = host_.concern ? host_.concern() : std::string();
  if (qtText(text) == concern_->text() && concern_->isVisible() == !text.empty()) return;
  concern_->setText(qtText(text));
  concern_->setVisible(!text.empty());
  concern_->raise();
}

void ViewFilesWnd::enterScale() {
  const auto kind = file_ ? file_->scanned.header.kind : host_.place.kind;
  const bool ice = file_ && file_->scanned.header.iceOption;
  if (file_ == nullptr) settings_ = host_.settingsFor(kind, ice);
  const auto changed = runProfileScaleDialog(this, viewScaleTemplate(kind), kind, ice, settings_);
  if (changed) {
    settings_ = *changed;
    host_.confirmedScales.set(static_cast<std::size_t>(kind));
    host_.takeSettings(kind, ice, settings_);
  }
  showScale();
}

void ViewFilesWnd::fitScale() {
  if (file_ == nullptr) return;
  host_.confirmedScales.reset(static_cast<std::size_t>(file_->scanned.header.kind));
  showScale();
}

void ViewFilesWnd::showScale() {
  if (file_ == nullptr) return;
  takeScale();
  status_ = scaleStatusText(file_->scanned, shown_);
  showCaption();
  showPlot();
  showOverview();
}

void ViewFilesWnd::changeZoom(ViewCommand command) {
  command == kZoomIn ? zoomIn(navigation_, zoom_) : zoomOut(navigation_, zoom_);
  apply({});
}

void ViewFilesWnd::showHelp() {
  tellMessage(this, {.title = "View Files Help", .text = viewHelpText(host_.place.storageClass)});
}

void ViewFilesWnd::apply(const ViewStep& step) {
  if (file_ == nullptr) return;
  const auto view = plotView(navigation_, zoom_);
  const bool moved = !(std::exchange(view_, view) == view);
  std::vector<std::string> messages;
  if (step.load || moved || view.summed()) messages = loadView(*file_, view_, navigation_);
  if (step.redraw || moved) showPlot();
  if (step.moveBar) plot_->setBar(barColumn());
  if (step.readout || step.redraw) showReadout();
  overview_->setWindow(view_.firstRow, view_.lastRow(), rowAtBar(navigation_));
  for (const auto& message : messages) tell(message);
}

// From 1; 0 where no station is.
int ViewFilesWnd::barColumn() const {
  const int row = rowAtBar(navigation_);
  return row < 1 || row > navigation_.totalRows ? 0 : view_.columnOf(row) + 1;
}

// To where a finger is; within what the commands count as far as the bar goes by its keys.
void ViewFilesWnd::moveBarTo(int column) {
  if (acting_ || file_ == nullptr || navigation_.totalRows < 1) return;
  const int row = std::clamp(view_.rowAt(column - 1), 1, navigation_.totalRows);
  const int bar = row - navigation_.firstRow + 1;
  if (bar < 1 || bar > navigation_.pointsInView) return moveToRow(row);
  navigation_.previousBar = std::exchange(navigation_.bar, bar);
  apply({.readout = true, .moveBar = true});
}

void ViewFilesWnd::moveToRow(int row) {
  if (!acting_) apply(goToRow(navigation_, row));
}

ProfileSetup ViewFilesWnd::setupFor(QSize size) const {
  return plotSetup(file_->scanned, shown_, size.width(), size.height());
}

void ViewFilesWnd::showPlot() {
  if (file_ == nullptr) return plot_->clearPlot();
  const auto setup = setupFor(plot_->plotSize());
  if (view_.summed()) {
    plot_->showSummary(setup, file_->line.summary, view_);
  } else {
    plot_->showStations(setup, view_, file_->points);
  }
  plot_->setBar(barColumn());
}

void ViewFilesWnd::showReadout() {
  if (file_ == nullptr) return readout_->showReadout({}, {});
  readout_->showReadout(readoutOf(*file_, navigation_), setupFor(plot_->plotSize()));
}

void ViewFilesWnd::showOverview() {
  if (file_ == nullptr || file_->line.rowCount() == 0) return overview_->clearLine();
  const int wide = std::max(1, overview_->width());
  const int rows = file_->line.rowCount();
  auto setup = setupFor({wide, overview_->height()});
  setup.showGrid = false;
  std::vector<StationPoint> points;
  // What cannot be read is told by the plot.
  if (rows < wide) LoadLineRows(file_->reader, file_->scanned, file_->line, 0, rows - 1, 1, points);
  overview_->showLine(setup, lineOverview(file_->line.summary, wide), points);
}

void ViewFilesWnd::showCaption() {
  caption_ = file_ ? fileCaption(*file_) : "No file open";
  if (file_ && file_->scanned.lines.empty()) caption_ += ", no lines";
  setWindowTitle(qtText(caption_));
  const bool outer = parentWidget() != nullptr;
  if (outer) window()->setWindowTitle(file_ ? qtText(fileCaption(*file_)) : outer_title_);
  update(caption_place_);
}

void ViewFilesWnd::showButtons() {
  const bool usable = file_ != nullptr;
  for (int i = 0; i < kViewButtons; ++i) {
    buttons_.setUsable(i, usable || !viewEntries()[static_cast<std::size_t>(i)].needsFile);
  }
  lines_->setEnabled(usable && lines_->count() > 0);
}

// One message at a time: what comes while one is being read is of the same cause.
void ViewFilesWnd::tell(const std::string& text) {
  if (std::exchange(telling_, true)) return;
  tellMessage(this, {.title = "View Files", .text = text, .icon = Icon::exclamation});
  telling_ = false;
}

void ViewFilesWnd::keyPressEvent(QKeyEvent* event) {
  // What is no command ends here, for the menu below has keys of its own.
  if (isFunctionKey(event->key())) return QWidget::keyPressEvent(event);
  if (event->key() == Qt::Key_Backtab) return buttons_.moveHighlight(-1);
  const bool plus = event->key() == Qt::Key_Plus || event->key() == Qt::Key_Equal;
  const int keyCode = plus ? kPlusKey : keyCodeOf(event->key());
  if (keyCode == key::kTab) return buttons_.moveHighlight(1);
  auto command = viewCommandOfKey(keyCode);
  if (const auto index = buttons_.pressedBy(keyCode)) {
    command = viewEntries().at(static_cast<std::size_t>(*index)).command;
  }
  if (!command || (event->isAutoRepeat() && !isRepeated(*command))) return;
  if (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) return;
  run(*command);
}

void ViewFilesWnd::wheelEvent(QWheelEvent* event) {
  wheel_ += event->angleDelta().y();
  for (; wheel_ >= kWheelNotch; wheel_ -= kWheelNotch) run(kZoomIn);
  for (; wheel_ <= -kWheelNotch; wheel_ += kWheelNotch) run(kZoomOut);
}

void ViewFilesWnd::resizeEvent(QResizeEvent*) { arrange(); }

void ViewFilesWnd::arrange() {
  const auto layout = layOutViewer(width(), height(), touchHeight(screen()));
  setTextScale(*this, layout.scale);
  QFont texts = font();
  lines_->setFont(texts);
  lines_->setGeometry(layout.lines);
  buttons_.place(layout.buttons, layout.buttons[0].height() / 2);
  caption_place_ = layout.caption;
  // A band, so that the line stays in sight.
  auto band = layout.caption.united(layout.readout);
  band.setHeight(std::max(layout.caption.height(), height() / kConcernShare));
  concern_->setGeometry(band);
  QPalette colours = concern_->palette();
  colours.setColor(QPalette::Window, QColor(theme_->warning));
  colours.setColor(QPalette::WindowText, QColor(theme_->warningText));
  concern_->setPalette(colours);
  readout_->setLargestText(std::max(kSmallestLabel, static_cast<int>(kReadoutUnits * layout.scale)));
  readout_->setGeometry(layout.readout);
  texts.setPixelSize(std::max(kSmallestLabel, static_cast<int>(kLabelUnits * layout.scale)));
  plot_->setFont(texts);
  plot_->setGeometry(layout.plot);
  overview_->setGeometry(layout.overview);
  setPlotWidth(navigation_, plot_->plotSize().width());
  if (isVisible() && file_ != nullptr) {
    view_ = plotView(navigation_, zoom_);
    // A message in the middle of a change of size would be asked for again by its own.
    if (!loadView(*file_, view_, navigation_).empty()) status_ = kInvalidHandle1;
    showPlot();
    showReadout();
    showOverview();
  } else if (file_ == nullptr) {
    plot_->clearPlot();
  }
  apply({});
  showCaption();
}

void ViewFilesWnd::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  QFont texts = font();
  texts.setPixelSize(std::min(texts.pixelSize(), caption_place_.height() - 2));
  texts.setBold(true);
  painter.setFont(texts);
  painter.setPen(QColor(theme_->text));
  const QFontMetrics metrics(texts);
  const auto file = qtText(caption_);
  const auto status = metrics.elidedText(qtText(status_), Qt::ElideRight, caption_place_.width() / 2);
  painter.drawText(caption_place_, Qt::AlignRight | Qt::AlignVCenter | Qt::TextSingleLine, status);
  const int room = caption_place_.width() - metrics.horizontalAdvance(status + "  ");
  painter.drawText(caption_place_, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                   metrics.elidedText(file, Qt::ElideMiddle, room));
}

}  // namespace kalmira
