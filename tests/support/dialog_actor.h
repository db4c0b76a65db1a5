#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QTest>
#include <QTimer>
#include <functional>
#include <utility>

namespace kalmira {

// Does something with a dialog that will only open, and keep its caller waiting, later: as soon as one of
// that title is to be seen below `parent`. A dialog that never comes, or is left open, fails the test and
// does not hang it.
class DialogActor {
 public:
  DialogActor(QWidget& parent, QString title, std::function<void(QDialog&)> act)
      : parent_(parent), title_(std::move(title)), act_(std::move(act)) {
    QObject::connect(&watch_, &QTimer::timeout, &watch_, [this] { look(); });
    watch_.start(5);
  }
  ~DialogActor() { EXPECT_TRUE(acted_) << "never opened: " << title_.toStdString(); }
  DialogActor(const DialogActor&) = delete;
  DialogActor& operator=(const DialogActor&) = delete;

 private:
  void look() {
    if (++looks_ > kMostLooks) return giveUp();
    if (acted_) return;
    for (auto* dialog : parent_.findChildren<QDialog*>()) {
      if (!dialog->isVisible() || dialog->windowTitle() != title_) continue;
      acted_ = true;
      EXPECT_TRUE(QTest::qWaitForWindowActive(dialog));
      act_(*dialog);
      return;
    }
  }

  void giveUp() {
    auto* open = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (open == nullptr) return;
    ADD_FAILURE() << "left open: " << open->windowTitle().toStdString();
    open->reject();
  }

  static constexpr int kMostLooks = 1000;  // five seconds
  QWidget& parent_;
  QString title_;
  std::function<void(QDialog&)> act_;
  QTimer watch_;
  int looks_ = 0;
  bool acted_ = false;
};

}  // namespace kalmira
