#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QScrollArea>
#include <QTest>
#include <QTimer>
#include <functional>
#include <utility>

#include "ui/screen/template_dialog.h"
#include "ui/screen/touch_button.h"

namespace kalmira {

// What stands open, by its title; nullptr when there is no such thing.
inline QDialog* openDialog(const QString& title) {
  for (auto* widget : QApplication::topLevelWidgets()) {
    auto* dialog = qobject_cast<QDialog*>(widget);
    if (dialog != nullptr && dialog->isVisible() && dialog->windowTitle() == title) return dialog;
  }
  return nullptr;
}

// Does something with a dialog that will only open, and keep its caller waiting, later: made before the
// command that opens it. A dialog that never comes, or is left open, fails the test and does not hang it.
class DialogActor {
 public:
  using Act = std::function<void(QDialog&)>;
  DialogActor(QString title, Act act) : title_(std::move(title)), act_(std::move(act)) { look(); }
  DialogActor(QString title, Qt::Key key)
      : DialogActor(std::move(title), [key](QDialog& dialog) {
          QTest::keyClick(dialog.focusWidget() != nullptr ? dialog.focusWidget() : &dialog, key);
        }) {}
  ~DialogActor() { EXPECT_TRUE(acted_) << "never opened: " << title_.toStdString(); }
  DialogActor(const DialogActor&) = delete;
  DialogActor& operator=(const DialogActor&) = delete;

 private:
  // A timer a look: one that waits in a dialog must not keep the next from coming.
  void look() {
    QTimer::singleShot(kLookMs, &context_, [this] {
      if (acted_ && ++looks_ < kMostLooks) return look();
      if (looks_++ >= kMostLooks) return giveUp();
      look();
      auto* dialog = openDialog(title_);
      if (dialog == nullptr) return;
      acted_ = true;
      EXPECT_TRUE(QTest::qWaitForWindowActive(dialog));
      act_(*dialog);
    });
  }
  void giveUp() {
    auto* open = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (open == nullptr) return;
    ADD_FAILURE() << "left open: " << open->windowTitle().toStdString();
    open->reject();
    look();
  }

