#include "ui/session/logging_window.h"

#include <QApplication>
#include <QDialog>
#include <QKeyEvent>
#include <algorithm>
#include <array>
#include <utility>

#include "logging/handlers.h"
#include "logging/keys.h"
#include "logging/panel.h"
#include "platform/command_line.h"
#include "ui/screen/key_table.h"
#include "ui/screen/message_dialog.h"
#include "ui/screen/template_dialog.h"
#include "ui/screen/touch_button.h"
#include "ui/session/logging_window_parts.h"

namespace kalmira {
namespace {

constexpr int kButtonUnits = 28;
constexpr int kTextPercent = 45;  // of a button's height, for one line
constexpr double kSmallScale = 1.5;
// Signs are looked at more often than this, unless something held the window up; then so much later.
constexpr std::uint32_t kHeldUpMs = 1500;
constexpr int kMomentMs = 100;
constexpr std::uint32_t kAlarmAgainMs = 60000;
constexpr int kFlashMs = 120;
constexpr std::uint32_t kFlashAgainMs = 400;
// A window larger than the layouts: by this part in one direction, or of so many pixels a unit.
constexpr double kLargerBy = 1.05;
constexpr double kLargeScale = 3.0;
// Of such a window the chart has half, the row of buttons no more than this.
constexpr int kChartShare = 2;
constexpr int kButtonShare = 12;
constexpr double kFitUnits = 18;
constexpr double kSavingUnits = 12;
constexpr int kLowestSaving = 12;  // pixels

// Told apart by their pitch, what is wrong low and several times.
Tone toneOf(Beep sound) {
  switch (sound) {
    case Beep::reading: return {.hertz = 1047, .milliseconds = 60};
    case Beep::calibration: return {.hertz = 1568, .milliseconds = 120};
    case Beep::alarm: return {.hertz = 523, .milliseconds = 160, .times = 4};
    case Beep::linkLost: return {.hertz = 262, .milliseconds = 300, .times = 2};
  }
  return {};
}

bool isRoomy(QSize window, bool portrait, double scale) {
  if (scale < kSmallScale) return false;
  const QSizeF layout = QSizeF(portrait ? QSize(240, 320) : QSize(320, 240)) * scale * kLargerBy;
  return scale >= kLargeScale || window.width() > layout.width() || window.height() > layout.height();
}

// Messages and questions stand on top of whatever is open.
QWidget* topmost(QWidget* window) {
  auto* modal = QApplication::activeModalWidget();
  return modal != nullptr ? modal : window;
}

}  // namespace

void LoggingWnd::View::show(PanelField field, std::string_view text) { window_.parts_->panel->showText(field, text); }

void LoggingWnd::View::beep(Beep sound) { window_.parts_->tones.play(toneOf(sound)); }

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

void LoggingWnd::View::addProfilePoint(const ProfilePoint& point) {
  window_.parts_->chart->addPoint(point);
  window_.offerFit();
}

void LoggingWnd::View::redrawProfile() { window_.redrawChart(); }

void LoggingWnd::View::clearProfile() {
  window_.parts_->chart->clearChart();
  window_.offerFit();
}

void LoggingWnd::View::loggingStateChanged() {
  window_.showButtons();
  auto& session = *window_.session();
  watchSaving(session);
  window_.parts_->saving->setSigns(savingSignsOf(session));
}

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

LoggingWnd::Parts::Parts(LoggingWnd& window, const Theme& theme, SoundFactory sound)
    : view(window),
      handOver([this, &window] {
        QMetaObject::invokeMethod(
            &window, [this] { handOver.run(); }, Qt::QueuedConnection);
      }),
      panel(new PanelView(theme, &window)),
      chart(new CurveWnd(theme, &window)),
      saving(new SavingLine(theme, &window)),
      fit(new TouchButton(QStringLiteral("&Fit"), theme, &window)),
      buttons(&window, theme,
              [&window](int index) {
                if (window.sessionActive()) window.runCode(codeOfButton(*window.session(), index));
              }),
      tones(std::move(sound), [&window] {
        QMetaObject::invokeMethod(
            &window, [&window] { window.flash(); }, Qt::QueuedConnection);
      }) {
  panel->setObjectName("panel");
  chart->setObjectName("chart");
  saving->setObjectName("saving");
  fit->setObjectName("fit");
  fit->setAccessibleName(QStringLiteral("Fit the scale to what the chart shows"));
  fit->hide();
  flashTimer.setSingleShot(true);
  serviceTimer.setSingleShot(true);
}

LoggingWnd::LoggingWnd(LoggingHost host, const Theme& theme, QWidget* parent)
    : CoverWindow("LoggingWnd", "Logging", host.onLeft, parent),
      host_(std::move(host)),
      parts_(std::make_unique<Parts>(*this, theme, host_.sound)) {
  connect(&parts_->flashTimer, &QTimer::timeout, this, [this] { parts_->panel->setFlash(false); });
  connect(parts_->fit, &QPushButton::clicked, this, [this] { runCode(kFit); });
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
    if (!parts_->panel->signs().instrument.empty()) showSigns();
  });
  auto& session = parts_->run->session;
  arrange();
  const auto outcome = startSession(session);
  if (outcome != StartOutcome::started || !session.sessionActive) return outcome;
  parts_->chart->setSession(&session);
  parts_->signsTick = session.clock.tick();
  parts_->saving->setSigns(savingSignsOf(session));
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
  parts_->serviceTimer.start(static_cast<int>(std::min(msUntilService(session), msUntilOtherSigns(session))));
  // An instrument whose reading waits behind a calibration's question is not silent.
  const bool heldUp = parts_->readingDepth > 0 && parts_->askingDepth > 0;
  const bool watched = session.timer.running;
  if (heldUp) session.timer.running = false;
  serviceSession(session);
  if (heldUp) session.timer.running = watched;
  if (!heldUp) showSigns();
  if (!sessionActive() || !host_.takeSettingsProblem) return;
  if (const auto problem = host_.takeSettingsProblem(); !problem.empty()) {
    parts_->view.tell({.title = "WARNING", .text = problem, .icon = Icon::exclamation});
  }
}

