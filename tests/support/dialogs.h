#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPointer>
#include <QPushButton>
#include <QScrollArea>
#include <QTest>
#include <QTimer>
#include <functional>
#include <set>
#include <utility>

#include "settings/settings.h"
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

// Acts in a dialog that only later opens and keeps its caller waiting. One that never comes or stays open fails.
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
    if (auto* popup = QApplication::activePopupWidget()) popup->close();
    auto* open = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (open == nullptr) return;
    ADD_FAILURE() << "left open: " << open->windowTitle().toStdString();
    open->reject();
    look();
  }

  static constexpr int kLookMs = 5;
  static constexpr int kMostLooks = 8000;  // forty seconds: a sanitized build on a loaded machine
  QString title_;
  Act act_;
  QObject context_;
  int looks_ = 0;
  bool acted_ = false;
};

// A button of a message box. A question that comes by itself is deaf at first.
inline QPushButton& buttonOf(const QWidget& window, const QString& text);
inline DialogActor::Act answered(const char* which) {
  return [which](QDialog& dialog) {
    const QPointer<QDialog> box(&dialog);
    while (box && box->isVisible()) {
      QTest::mouseClick(&buttonOf(*box, which), Qt::LeftButton);
      QTest::qWait(20);
    }
  };
}
// What a message says, its lines as they stand in the box.
inline std::string messageOf(const QDialog& box) {
  QStringList lines;
  for (const auto* label : box.findChildren<QLabel*>("text")) {
    lines += label->text().remove(QChar(0x200B)).replace(QChar::Nbsp, ' ');
  }
  return lines.join('\n').toStdString();
}

// Reads a message and takes note by Enter.
inline DialogActor::Act noted(std::string& text) {
  return [&text](QDialog& dialog) {
    text = messageOf(dialog);
    QTest::keyClick(&dialog, Qt::Key_Return);
  };
}
// The menu that opens next gets a key; `texts` is what it offers.
inline void pressInMenu(Qt::Key key, QStringList* texts = nullptr) {
  QTimer::singleShot(5, [key, texts] {
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    if (menu == nullptr) return pressInMenu(key, texts);
    for (const auto* action : menu->actions()) {
      if (texts != nullptr) *texts << action->text();
    }
    QTest::keyClick(menu, key);
  });
}

// What stands on the visible buttons of a window, or on the marked one alone, which Enter presses.
inline std::vector<std::string> buttonsOf(const QWidget& window, bool marked = false) {
  std::vector<std::string> out;
  for (const auto* each : window.findChildren<QPushButton*>()) {
    if (each->isVisible() && (!marked || each->isDefault())) out.push_back(each->text().toStdString());
  }
  return out;
}
inline std::string markedOf(const QWidget& window) {
  const auto marked = buttonsOf(window, true);
  EXPECT_LE(marked.size(), 1U) << "two buttons are marked";
  return marked.empty() ? "" : marked[0];
}
// The button with that text, one that is seen where there are several.
inline QPushButton& buttonOf(const QWidget& window, const QString& text) {
  QPushButton* found = nullptr;
  for (auto* each : window.findChildren<QPushButton*>()) {
    const bool named = each->text() == text || each->text().remove('&') == text;
    if (named && (found == nullptr || each->isVisible())) found = each;
  }
  EXPECT_NE(found, nullptr) << "no button " << text.toStdString();
  return found == nullptr ? *new QPushButton : *found;
}
inline void tapButton(const QWidget& window, const QString& text) {
  QTest::mouseClick(&buttonOf(window, text), Qt::LeftButton);
}

