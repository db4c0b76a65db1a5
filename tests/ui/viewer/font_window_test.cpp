#include "ui/viewer/font_window.h"

#include <gmock/gmock.h>

#include <QFontDatabase>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

namespace kalmira {
namespace {

TEST(FontWindow, ListsTheFamiliesAndShowsTheChosenOneInSizes) {
  QWidget parent;
  parent.resize(240, 320);
  int left = 0;
  FontWnd window([&left] { ++left; }, dayTheme(), &parent);
  parent.show();
  window.open();
  auto& families = *window.findChild<QListWidget*>("families");
  ASSERT_GT(families.count(), 1);
  EXPECT_EQ(families.count(), QFontDatabase::families().size());
  families.setCurrentRow(0);
  QTest::keyClick(&window, Qt::Key_Down);
  EXPECT_EQ(families.currentRow(), 1);
  QLabel* sample = nullptr;
  for (auto* label : window.findChildren<QLabel*>()) {
    if (label->text().startsWith("LOGGING")) sample = label;
  }
  ASSERT_NE(sample, nullptr);
  EXPECT_EQ(sample->font().family(), families.item(1)->text());
  const int size = sample->font().pixelSize();
  QTest::keyClick(&window, Qt::Key_Plus);
  EXPECT_GT(sample->font().pixelSize(), size);
  for (int i = 0; i < 20; ++i) QTest::keyClick(&window, Qt::Key_Left);
  EXPECT_EQ(sample->font().pixelSize(), 8);
  QTest::keyClick(&window, Qt::Key_M);
  EXPECT_EQ(left, 0);
  QTest::keyClick(&window, Qt::Key_X);
  EXPECT_EQ(left, 1);
  EXPECT_TRUE(window.isHidden());
}

}  // namespace
}  // namespace kalmira
