#include "ui/shell/main_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QIcon>
#include <QKeyEvent>
#include <QShortcut>
#include <algorithm>
#include <utility>

#include "logging/session_start.h"
#include "ui/screen/key_table.h"
#include "ui/screen/message_dialog.h"
#include "ui/screen/screen_scale.h"
#include "ui/screen/touch_button.h"
#include "ui/shell/chooser_dialog.h"
#include "ui/shell/menu_layout.h"
#include "ui/shell/title.h"

namespace kalmira {
namespace {

constexpr int kSmallestSide = 160;
constexpr int kTextPercent = 60;  // of a button's height, for one line
constexpr int kModelKey = Qt::Key_M;
constexpr int kSettingsWatchMs = 500;
constexpr int kThemeKey = Qt::Key_N;  // night, and day again
constexpr int kFontsKey = Qt::Key_F;

QRect rectOf(const Box& box) {
  return {box.x, box.y, box.width, box.height};
}

QString textOf(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace

MainWindow::MainWindow(MainWindowHost host) : host_(std::move(host)) {
  setObjectName(QStringLiteral("PELLO"));
  setMinimumSize(kSmallestSide, kSmallestSide);
  setFocusPolicy(Qt::StrongFocus);
  uptime_exceeded_ = uptimeExceeded(host_.clock);
  makeMenu();
  useInstrument(host_.instrument);
  showTheme();
  showHighlight(0);
  setFocus();
  connect(&settings_watch_, &QTimer::timeout, this, [this] { watchSettings(); });
  settings_watch_.start(kSettingsWatchMs);
}

MainWindow::~MainWindow() = default;

void MainWindow::makeMenu() {
  menu_ = new QWidget(this);
  title_ = new TitleView(host_.instrument.kind, host_.instrument.ice, theme(), menu_);
  title_->setObjectName(QStringLiteral("title"));
  const auto addButton = [this](const QString& text, const QString& name, auto clicked) {
    auto* button = new TouchButton(text, theme(), menu_);
    button->setObjectName(name);
    connect(button, &TouchButton::clicked, this, clicked);
    return button;
  };
  const auto usable = enabled();
  for (const auto& entry : menuEntries()) {
    const auto index = static_cast<std::size_t>(entry.command);
    buttons_[index] =
        addButton(textOf(entry.text), QString::fromStdString(std::to_string(kFirstMenuIdentifier + index)),
                  [this, command = entry.command] { act(command); });
    buttons_[index]->setEnabled(usable[index]);
  }
  model_button_ =
      addButton(QStringLiteral("&Model"), QStringLiteral("model"), [this] { chooseInstrument(); });
  theme_button_ = addButton(QString(), QStringLiteral("theme"), [this] { toggleTheme(); });
  fonts_button_ = addButton(QStringLiteral("&Fonts"), QStringLiteral("fonts"), [this] { showFonts(); });
  fonts_button_->setVisible(host_.showFonts != nullptr);
  auto* fullScreenKey = new QShortcut(Qt::Key_F11, this);
  connect(fullScreenKey, &QShortcut::activated, this, [this] { toggleFullScreen(); });
}

MenuEnabled MainWindow::enabled() const {
  MenuEnabled usable{};
  for (std::size_t i = 0; i < usable.size(); ++i) usable[i] = host_.actions[i] != nullptr;
  usable[static_cast<std::size_t>(MenuCommand::monitorLog)] = true;
  usable[static_cast<std::size_t>(MenuCommand::exit)] = true;
  return usable;
}

void MainWindow::useInstrument(RememberedKind instrument) {
  logging_.reset();  // before what it refers to is replaced
  host_.instrument = instrument;
  auto loggingHost = host_.open(instrument);
  take_settings_problem_ = loggingHost.takeSettingsProblem;
  loggingHost.onLeft = [this] { showMenu(); };
  loggingHost.endProgram = host_.endProgram;
  logging_ = std::make_unique<LoggingWnd>(std::move(loggingHost), theme(), this);
  logging_->setGeometry(rect());
  title_->setInstrument(instrument.kind, instrument.ice);
  setWindowTitle(textOf(instrumentOf(instrument.kind).title));
}

void MainWindow::showTheme() {
  QApplication::setPalette(paletteOf(theme()));
  title_->setTheme(theme());
  for (auto* button : buttons_) button->setTheme(theme());
  model_button_->setTheme(theme());
  theme_button_->setTheme(theme());
  fonts_button_->setTheme(theme());
  // Says what pressing it gives.
  theme_button_->setText(host_.night ? QStringLiteral("Day") : QStringLiteral("&Night"));
  logging_->setTheme(theme());
}

void MainWindow::showHighlight(int index) {
  highlight_ = index;
  for (int i = 0; i < kMenuCommands; ++i) buttons_[static_cast<std::size_t>(i)]->setDefault(i == index);
}

void MainWindow::showMenu() {
  settings_watch_.start(kSettingsWatchMs);
  menu_->show();
  setFocus();
  // Told once the session is through with leaving; to a program that ends, no more.
  QMetaObject::invokeMethod(
      this, [this] { tellSettingsProblem(); }, Qt::QueuedConnection);
}

void MainWindow::cover(QWidget* window) {
  cover_ = window;
  menu_->setVisible(window == nullptr);
  (window == nullptr ? this : window)->setFocus();
}

void MainWindow::layOut() {
  QFont texts = font();
  texts.setPixelSize(dialogTextPixels(screenScaleOf(width(), height()).scale));
  setFont(texts);
  menu_->setGeometry(rect());
  logging_->setGeometry(rect());
  const auto layout = layOutMenu(width(), height(), touchHeight(screen()));
  title_->setGeometry(rectOf(layout.title));
  for (std::size_t i = 0; i < buttons_.size(); ++i) buttons_[i]->setGeometry(rectOf(layout.buttons[i]));
  model_button_->setGeometry(rectOf(layout.model));
  theme_button_->setGeometry(rectOf(layout.theme));
  fonts_button_->setGeometry(rectOf(layout.fonts));
  fitTogether(buttons_, layout.buttons[0].height * kTextPercent / 100);
}

void MainWindow::resizeEvent(QResizeEvent*) {
  layOut();
}

// The window is to be seen first; what has to be told comes then.
void MainWindow::paintEvent(QPaintEvent*) {
  if (std::exchange(painted_, true)) return;
  QMetaObject::invokeMethod(
      this, [this] { afterFirstPaint(); }, Qt::QueuedConnection);
}

void MainWindow::afterFirstPaint() {
  if (uptime_exceeded_) {
    tellMessage(this, uptimeMessage());
    host_.endProgram();
    return;
  }
  setWindowIcon(QIcon(programEmblem()));
  tellSettingsProblem();
}

// A settings file is written by a thread of its own: that it could not be is known only some time after a
// dialog was left.
void MainWindow::watchSettings() {
  const bool busy = acting_ || logging_->sessionActive() || QApplication::activeModalWidget() != nullptr;
  if (painted_ && !busy) tellSettingsProblem();
}

void MainWindow::tellSettingsProblem() {
  if (!take_settings_problem_) return;
  const auto problem = take_settings_problem_();
  if (!problem.empty()) tellMessage(this, {.title = "WARNING", .text = problem, .icon = Icon::exclamation});
}

bool MainWindow::focusNextPrevChild(bool) {
  return false;  // Tab is a key of the menu
}

void MainWindow::keyPressEvent(QKeyEvent* event) {
  const auto others = event->modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier);
  if (logging_->sessionActive() || cover_ != nullptr || others != Qt::NoModifier)
    return QWidget::keyPressEvent(event);
  const int keyCode = keyCodeOf(event->key(), 0);
  if (!event->isAutoRepeat() && keyCode == kModelKey) return chooseInstrument();
  if (!event->isAutoRepeat() && keyCode == kThemeKey) return toggleTheme();
  if (!event->isAutoRepeat() && keyCode == kFontsKey) return showFonts();
  const auto step = stepOfKey(keyCode, highlight_, enabled());
  // A key that is held down moves the highlight on, but acts once.
  if (event->isAutoRepeat() && step.act) return;
  showHighlight(step.highlight);
  if (step.act) act(*step.act);
}

void MainWindow::act(MenuCommand command) {
  if (acting_ || cover_ != nullptr || logging_->sessionActive()) return;
  showHighlight(static_cast<int>(command));
  if (command == MenuCommand::exit) {
    close();
    return;
  }
  acting_ = true;
  if (command == MenuCommand::monitorLog) {
    startSession();
  } else if (const auto& action = host_.actions[static_cast<std::size_t>(command)]) {
    action(this);
  }
  acting_ = false;
  if (!logging_->sessionActive() && cover_ == nullptr) setFocus();
}

void MainWindow::startSession() {
  if (host_.sessionBegins) host_.sessionBegins();
  switch (logging_->startLogging()) {
    case StartOutcome::started:
      // A session may have been left again while it was being started.
      if (!logging_->sessionActive()) break;
      menu_->hide();
      settings_watch_.stop();  // the session looks after it itself
      break;
    case StartOutcome::uptimeExceeded:
      host_.endProgram();
      break;
    case StartOutcome::refused:
      break;
  }
}

void MainWindow::chooseInstrument() {
  if (acting_ || logging_->sessionActive()) return;
  acting_ = true;
  const auto chosen = runChooserDialog(this, theme(), host_.instrument);
  if (chosen && (chosen->kind != host_.instrument.kind || chosen->ice != host_.instrument.ice)) {
    useInstrument(*chosen);
    if (host_.rememberInstrument) host_.rememberInstrument(*chosen);
    tellSettingsProblem();
  }
  acting_ = false;
  setFocus();
}

void MainWindow::toggleTheme() {
  host_.night = !host_.night;
  showTheme();
  if (host_.rememberNight) host_.rememberNight(host_.night);
}

void MainWindow::showFonts() {
  if (!host_.showFonts || acting_ || cover_ != nullptr || logging_->sessionActive()) return;
  host_.showFonts(this);
}

void MainWindow::toggleFullScreen() {
  setWindowState(windowState() ^ Qt::WindowFullScreen);
}

void MainWindow::bringToFront() {
  setWindowState(windowState() & ~Qt::WindowMinimized);
  show();
  raise();
  activateWindow();
}

void MainWindow::endAtOnce() {
  logging_->leaveAtOnce();
  host_.endProgram();
}

void MainWindow::closeEvent(QCloseEvent* event) {
  if (!logging_->mayClose()) {
    event->ignore();
    return;
  }
  event->accept();
  host_.endProgram();
}

}  // namespace kalmira