inline void tap(QWidget& dialog, const char* button) {
  QTest::mouseClick(dialog.findChild<QAbstractButton*>(QLatin1String(button)), Qt::LeftButton);
}
inline void tapOk(QDialog& dialog) { tap(dialog, "ok"); }
inline void tapCancel(QDialog& dialog) { tap(dialog, "cancel"); }
inline void press(QDialog& dialog, Qt::Key key) { QTest::keyClick(dialog.focusWidget(), key); }
inline QComboBox& list(const QDialog& dialog, const char* name) { return part<QComboBox>(dialog, name); }
// "entry|entry=what is chosen"
inline std::string entriesOf(const QDialog& dialog, const char* name) {
  const auto& box = list(dialog, name);
  QStringList texts;
  for (int i = 0; i < box.count(); ++i) texts << box.itemText(i);
  return (texts.join('|') + '=' + box.currentText()).toStdString();
}
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
// "name=value|name=value"
inline std::vector<std::pair<std::string, std::string>> pairsOf(const std::string& text) {
  std::vector<std::pair<std::string, std::string>> pairs;
  for (const auto& each : QString::fromStdString(text).split('|'))
    pairs.emplace_back(each.section('=', 0, 0).toStdString(), each.section('=', 1).toStdString());
  return pairs;
}
// Fields are typed into, lists go to the entry that begins so.
inline void fill(const QDialog& dialog, const std::string& texts) {
  for (const auto& [name, text] : pairsOf(texts)) {
    const auto* box = dialog.findChild<QComboBox*>(name.c_str());
    if (box != nullptr) choose(dialog, name.c_str(), box->findText(text.c_str(), Qt::MatchStartsWith));
    if (box == nullptr) type(dialog, name.c_str(), text.c_str());
  }
}
// What a control shows, and whether it is greyed; "" where it is not to be seen.
inline std::string textOf(const QDialog& dialog, const std::string& name) {
  const auto* widget = dialog.findChild<QWidget*>(name.c_str());
  if (widget == nullptr || !widget->isVisible()) return "";
  const auto text = widget->property(widget->inherits("QComboBox") ? "currentText" : "text").toString();
  return text.toStdString() + (widget->isEnabled() ? "" : " (greyed)");
}
inline void shows(const QDialog& dialog, const std::string& texts) {
  for (const auto& [name, text] : pairsOf(texts)) EXPECT_EQ(textOf(dialog, name), text) << name;
}

// Settings by their names; the others are those of a new logger.
inline Settings settingsOf(const std::string& values) {
  Settings settings;
  for (const auto& [name, value] : pairsOf(values)) {
    const auto found = findField(name);
    EXPECT_TRUE(found) << name;
    if (found) setFieldText(settings, *found->field, found->index, value);
  }
  return settings;
}
inline void expectSettings(const std::optional<Settings>& settings, const std::string& values) {
  ASSERT_TRUE(settings);
  for (const auto& [name, value] : pairsOf(values)) {
    const auto found = findField(name).value();
    EXPECT_EQ(fieldText(*settings, *found.field, found.index), value) << name;
  }
}

// Nothing overlaps or leaves its place.
inline void expectApart(const QRect& place, const std::vector<QRect>& rects) {
  for (std::size_t i = 0; i < rects.size(); ++i) {
    EXPECT_TRUE(place.contains(rects[i])) << i;
    for (std::size_t j = 0; j < i; ++j) EXPECT_FALSE(rects[i].intersects(rects[j])) << i << " on " << j;
  }
}

// Within its window, nothing cut, and Tab brings every control in sight, as high as a finger. `whole`: all at once.
inline void expectFits(QDialog& dialog, bool whole = false) {
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
    const QSize needed = label->wordWrap() ? QSize(0, label->heightForWidth(label->width())) : label->sizeHint();
    EXPECT_EQ(label->size().expandedTo(needed), label->size()) << label->text().toStdString() << " is cut";
  }
  std::set<const QWidget*> met;
  ASSERT_NE(dialog.focusWidget(), nullptr);
  for (auto* now = dialog.focusWidget(); met.insert(now).second; now = dialog.focusWidget()) {
    const auto name = now->objectName().toStdString();
    EXPECT_GE(now->height(), touchHeight(nullptr)) << name;
    EXPECT_GE(2 * now->visibleRegion().boundingRect().height(), now->height()) << name << " is hidden";
    QTest::keyClick(now, Qt::Key_Tab);
  }
  for (const auto* control : dialog.findChildren<QWidget*>()) {
    const auto name = control->objectName();
    const bool owes =
        control->isVisible() && control->isEnabled() && !name.isEmpty() && !name.startsWith("qt_") &&
        (control->focusPolicy() & Qt::TabFocus) != 0 &&
        (control->inherits("QAbstractButton") || control->inherits("QLineEdit") || control->inherits("QComboBox"));
    EXPECT_TRUE(!owes || met.count(control) == 1) << name.toStdString() << " is out of reach";
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
