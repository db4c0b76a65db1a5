#include "ui/gps/monitor_window.h"

#include <fmt/format.h>

#include <QCoreApplication>
#include <QDialog>
#include <QEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <algorithm>
#include <utility>

#include "ui/gps/message_entry_dialog.h"
#include "ui/gps/sentence_list.h"
#include "ui/screen/message_dialog.h"
#include "ui/screen/screen_scale.h"
#include "ui/screen/touch_button.h"

namespace kalmira {
namespace {

constexpr std::chrono::milliseconds kRetryPeriod{1000};
// A receiver that has just been switched on may refuse the first tries.
constexpr int kGpsTries = 10;
// Units: forty characters a row upright, so that most sentences take two.
constexpr double kListFontUnits = 9.0;
constexpr double kFontUnits = 13.0;

QEvent::Type wakeEvent() {
  static const auto kType = static_cast<QEvent::Type>(QEvent::registerEventType());
  return kType;
}

QRect rectOf(const MonitorBox& box) {
  return {box.left, box.top, box.width, box.height};
}

// Its edge must be seen in the dark and in the sun, and that it has the keyboard from further away.
std::string editStyle(const Theme& theme) {
  return fmt::format(
      "QLineEdit {{ color: #{0:06x}; background: #{1:06x}; border: 1px solid #{0:06x}; border-radius: 3px; "
      "padding: 0 4px; selection-color: #{1:06x}; selection-background-color: #{2:06x}; }}"
      "QLineEdit:focus {{ border: 3px solid #{2:06x}; }}",
      theme.text, theme.background, theme.focus);
}

QString qtText(std::string_view utf8) {
  return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

}  // namespace

MonitorGPSWnd::MonitorGPSWnd(MonitorHost host, const Theme& theme, QWidget* parent)
    : QWidget(parent),
      host_(std::move(host)),
      theme_(&theme),
      list_(new SentenceListView(theme, this)),
      edit_(new QLineEdit(this)),
      hand_over_([this] { QCoreApplication::postEvent(this, new QEvent(wakeEvent())); }),
      port_(host_.portFactory, hand_over_, kRetryPeriod) {
  setObjectName("MonitorGPSWnd");
  setFocusPolicy(Qt::StrongFocus);
  setAutoFillBackground(true);
  makeEdit();
  makeButtons();
  setTheme(theme);
  if (parent != nullptr) parent->installEventFilter(this);
  hide();
}

MonitorGPSWnd::~MonitorGPSWnd() {
  port_.close();
}

void MonitorGPSWnd::makeEdit() {
  edit_->setText(qtText(kInitialGpsMessage));
  edit_->setMaxLength(kMostMessageCharacters);
  edit_->setFocusPolicy(Qt::ClickFocus);
  edit_->setInputMethodHints(Qt::ImhNoAutoUppercase | Qt::ImhNoPredictiveText);
  edit_->setAccessibleName("Message to the receiver");
  edit_->installEventFilter(this);
}

void MonitorGPSWnd::makeButtons() {
  for (int i = 0; i < kMonitorCommands; ++i) {
    const auto command = static_cast<MonitorCommand>(i);
    auto* button = new TouchButton(qtText(monitorButtonText(command)), *theme_, this);
    connect(button, &QPushButton::clicked, this, [this, command] { run(command); });
    buttons_[static_cast<std::size_t>(i)] = button;
  }
  showButtons();
}

void MonitorGPSWnd::setTheme(const Theme& theme) {
  theme_ = &theme;
  list_->setTheme(theme);
  edit_->setStyleSheet(QString::fromStdString(editStyle(theme)));
  for (auto* button : buttons_) button->setTheme(theme);
}

bool MonitorGPSWnd::open() {
  if (port_.isOpen()) return true;
  if (host_.settings.gpsInput != 1 || !openPort()) return false;
  state_ = {};
  receiver_gone_ = false;
  // What another port or another rate has brought would be taken for the answer of this one.
  list_->clearLines();
  requests_.clear();
  startReader();
  showButtons();
  if (parentWidget() != nullptr) setGeometry(parentWidget()->rect());
  layOut();
  show();
  raise();
  setFocus();
  return true;
}

bool MonitorGPSWnd::openPort() {
  const int com = gpsComNumber(host_.settings);
  const std::string device = host_.deviceOf(com);
  std::string why;
  if (device.empty()) {
    why = fmt::format("No device stands for COM{}: plug one in or name one", com);
  } else if (const auto error = port_.open(device, gpsLine(host_.settings), kGpsTries)) {
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
        [this, &context](const MonitorNews& news) {
          return context.sender.send([this, news] { showNews(news); });
        },
        std::exchange(cameBack, true));
  });
}

