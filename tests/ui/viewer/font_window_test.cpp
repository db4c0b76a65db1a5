#include "ui/viewer/font_window.h"

#include <gtest/gtest.h>

#include <QFontDatabase>
#include <QLabel>
#include <QListWidget>
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
  const auto sample = [&window] {
    QFont font;
    for (const auto* label : window.findChildren<QLabel*>()) {
      if (label->text().startsWith("LOGGING")) font = label->font();
    }
    return font;
  };
  families.setCurrentRow(0);
  QTest::keyClick(&window, Qt::Key_Down);
  EXPECT_EQ(families.currentRow(), 1);
  EXPECT_EQ(sample().family(), families.item(1)->text());
  const int size = sample().pixelSize();
  QTest::keyClick(&window, Qt::Key_Plus);
  EXPECT_GT(sample().pixelSize(), size);
  for (int i = 0; i < 20; ++i) QTest::keyClick(&window, Qt::Key_Left);
  EXPECT_EQ(sample().pixelSize(), 8);
  QTest::keyClick(&window, Qt::Key_M);
  EXPECT_EQ(left, 0);
  QTest::keyClick(&window, Qt::Key_X);
  EXPECT_EQ(left, 1);
  EXPECT_TRUE(window.isHidden());
}

}  // namespace
}  // namespace kalmira
