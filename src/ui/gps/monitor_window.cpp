#include "ui/gps/monitor_window.h"

#include <fmt/format.h>

#include <QDialog>
#include <QEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <algorithm>
#include <optional>
#include <utility>

#include "ui/gps/sentence_list.h"
#include "ui/screen/key_table.h"
#include "ui/screen/message_dialog.h"
#include "ui/screen/template_dialog.h"
#include "ui/screen/theme.h"
#include "ui/screen/touch_button.h"

namespace kalmira {
namespace {

constexpr std::chrono::milliseconds kRetryPeriod{1000};
// A receiver that has just been switched on may refuse the first tries.
constexpr int kGpsTries = 10;
// Units: forty characters a row upright, so that most sentences take two.
constexpr double kListFontUnits = 9.0;
constexpr double kFontUnits = 13.0;
constexpr int kSummaryMs = 500;

QRect rectOf(const MonitorBox& box) { return {box.left, box.top, box.width, box.height}; }

// Its edge must be seen in the dark and in the sun, and that it has the keyboard from further away.
std::string editStyle(const Theme& theme) {
  return fmt::format(
      "QLineEdit {{ color: #{0:06x}; background: #{1:06x}; border: 1px solid #{0:06x}; border-radius: 3px; "
      "padding: 0 4px; selection-color: #{1:06x}; selection-background-color: #{2:06x}; }}"
      "QLineEdit:focus {{ border: 3px solid #{2:06x}; }}",
      theme.text, theme.background, theme.focus);
}

// "GPS Message": shows the message (UTF-8) for editing. What was confirmed, nothing when it was cancelled.
std::optional<std::string> runMessageEntryDialog(QWidget* parent, const std::string& message) {
  const auto dialog = makeDialog("GetGPSMessage", parent);
  if (dialog == nullptr) return std::nullopt;
  auto& field = part<QLineEdit>(*dialog, "message");
  field.setMaxLength(kMostMessageCharacters);
  field.setText(qtText(message));
  if (!runDialog(*dialog)) return std::nullopt;
  return typedText(field);
}

}  // namespace

MonitorGPSWnd::MonitorGPSWnd(MonitorHost host, const Theme& theme, QWidget* parent)
    : CoverWindow("MonitorGPSWnd", "GPS monitor", host.onLeft, parent),
      host_(std::move(host)),
      summary_text_(new QLabel(this)),
      list_(new SentenceList(theme, this)),
      edit_(new QLineEdit(this)),
      buttons_(this, theme, [this](int index) { run(static_cast<MonitorCommand>(index)); }),
      hand_over_([this] {
        QMetaObject::invokeMethod(
            this, [this] { hand_over_.run(); }, Qt::QueuedConnection);
      }),
      port_(host_.portFactory, hand_over_, kRetryPeriod) {
  makeEdit(theme);
  makeButtons();
  summary_text_->setObjectName("summary");
  summary_text_->setWordWrap(true);
  summary_text_->setTextFormat(Qt::PlainText);
  connect(&summary_timer_, &QTimer::timeout, this, [this] { showSummary(); });
}

MonitorGPSWnd::~MonitorGPSWnd() { port_.close(); }

void MonitorGPSWnd::makeEdit(const Theme& theme) {
  edit_->setStyleSheet(qtText(editStyle(theme)));
  edit_->setText(qtText(kInitialGpsMessage));
  edit_->setMaxLength(kMostMessageCharacters);
  edit_->setFocusPolicy(Qt::ClickFocus);
  edit_->setInputMethodHints(Qt::ImhNoAutoUppercase | Qt::ImhNoPredictiveText);
  edit_->setAccessibleName("Message to the receiver");
  edit_->installEventFilter(this);
}

void MonitorGPSWnd::makeButtons() {
  std::vector<Action> actions;
  for (int i = 0; i < kMonitorCommands; ++i) {
    actions.push_back({.text = monitorButtonText(static_cast<MonitorCommand>(i))});
  }
  buttons_.setActions(actions);
  showButtons();
}

bool MonitorGPSWnd::open() {
  if (port_.isOpen()) return true;
  if (host_.settings.gpsInput != 1 || !openPort()) return false;
  state_ = {};
  receiver_gone_ = false;
  // What another port or another rate has brought would be taken for the answer of this one.
  list_->clearLines();
  summary_ = {};
  showSummary();
  summary_timer_.start(kSummaryMs);
  requests_.clear();
  startReader();
  showButtons();
  arrange();
  cover();
  return true;
}

bool MonitorGPSWnd::openPort() {
  const int com = gpsComNumber(host_.settings);
  const std::string device = host_.deviceOf(com);
  std::string why;
  if (device.empty()) {
    why = fmt::format("No device stands for COM{}: plug one in or name one", com);
  } else if (const auto error = port_.open(device, gpsPortLine(host_.settings), kGpsTries)) {
    why = error->text;
  } else {
    return true;
  }
  tellMessage(window(), {.title = "Serial Port", .text = "Cannot open GPS port\r\n" + why});
  return false;
}

void MonitorGPSWnd::startReader() {
  port_.start([this, cameBack = false](const PortThread::Context& context) mutable {
    return GpsMonitorReaderThread(
        {.port = context.port, .clock = host_.clock, .stop = context.stop, .requests = requests_},
        [this, &context](const MonitorNews& news) { return context.sender.send([this, news] { showNews(news); }); },
        std::exchange(cameBack, true));
  });
}

void MonitorGPSWnd::leave() {
  if (!port_.isOpen()) return;
  port_.close();
  summary_timer_.stop();
  for (auto* dialog : findChildren<QDialog*>()) {
    if (dialog->isVisible()) dialog->reject();
  }
  showStreaming(state_);
  showButtons();
  uncover();
}

void MonitorGPSWnd::showNews(const MonitorNews& news) {
  if (news.kind == MonitorNews::Kind::gone) receiver_gone_ = true;
  if (news.kind == MonitorNews::Kind::back) receiver_gone_ = false;
  // A line that was on its way when the operator asked for a pause: nothing may move any more.
  if (news.kind == MonitorNews::Kind::line && state_.monitorPaused == 1) return;
  const bool sentence = news.kind == MonitorNews::Kind::line && news.text != kNoData;
  const bool good = nmeaChecksumOk(news.text);
  const bool heard = summary_.heard();
  if (sentence) summary_.take(news.text, good, host_.clock.tick());
  if (summary_.heard() && !heard) showSummary();  // what is waited for comes at once
  list_->addLine(news.text, sentence && !good);
}

// Each text stays in one piece.
void MonitorGPSWnd::showSummary() {
  QStringList texts;
  for (const auto& text : summary_.texts(host_.clock.tick())) texts += qtText(text).replace(' ', QChar::Nbsp);
  const auto all = texts.join("   ");
  if (all == summary_text_->text()) return;
  summary_text_->setText(all);
  summary_text_->setFont(fittedFont(all, edit_->font(), summary_text_->size()));
}

void MonitorGPSWnd::run(MonitorCommand command) {
  if (!port_.isOpen() || entering_) return;
  setFocus();
  switch (command) {
    case MonitorCommand::go:
      requests_.ask({.what = MonitorRequest::What::go});
      showStreaming(state_);
      return showButtons();
    case MonitorCommand::pause:
      requests_.ask({.what = MonitorRequest::What::pause});
      showPaused(state_);
      return showButtons();
    case MonitorCommand::send: return sendMessage();
    case MonitorCommand::exit: return leave();
  }
}

void MonitorGPSWnd::sendMessage() {
  entering_ = true;
  const auto message = runMessageEntryDialog(this, edit_->text().toStdString());
  entering_ = false;
  if (!port_.isOpen()) return;
  setFocus();
  if (!message) return;
  edit_->setText(qtText(*message));
  edit_->setCursorPosition(0);
  if (receiver_gone_) {
    list_->addLine("Message not sent: receiver unplugged");
    requests_.ask({.what = MonitorRequest::What::go});
  } else {
    requests_.ask({.what = MonitorRequest::What::send, .bytes = gpsMessageBytes(*message)});
  }
  showStreaming(state_);
  showButtons();
}

void MonitorGPSWnd::showButtons() {
  for (int i = 0; i < kMonitorCommands; ++i) {
    auto* button = buttons_.buttons()[static_cast<std::size_t>(i)];
    const bool shown = monitorButtonShown(state_, static_cast<MonitorCommand>(i));
    button->setEnabled(shown);
    button->setVisible(shown);
  }
  buttons_.setHighlight(state_.monitorDefaultButton);
}

void MonitorGPSWnd::keyPressEvent(QKeyEvent* event) {
  // Earlier sentences without touching the screen; as none of these keys types anything, they are free.
  const int page = std::max(1, list_->rowsInView() - 1);
  if (const int rows = scrollStepOf(keyCodeOf(event->key()), page); rows != 0) return list_->scroll(rows);
  if (event->isAutoRepeat()) return;
  // What is no command ends here: the main menu below has keys of its own.
  if (isFunctionKey(event->key())) return QWidget::keyPressEvent(event);
  const QString typed = event->text();
  if (typed.size() != 1) return;
  const auto command = typeMonitorKey(state_, typed[0].toLatin1());
  showButtons();
  if (command) run(*command);
}

bool MonitorGPSWnd::eventFilter(QObject* watched, QEvent* event) {
  if (watched == edit_ && event->type() == QEvent::KeyPress) {
    return editKey(*static_cast<const QKeyEvent*>(event));
  }
  return CoverWindow::eventFilter(watched, event);
}

// True for the keys that leave the edit line.
bool MonitorGPSWnd::editKey(const QKeyEvent& event) {
  switch (event.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter: run(MonitorCommand::send); return true;
    case Qt::Key_Escape:
    case Qt::Key_Tab:
    case Qt::Key_Backtab: setFocus(); return true;
    default: return false;
  }
}

void MonitorGPSWnd::resizeEvent(QResizeEvent*) { arrange(); }

void MonitorGPSWnd::arrange() {
  const auto layout = layOutMonitor(width(), height(), touchHeight(screen()));
  setTextScale(*this, layout.scale);
  QFont text = font();
  text.setPixelSize(std::max(8, static_cast<int>(kFontUnits * layout.scale)));
  edit_->setFont(text);
  summary_text_->setGeometry(rectOf(layout.summary));
  summary_text_->setFont(fittedFont(summary_text_->text(), text, summary_text_->size()));
  for (std::size_t i = 0; i < layout.buttons.size(); ++i) {
    buttons_.buttons()[i]->setFont(text);
    buttons_.buttons()[i]->setGeometry(rectOf(layout.buttons[i]));
  }
  edit_->setGeometry(rectOf(layout.edit));
  list_->setGeometry(rectOf(layout.list));
  list_->setFontSize(static_cast<int>(kListFontUnits * layout.scale));
}

}  // namespace kalmira