void MonitorGPSWnd::leave() {
  if (!port_.isOpen()) return;
  port_.close();
  for (auto* dialog : findChildren<QDialog*>()) {
    if (dialog->isVisible()) dialog->reject();
  }
  showStreaming(state_);
  showButtons();
  hide();
  if (host_.onLeft) host_.onLeft();
}

bool MonitorGPSWnd::event(QEvent* event) {
  if (event->type() != wakeEvent()) return QWidget::event(event);
  hand_over_.run();
  return true;
}

void MonitorGPSWnd::showNews(const MonitorNews& news) {
  if (news.kind == MonitorNews::Kind::gone) receiver_gone_ = true;
  if (news.kind == MonitorNews::Kind::back) receiver_gone_ = false;
  // A line that was on its way when the operator asked for a pause: nothing may move any more.
  if (news.kind == MonitorNews::Kind::line && state_.monitorPaused == 1) return;
  list_->addLine(news.text);
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
    case MonitorCommand::send:
      return sendMessage();
    case MonitorCommand::exit:
      return leave();
  }
}

void MonitorGPSWnd::sendMessage() {
  entering_ = true;
  const auto message = runMessageEntryDialog(this, edit_->text().toStdString());
  entering_ = false;
  if (!port_.isOpen()) return;
  setFocus();
  if (!message) return;
  edit_->setText(QString::fromStdString(*message));
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
    auto* button = buttons_[static_cast<std::size_t>(i)];
    const bool shown = monitorButtonShown(state_, static_cast<MonitorCommand>(i));
    button->setEnabled(shown);
    button->setVisible(shown);
    button->setDefault(i == state_.monitorDefaultButton);
  }
}

void MonitorGPSWnd::keyPressEvent(QKeyEvent* event) {
  if (scrollKey(event->key()) || event->isAutoRepeat()) return;
  // What is no command ends here: the main menu below has keys of its own. Function keys are the program's.
  if (event->key() >= Qt::Key_F1 && event->key() <= Qt::Key_F35) return QWidget::keyPressEvent(event);
  const QString typed = event->text();
  if (typed.size() != 1) return;
  const auto command = typeMonitorKey(state_, typed[0].toLatin1());
  showButtons();
  if (command) run(*command);
}

// Earlier sentences without touching the screen; as none of these keys types anything, they are free.
bool MonitorGPSWnd::scrollKey(int key) {
  const int page = std::max(1, list_->rowsInView() - 1);
  switch (key) {
    case Qt::Key_Up:
      list_->scroll(-1);
      return true;
    case Qt::Key_Down:
      list_->scroll(1);
      return true;
    case Qt::Key_PageUp:
      list_->scroll(-page);
      return true;
    case Qt::Key_PageDown:
      list_->scroll(page);
      return true;
    default:
      return false;
  }
}

bool MonitorGPSWnd::eventFilter(QObject* watched, QEvent* event) {
  if (watched == parentWidget() && event->type() == QEvent::Resize) setGeometry(parentWidget()->rect());
  if (watched == edit_ && event->type() == QEvent::KeyPress) {
    return editKey(*static_cast<const QKeyEvent*>(event));
  }
  return false;
}

// True for the keys that leave the edit line.
bool MonitorGPSWnd::editKey(const QKeyEvent& event) {
  switch (event.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      run(MonitorCommand::send);
      return true;
    case Qt::Key_Escape:
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
      setFocus();
      return true;
    default:
      return false;
  }
}

void MonitorGPSWnd::resizeEvent(QResizeEvent*) {
  layOut();
}

void MonitorGPSWnd::layOut() {
  const auto layout = layOutMonitor(width(), height(), touchHeight(screen()));
  QFont text = font();
  text.setPixelSize(dialogTextPixels(layout.scale));
  setFont(text);
  text.setPixelSize(std::max(8, static_cast<int>(kFontUnits * layout.scale)));
  edit_->setFont(text);
  for (std::size_t i = 0; i < buttons_.size(); ++i) {
    buttons_[i]->setFont(text);
    buttons_[i]->setGeometry(rectOf(layout.buttons[i]));
  }
  edit_->setGeometry(rectOf(layout.edit));
  list_->setGeometry(rectOf(layout.list));
  list_->setFontSize(static_cast<int>(kListFontUnits * layout.scale));
}

}  // namespace kalmira