  static constexpr int kLookMs = 5;
  static constexpr int kMostLooks = 2000;  // ten seconds
  QString title_;
  Act act_;
  QObject context_;
  int looks_ = 0;
  bool acted_ = false;
};

// A button of a message box. A question that comes by itself is deaf at first.
inline DialogActor::Act answered(QMessageBox::StandardButton which) {
  return [which](QDialog& dialog) {
    const QPointer<QMessageBox> box(qobject_cast<QMessageBox*>(&dialog));
    ASSERT_NE(box, nullptr) << dialog.windowTitle().toStdString();
    while (box && box->isVisible()) {
      QTest::mouseClick(box->button(which), Qt::LeftButton);
      QTest::qWait(20);
    }
  };
}

inline void tap(QWidget& dialog, const char* button) {
  QTest::mouseClick(dialog.findChild<QAbstractButton*>(QLatin1String(button)), Qt::LeftButton);
}
inline void tapOk(QDialog& dialog) { tap(dialog, "ok"); }
inline void tapCancel(QDialog& dialog) { tap(dialog, "cancel"); }
inline void press(QDialog& dialog, Qt::Key key) { QTest::keyClick(dialog.focusWidget(), key); }
inline QComboBox& list(const QDialog& dialog, const char* name) { return part<QComboBox>(dialog, name); }
// Goes to an entry of a list as fingers on a keypad do.
inline void choose(const QDialog& dialog, const char* name, int position) {
  auto& box = list(dialog, name);
  box.setFocus();
  QTest::keyClick(&box, Qt::Key_Home);
  for (int i = 0; i < position; ++i) QTest::keyClick(&box, Qt::Key_Down);
  EXPECT_EQ(box.currentIndex(), position) << name;
}
// Over what stands there, key by key.
inline void type(const QDialog& dialog, const char* field, const char* text) {
  auto& edit = part<QLineEdit>(dialog, field);
  edit.setFocus();
  edit.selectAll();
  QTest::keyClick(&edit, Qt::Key_Delete);
  QTest::keyClicks(&edit, QString::fromUtf8(text));
}
inline std::string fieldText(const QDialog& dialog, const char* field) {
  return part<QLineEdit>(dialog, field).text().toStdString();
}
inline std::string labelText(const QDialog& dialog, const char* label) {
  return part<QLabel>(dialog, label).text().toStdString();
}

// What every dialog of the program's own owes the operator: it stays within its window; its buttons are seen,
// and Tab brings every other control in sight, each as high as a finger; nothing is wider than there is room
// for, and no label is cut. `whole`: all is seen at once.
inline void expectFits(QDialog& dialog, bool whole = false) {
  const auto nameOf = [](const QWidget& widget) { return widget.objectName().toStdString(); };
  EXPECT_TRUE(dialog.parentWidget()->window()->frameGeometry().contains(dialog.frameGeometry()))
      << dialog.width() << " x " << dialog.height();
  for (const auto* area : dialog.findChildren<QScrollArea*>()) {
    if (area->widget()->objectName() != "form") continue;
    EXPECT_LE(area->widget()->width(), area->viewport()->width()) << "cut at the right";
    EXPECT_TRUE(!whole || area->widget()->height() <= area->viewport()->height()) << "not seen at once";
  }
  for (const char* name : {"ok", "cancel"}) {
    const auto& button = part<QPushButton>(dialog, name);
    EXPECT_EQ(button.visibleRegion(), QRegion(button.rect())) << name;
  }
  for (const auto* label : dialog.findChildren<QLabel*>()) {
    if (!label->isVisible()) continue;
    const bool wraps = label->wordWrap();
    EXPECT_GE(label->width(), wraps ? 0 : label->sizeHint().width()) << label->text().toStdString();
    EXPECT_GE(label->height(), wraps ? label->heightForWidth(label->width()) : label->sizeHint().height())
        << label->text().toStdString();
  }
  std::vector<const QWidget*> met;
  auto* first = dialog.focusWidget();
  ASSERT_NE(first, nullptr);
  for (auto* now = first; met.empty() || now != first; now = dialog.focusWidget()) {
    met.push_back(now);
    EXPECT_GE(now->height(), touchHeight(nullptr)) << nameOf(*now);
    EXPECT_GE(2 * now->visibleRegion().boundingRect().height(), now->height()) << nameOf(*now) << " is hidden";
    QTest::keyClick(now, Qt::Key_Tab);
    ASSERT_LT(met.size(), 60U);
  }
  for (const auto* control : dialog.findChildren<QWidget*>()) {
    const bool owes =
        control->isVisible() && control->isEnabled() && !control->objectName().isEmpty() &&
        (control->focusPolicy() & Qt::TabFocus) != 0 &&
        (qobject_cast<const QAbstractButton*>(control) != nullptr ||
         qobject_cast<const QLineEdit*>(control) != nullptr || qobject_cast<const QComboBox*>(control) != nullptr);
    if (!owes || control->objectName().startsWith("qt_")) continue;
    EXPECT_NE(std::find(met.begin(), met.end(), control), met.end()) << nameOf(*control) << " is out of reach";
  }
}

// A small window and the settings that its dialogs are run on.
struct DialogTest : testing::Test {
  explicit DialogTest(QSize size = {240, 320}) {
    window.resize(size);
    window.show();
  }
  // Runs a dialog, looks whether it fits, and acts in it.
  template <class Run>
  static auto in(const char* title, const DialogActor::Act& act, const Run& run) {
    const DialogActor actor(title, [&act](QDialog& dialog) {
      expectFits(dialog);
      act(dialog);
    });
    return run();
  }

  QWidget window;
};

}  // namespace kalmira