// A window that was held up itself has kept records waiting: they are handled first.
void LoggingWnd::showSigns() {
  if (!sessionActive()) return;
  const auto& session = parts_->run->session;
  const auto now = session.clock.tick();
  const bool heldUp = ticksSince(now, std::exchange(parts_->signsTick, now)) > kHeldUpMs;
  if (heldUp) return parts_->serviceTimer.start(kMomentMs);
  const auto signs = linkSignsOf(session);
  const auto& before = parts_->panel->signs();
  const bool lost =
      (!signs.instrument.empty() && before.instrument.empty()) || (!signs.gps.empty() && before.gps.empty());
  if (lost) parts_->view.beep(Beep::linkLost);
  parts_->panel->setSigns(signs);
  parts_->panel->setCalibration(calibrationSignOf(session));
  parts_->saving->setSigns(savingSignsOf(session));
  alarmAboutSaving(now);
}

// When it begins, and again every minute as long as it lasts.
void LoggingWnd::alarmAboutSaving(std::uint32_t now) {
  const bool alarm = parts_->saving->signs().worst() == Urgency::alarm;
  const bool before = std::exchange(parts_->alarmed, alarm);
  if (!alarm || (before && ticksSince(now, parts_->alarmTick) < kAlarmAgainMs)) return;
  parts_->alarmTick = now;
  parts_->view.beep(Beep::alarm);
}

// In place of a sound. Not often enough to do anybody harm.
void LoggingWnd::flash() {
  if (parts_->flashTimer.isActive() || !sessionActive()) return;
  const auto now = parts_->run->session.clock.tick();
  if (ticksSince(now, parts_->flashTick) < kFlashAgainMs) return;
  parts_->flashTick = now;
  parts_->panel->setFlash(true);
  parts_->flashTimer.start(kFlashMs);
}

void LoggingWnd::offerFit() { parts_->fit->setVisible(sessionActive() && parts_->chart->offScale()); }

void LoggingWnd::redrawChart() {
  parts_->chart->redraw();
  offerFit();
}

// The chart's scale becomes that of what it shows, as if it had been entered.
void LoggingWnd::fitScale() {
  const auto fitted = parts_->chart->fitted();
  if (!fitted) return;
  auto& session = *this->session();
  const int pointCount = session.chartPointCount;
  takeEnteredScale(*fitted);
  session.chartPointCount = pointCount;  // readings may be coming: they go on where they are
}

void LoggingWnd::arrange() {
  if (width() <= 0 || height() <= 0) return;
  const auto [portrait, scale] = screenScaleOf(width(), height());
  auto& setup = host_.setup;
  setup.portrait = setup.wideLayout = portrait;
  setup.smallScreen = scale < kSmallScale;
  setTextScale(*this, scale);
  const bool roomy = isRoomy(size(), portrait, scale);
  setup.units = roomy;
  if (auto* running = session()) running->setup = setup;
  int buttonHeight = std::max(touchHeight(screen()), static_cast<int>(kButtonUnits * scale));
  if (roomy) buttonHeight = std::min(buttonHeight, std::max(touchHeight(screen()), height() / kButtonShare));
  const int savingHeight = std::max(kLowestSaving, static_cast<int>(kSavingUnits * (roomy ? 0.8 : 1.0) * scale));
  const int panelHeight =
      parts_->panel->arrange({.kind = setup.kind,
                              .iceOption = setup.iceChosen && host_.settings.iceDisplay == 1,
                              .wideLayout = portrait,
                              .gps = host_.settings.gpsInput == 1,
                              .scale = scale,
                              .width = width(),
                              .roomy = roomy,
                              .mostHeight = roomy ? height() / kChartShare - buttonHeight - savingHeight : 0});
  const int chartHeight = std::max(1, height() - panelHeight - savingHeight - buttonHeight);
  parts_->panel->setGeometry(0, 0, width(), panelHeight);
  keepInSight(*this, parts_->panel->layoutOfPanel().stateBandHeight);
  parts_->chart->setLayoutOf(portrait, scale);
  parts_->chart->setGeometry(0, panelHeight, width(), chartHeight);
  parts_->saving->setSmall(setup.smallScreen);
  parts_->saving->setGeometry(0, panelHeight + chartHeight, width(), savingHeight);
  const int finger = std::max(touchHeight(screen()), static_cast<int>(kFitUnits * scale));
  parts_->fit->setGeometry(0, panelHeight, std::min(finger * 3 / 2, width()), std::min(finger, chartHeight));
  fitTogether(std::array{parts_->fit}, finger * kTextPercent / 100);
  parts_->fit->raise();
  parts_->buttonRow = {0, height() - buttonHeight, width(), buttonHeight};
  offerFit();
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
  parts_->saving->setTheme(theme);
  parts_->fit->setTheme(theme);
  parts_->buttons.setTheme(theme);
}

std::string LoggingWnd::concern() {
  if (!sessionActive()) return {};
  const auto& session = *this->session();
  if (session.pleaseWait) return "No data from the instrument";
  if (session.fileTrouble) return session.message;
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
