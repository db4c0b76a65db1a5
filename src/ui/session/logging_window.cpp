#include "ui/session/logging_window.h"

#include <QApplication>
#include <QDialog>
#include <QKeyEvent>
#include <algorithm>
#include <utility>

#include "logging/handlers.h"
#include "logging/keys.h"
#include "logging/panel.h"
#include "platform/command_line.h"
#include "ui/screen/key_table.h"
#include "ui/screen/message_dialog.h"
#include "ui/screen/touch_button.h"
#include "ui/session/logging_window_parts.h"

namespace kalmira {
namespace {

constexpr int kButtonUnits = 28;
constexpr int kTextPercent = 45;  // of a button's height, for one line
constexpr double kSmallScale = 1.5;

// Messages and questions stand on top of whatever is open.
QWidget* topmost(QWidget* window) {
  auto* modal = QApplication::activeModalWidget();
  return modal != nullptr ? modal : window;
}

}  // namespace

void LoggingWnd::View::show(PanelField field, std::string_view text) { window_.parts_->panel->showText(field, text); }

void LoggingWnd::View::beep(Beep) { QApplication::beep(); }

bool LoggingWnd::View::ask(Question question, const Message& message) {
  if (window_.parts_->ending) return question != Question::linkLost;
  const Depth asking(window_.parts_->askingDepth);
  const bool unasked = question == Question::linkLost;
  const bool yes = askMessage(topmost(&window_), message, enterAnswer(question), unasked ? kDeafMs : 0);
  window_.setFocus();
  return yes;
}

void LoggingWnd::View::tell(const Message& message) {
  if (window_.parts_->ending) return printError("kalmira: " + message.text);
  const Depth asking(window_.parts_->askingDepth);
  tellMessage(topmost(&window_), message);
  window_.setFocus();
}

void LoggingWnd::View::addProfilePoint(const ProfilePoint& point) { window_.parts_->chart->addPoint(point); }

void LoggingWnd::View::redrawProfile() { window_.parts_->chart->redraw(); }

void LoggingWnd::View::clearProfile() { window_.parts_->chart->clearChart(); }

void LoggingWnd::View::loggingStateChanged() { window_.showButtons(); }

// Whatever stands open above the window goes as if it had been cancelled, the topmost first.
void LoggingWnd::View::closeDialogs() {
  if (auto* popup = QApplication::activePopupWidget()) popup->close();
  auto dialogs = window_.findChildren<QDialog*>();
  std::reverse(dialogs.begin(), dialogs.end());
  for (auto* dialog : dialogs) {
    if (dialog->isVisible()) dialog->reject();
  }
}

void LoggingWnd::View::loggingLeft() {
  window_.parts_->serviceTimer.stop();
  window_.parts_->chart->setSession(nullptr);
  window_.uncover();
}

LoggingWnd::Parts::Parts(LoggingWnd& window, const Theme& theme)
    : view(window),
      handOver([this, &window] {
        QMetaObject::invokeMethod(
            &window, [this] { handOver.run(); }, Qt::QueuedConnection);
      }),
      panel(new PanelView(theme, &window)),
      chart(new CurveWnd(theme, &window)),
      buttons(&window, theme, [&window](int index) {
        if (window.sessionActive()) window.runCode(codeOfButton(*window.session(), index));
      }) {
  panel->setObjectName("panel");
  chart->setObjectName("chart");
  serviceTimer.setSingleShot(true);
}

LoggingWnd::LoggingWnd(LoggingHost host, const Theme& theme, QWidget* parent)
    : CoverWindow("LoggingWnd", host.onLeft, parent),
      host_(std::move(host)),
      parts_(std::make_unique<Parts>(*this, theme)) {
  connect(&parts_->serviceTimer, &QTimer::timeout, this, [this] { service(); });
}

LoggingWnd::~LoggingWnd() {
  if (sessionActive()) leaveAtOnce();
}

Session* LoggingWnd::session() { return parts_->run ? &parts_->run->session : nullptr; }

bool LoggingWnd::sessionActive() const { return parts_->run && parts_->run->session.sessionActive; }

StartOutcome LoggingWnd::startLogging() {
  if (sessionActive() || parts_->commandDepth > 0) return StartOutcome::refused;
  const Depth busy(parts_->commandDepth);
  parts_->panel->clearTexts();
  parts_->ending = false;
  if (host_.mirror) host_.setup.mirror = host_.mirror();
  parts_->run = std::make_unique<LoggingRun>(host_, parts_->view, parts_->handOver, [this] {
    const Depth handling(parts_->readingDepth);
    OnReading(parts_->run->session);
  });
  auto& session = parts_->run->session;
  arrange();
  const auto outcome = startSession(session);
  if (outcome != StartOutcome::started || !session.sessionActive) return outcome;
  parts_->chart->setSession(&session);
  showButtons();
  cover();
  parts_->serviceTimer.start(0);
  return outcome;
}

void LoggingWnd::service() {
  if (!sessionActive()) return;
  auto& session = parts_->run->session;
  const Depth busy(parts_->commandDepth);
  // Before anything is asked: the watch goes on behind an open question.
  parts_->serviceTimer.start(static_cast<int>(msUntilService(session)));
  // An instrument whose reading waits behind a calibration's question is not silent.
  const bool heldUp = parts_->readingDepth > 0 && parts_->askingDepth > 0;
  const bool watched = session.timer.running;
  if (heldUp) session.timer.running = false;
  serviceSession(session);
  if (heldUp) session.timer.running = watched;
  if (!sessionActive() || !host_.takeSettingsProblem) return;
  if (const auto problem = host_.takeSettingsProblem(); !problem.empty()) {
    parts_->view.tell({.title = "WARNING", .text = problem, .icon = Icon::exclamation});
  }
}

void LoggingWnd::arrange() {
  if (width() <= 0 || height() <= 0) return;
  const auto [portrait, scale] = screenScaleOf(width(), height());
  auto& setup = host_.setup;
  setup.portrait = setup.wideLayout = portrait;
  setup.smallScreen = scale < kSmallScale;
  if (auto* running = session()) running->setup = setup;
  setTextScale(*this, scale);
  const int panelHeight = parts_->panel->arrange({.kind = setup.kind,
                                                  .iceOption = setup.iceChosen && host_.settings.iceDisplay == 1,
                                                  .wideLayout = portrait,
                                                  .gps = host_.settings.gpsInput == 1,
                                                  .scale = scale,
                                                  .width = width()});
  const int buttonHeight = std::max(touchHeight(screen()), static_cast<int>(kButtonUnits * scale));
  const int chartHeight = std::max(1, height() - panelHeight - buttonHeight);
  parts_->panel->setGeometry(0, 0, width(), panelHeight);
  parts_->chart->setLayoutOf(portrait, scale);
  parts_->chart->setGeometry(0, panelHeight, width(), chartHeight);
  parts_->buttonRow = {0, height() - buttonHeight, width(), buttonHeight};
  placeButtons();
}

void LoggingWnd::placeButtons() {
  parts_->buttons.placeInRow(parts_->buttonRow, parts_->buttonRow.height() * kTextPercent / 100);
}

void LoggingWnd::resizeEvent(QResizeEvent*) {
  const bool wide = host_.setup.wideLayout;
  const bool small = host_.setup.smallScreen;
  arrange();
  if (!sessionActive()) return;
  // Texts and prompts have forms of their own in each layout.
  if (wide != host_.setup.wideLayout) paintPanel(parts_->run->session);
  if (wide != host_.setup.wideLayout || small != host_.setup.smallScreen) showButtons();
}

void LoggingWnd::setTheme(const Theme& theme) {
  parts_->panel->setTheme(theme);
  parts_->chart->setTheme(theme);
  parts_->buttons.setTheme(theme);
}

std::string LoggingWnd::concern() {
  if (!sessionActive()) return {};
  const auto& session = *this->session();
  if (session.pleaseWait || session.fileTrouble) return session.message;
  return session.gps.gone ? "GPS receiver gone" : "";
}

void LoggingWnd::showButtons() {
  const auto& session = parts_->run->session;
  const auto texts = buttonTexts(session, keyContextOf(session));
  parts_->focus = {.focusIndex = 0, .firstFocusIndex = 0, .buttonCount = static_cast<int>(texts.size())};
  std::vector<Action> actions;
  for (const auto text : texts) actions.push_back({.text = text});
  parts_->buttons.setActions(actions);
  placeButtons();
  parts_->panel->setLoggingState(session.loggingState);
}

void LoggingWnd::keyPressEvent(QKeyEvent* event) {
  if (!sessionActive()) return QWidget::keyPressEvent(event);
  auto& session = parts_->run->session;
  const int keyCode = keyCodeOf(event->key(), session.settings.pauseKey);
  // Of a key that is held down only the press counts, or it would start and pause in turn.
  if (keyCode == kNoKey || event->isAutoRepeat()) return;
  const int code = codeOfKey(session, parts_->focus, keyContextOf(session), keyCode);
  parts_->buttons.setHighlight(parts_->focus.focusIndex);
  if (code != kNoCode) runCode(code);
}

void LoggingWnd::keyReleaseEvent(QKeyEvent* event) {
  if (!sessionActive() || event->isAutoRepeat()) return;
  auto& session = parts_->run->session;
  keyReleased(session, keyContextOf(session), keyCodeOf(event->key(), session.settings.pauseKey));
}

bool LoggingWnd::mayClose() {
  if (!sessionActive()) return true;
  if (parts_->commandDepth > 0 || QApplication::activeModalWidget() != nullptr) return false;
  const Depth busy(parts_->commandDepth);
  auto& session = parts_->run->session;
  if (session.loggingState != kLogging) return LeaveLogging(session, false);
  if (!parts_->view.ask(Question::exitLogging, exitQuestion())) return false;
  pauseAndLeave();
  return true;
}

void LoggingWnd::leaveAtOnce() {
  parts_->ending = true;
  pauseAndLeave();
}

void LoggingWnd::pauseAndLeave() {
  if (!sessionActive()) return;
  auto& session = parts_->run->session;
  parts_->view.closeDialogs();
  if (session.loggingState == kLogging) pauseRecording(session);
  LeaveLogging(session, true);
}

}  // namespace kalmira
