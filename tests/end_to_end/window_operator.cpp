#include "end_to_end/window_operator.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QTest>
#include <QTimer>

#include "settings/settings_file.h"
#include "ui/session/panel_view.h"
#include "ui/shell/program.h"

namespace kalmira {
namespace {

constexpr int kLookMs = 10;

// Who gets the keys. Where a dialog has closed, a desktop makes its window the active one again; here there
// is no desktop.
QWidget* receiver(QWidget& window) {
  window.activateWindow();
  EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
  auto* focus = QApplication::focusWidget();
  return focus != nullptr ? focus : &window;
}

MainWindow* mainWindow() {
  for (auto* widget : QApplication::topLevelWidgets()) {
    auto* window = dynamic_cast<MainWindow*>(widget);
    if (window != nullptr && window->isVisible()) return window;
  }
  return nullptr;
}

QDialog* openDialog(const QWidget& window, const QString& title) {
  for (auto* dialog : window.findChildren<QDialog*>()) {
    if (dialog->isVisible() && dialog->windowTitle() == title) return dialog;
  }
  return nullptr;
}

// Whatever keeps the operator waiting is shut, so that a test fails instead of hanging.
void shutWhatIsOpen() {
  if (auto* popup = QApplication::activePopupWidget()) popup->close();
  if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
    ADD_FAILURE() << "left open: " << dialog->windowTitle().toStdString();
    dialog->reject();
  }
}

// `open` keeps its caller waiting; meanwhile `act` is tried again and again until it says that it has acted.
void meanwhile(const std::function<void()>& open, const std::function<bool()>& act) {
  bool acting = false;
  bool acted = false;
  QTimer look;
  QTimer patience;
  QObject::connect(&look, &QTimer::timeout, [&] {
    if (acting || acted) return;
    acting = true;
    acted = act();
    acting = false;
    if (acted) look.stop();
  });
  QObject::connect(&patience, &QTimer::timeout, [] { shutWhatIsOpen(); });
  look.start(kLookMs);
  patience.start(kPatienceMs);
  open();
  EXPECT_TRUE(acted) << "it never opened";
}

void tapIn(const QDialog& dialog, const QString& button) {
  for (auto* each : dialog.findChildren<QPushButton*>()) {
    if (each->isVisible() && QString(each->text()).remove('&') == button)
      return QTest::mouseClick(each, Qt::LeftButton);
  }
  ADD_FAILURE() << "there is no button " << button.toStdString();
}

}  // namespace

bool comes(const std::function<bool()>& happened) {
  // What comes after a failure is not waited for.
  return testing::Test::HasFailure() ? happened() : QTest::qWaitFor(happened, kPatienceMs);
}

std::string Operator::text(PanelField field) {
  return dynamic_cast<PanelView*>(window_.findChild<QWidget*>(QStringLiteral("panel")))->text(field);
}

void Operator::sees(PanelField field, std::string_view start) {
  EXPECT_TRUE(comes([&] { return text(field).starts_with(start); }))
      << panelFieldName(field) << " shows \"" << text(field) << "\", not \"" << start << '"';
}

void Operator::sends(const Device& device, std::string_view record, std::string_view start, PanelField field,
                     bool waking) {
  ASSERT_TRUE(waking || !text(field).starts_with(start)) << "a new reading could not be told from the last";
  ASSERT_TRUE(device.send(record));
  constexpr int kTryAgainMs = 5000;
  const auto shown = [&] { return text(field).starts_with(start); };
  if (waking && !QTest::qWaitFor(shown, kTryAgainMs)) (void)device.send(record);
  sees(field, start);
}

void Operator::command(Qt::Key key, const QString& button) { by_touch_ ? tap(button) : press(key); }
void Operator::press(Qt::Key key) { QTest::keyClick(receiver(window_), key); }
void Operator::hold(Qt::Key key) { QTest::keyPress(receiver(window_), key); }
void Operator::release(Qt::Key key) { QTest::keyRelease(receiver(window_), key); }

void Operator::tap(const QString& button) {
  for (auto* each : window_.findChildren<QPushButton*>()) {
    if (!each->isVisible() || each->text() != button) continue;
    // Taps in a row, at one place, are not meant as double taps.
    QTest::qWait(QApplication::doubleClickInterval() + kLookMs);
    return QTest::mouseClick(each, Qt::LeftButton);
  }
  ADD_FAILURE() << "there is no button " << button.toStdString();
}

void Operator::answers(const QString& title, const std::function<void()>& open,
                       const std::function<void(QDialog&)>& act) {
  SCOPED_TRACE(title.toStdString());
  meanwhile(open, [&] {
    auto* dialog = openDialog(window_, title);
    if (dialog == nullptr) return false;
    EXPECT_TRUE(QTest::qWaitForWindowActive(dialog));
    act(*dialog);
    return true;
  });
  EXPECT_EQ(openDialog(window_, title), nullptr);
}

void Operator::answers(const QString& title, const std::function<void()>& open, const QString& button) {
  answers(title, open, [&](QDialog& box) { tapIn(box, button); });
}

void Operator::fills(const QString& title, const std::function<void()>& open, const Fields& fields,
                     const QString& button) {
  answers(title, open, [&](QDialog& dialog) {
    for (const auto& [name, text] : fields) {
      auto* field = dialog.findChild<QWidget*>(QLatin1String(name));
      ASSERT_NE(field, nullptr) << name;
      if (auto* box = qobject_cast<QComboBox*>(field)) {
        box->setCurrentIndex(box->findText(text, Qt::MatchStartsWith));
        continue;
      }
      QTest::mouseClick(field, Qt::LeftButton);
      QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
      QTest::keyClicks(field, text);
    }
    if (by_touch_) return tapIn(dialog, button);
    auto* focus = dialog.focusWidget();
    QTest::keyClick(focus != nullptr ? focus : &dialog, Qt::Key_Return);
  });
}

std::function<void()> Operator::commands(Qt::Key key, const QString& button) {
  return [this, key, button] { command(key, button); };
}

std::function<void()> Operator::chooses(Qt::Key key) {
  return [this, key] {
    meanwhile(commands(Qt::Key_M, "&Menu"), [key] {
      auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
      if (menu != nullptr) QTest::keyClick(menu, key);
      return menu != nullptr;
    });
  };
}

Machine::Machine(Kind kind, const Settings& settings) {
  QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                     QString::fromStdString((folder.path() / "config").string()));
  options.kind = kind;
  options.root = folder.path() / "Kalmira";
  options.tickBase = TickBase::program;
  EXPECT_EQ(saveSettings({.kind = kind, .root = options.root}, settings), "");
}

int Machine::run(const std::function<void(Operator&)>& work, bool byTouch) {
  QApplication::setDoubleClickInterval(kLookMs);
  QTimer::singleShot(0, [&work, byTouch] {
    EXPECT_TRUE(comes([] { return mainWindow() != nullptr && mainWindow()->isActiveWindow(); }));
    auto* window = mainWindow();
    if (window == nullptr) return QCoreApplication::exit(-1);
    Operator person(*window, byTouch);
    work(person);
    if (mainWindow() == nullptr) return;
    ADD_FAILURE() << "the program goes on";
    shutWhatIsOpen();
    window->endAtOnce();
  });
  return runProgram(options);
}

Settings Machine::savedSettings() const {
  Settings settings;
  EXPECT_EQ(loadSettings({.kind = *options.kind, .root = options.root}, settings).how, SettingsLoad::loaded);
  return settings;
}

}  // namespace kalmira
