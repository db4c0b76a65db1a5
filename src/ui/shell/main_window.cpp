#include "ui/shell/main_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QShortcut>
#include <utility>

#include "logging/session_link.h"
#include "ui/screen/cover_window.h"
#include "ui/screen/key_table.h"
#include "ui/screen/message_dialog.h"
#include "ui/screen/touch_button.h"
#include "ui/shell/chooser_dialog.h"
#include "ui/shell/title.h"

namespace kalmira {
namespace {

constexpr int kSmallestSide = 160;
constexpr int kTextPercent = 60;  // of a button's height, for one line
constexpr int kModelKey = Qt::Key_M;
constexpr int kSettingsWatchMs = 500;
constexpr int kThemeKey = Qt::Key_N;  // night, and day again
constexpr int kFontsKey = Qt::Key_F;

}  // namespace

MainWindow::MainWindow(MainWindowHost host)
    : host_(std::move(host)),
      menu_(new QWidget(this)),
      commands_(menu_, theme(), [this](int index) { act(static_cast<MenuCommand>(index)); }) {
  setObjectName(QStringLiteral("PELLO"));
  setMinimumSize(kSmallestSide, kSmallestSide);
  setFocusPolicy(Qt::StrongFocus);
  uptime_exceeded_ = uptimeExceeded(host_.clock);
  makeMenu();
  useInstrument(host_.instrument);
  showTheme();
  setFocus();
  connect(&settings_watch_, &QTimer::timeout, this, [this] { watchSettings(); });
  settings_watch_.start(kSettingsWatchMs);
}

MainWindow::~MainWindow() = default;

void MainWindow::makeMenu() {
  title_ = new TitleView(host_.instrument.kind, host_.instrument.ice, theme(), menu_);
  title_->setObjectName(QStringLiteral("title"));
  commands_.setActions(menuEntries());
  for (int i = 0; i < kMenuCommands; ++i) {
    const auto command = static_cast<MenuCommand>(i);
    const bool own = command == MenuCommand::monitorLog || command == MenuCommand::exit;
    commands_.setUsable(i, own || host_.actions[static_cast<std::size_t>(i)] != nullptr);
  }
  const auto addButton = [this](const QString& text, const QString& name, auto clicked) {
    auto* button = new TouchButton(text, theme(), menu_);
    button->setObjectName(name);
    connect(button, &TouchButton::clicked, this, clicked);
    return button;
  };
  model_button_ = addButton(QStringLiteral("&Model"), QStringLiteral("model"), [this] { chooseInstrument(); });
  theme_button_ = addButton(QString(), QStringLiteral("theme"), [this] { toggleTheme(); });
  auto* fullScreenKey = new QShortcut(Qt::Key_F11, this);
  connect(fullScreenKey, &QShortcut::activated, this, [this] { toggleFullScreen(); });
}

void MainWindow::useInstrument(RememberedKind instrument) {
  logging_.reset();  // before what it refers to is replaced
  host_.instrument = instrument;
  auto loggingHost = host_.open(instrument);
  take_settings_problem_ = loggingHost.takeSettingsProblem;
  loggingHost.onLeft = [this] { showMenu(); };
  loggingHost.endProgram = host_.endProgram;
  logging_ = std::make_unique<LoggingWnd>(std::move(loggingHost), theme(), this);
  title_->setInstrument(instrument.kind, instrument.ice);
  setWindowTitle(qtText(instrumentOf(instrument.kind).title));
}

void MainWindow::showTheme() {
  QApplication::setPalette(paletteOf(theme()));
  title_->setTheme(theme());
  commands_.setTheme(theme());
  for (auto* button : {model_button_, theme_button_}) button->setTheme(theme());
  // Says what pressing it gives.
  theme_button_->setText(host_.night ? QStringLiteral("Day") : QStringLiteral("&Night"));
  logging_->setTheme(theme());
}

void MainWindow::showMenu() {
  settings_watch_.start(kSettingsWatchMs);
  if (cover_ == nullptr) {
    menu_->show();
    setFocus();
  }
  // Told once the session is through with leaving; to a program that ends, no more.
  QMetaObject::invokeMethod(
      this, [this] { tellSettingsProblem(); }, Qt::QueuedConnection);
}

void MainWindow::cover(QWidget* window) {
  cover_ = window;
  // A session below goes on, and would take the keys after each question.
  logging_->setFocusProxy(window);
  menu_->setVisible(window == nullptr && !logging_->sessionActive());
  QWidget* shown = logging_->sessionActive() ? static_cast<QWidget*>(logging_.get()) : this;
  (window == nullptr ? shown : window)->setFocus();
}

void MainWindow::arrange() {
  setTextScale(*this, screenScaleOf(width(), height()).scale);
  menu_->setGeometry(rect());
  const auto layout = layOutMenu(width(), height(), touchHeight(screen()));
  title_->setGeometry(layout.title);
  model_button_->setGeometry(layout.model);
  theme_button_->setGeometry(layout.theme);
  commands_.place(layout.buttons, layout.buttons[0].height() * kTextPercent / 100);
}

void MainWindow::resizeEvent(QResizeEvent*) { arrange(); }

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
  QApplication::setWindowIcon(programIcon());
  tellSettingsProblem();
}

// A settings file is written by a thread of its own: that it could not be is known only some time after a dialog was
// left.
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
  if (logging_->sessionActive() || cover_ != nullptr || others != Qt::NoModifier) return QWidget::keyPressEvent(event);
  const int keyCode = keyCodeOf(event->key());
  // A key that is held down moves the highlight on, but acts once.
  if (commands_.moveByKey(keyCode) || event->isAutoRepeat()) return;
  if (const auto index = commands_.pressedBy(keyCode)) return act(static_cast<MenuCommand>(*index));
  if (keyCode == kModelKey) return chooseInstrument();
  if (keyCode == kThemeKey) return toggleTheme();
  if (keyCode == kFontsKey) return showFonts();
}

void MainWindow::act(MenuCommand command) {
  if (acting_ || cover_ != nullptr || logging_->sessionActive()) return;
  commands_.setHighlight(static_cast<int>(command));
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
    case StartOutcome::uptimeExceeded: host_.endProgram(); break;
    case StartOutcome::refused: break;
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

void MainWindow::toggleFullScreen() { setWindowState(windowState() ^ Qt::WindowFullScreen); }

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
