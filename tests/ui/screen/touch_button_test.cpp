#include <gtest/gtest.h>

#include <QFontMetrics>
#include <QTest>
#include <limits>

#include "ui/screen/touch_button.h"

namespace kalmira {
namespace {

// Every text that a row of buttons may show, and how many share the row.
struct ButtonText {
  const char* text;
  int inRow;
};
const ButtonText kTexts[]{
    {"TAP ME or press any key to Pause", 1},
    {"TAP ME or press SPACE bar to Pause", 1},
    {"TAP ME or press ENTER key to Pause", 1},
    {"TAP ME or press key S to Pause", 1},
    {"Trigger to Log, Tap/any key to Pause", 1},
    {"Trigger to Log, Tap or press SPACE bar to Pause", 1},
    {"Trigger to Log, Tap or press ENTER key to Pause", 1},
    {"Trigger to Log, Tap or press key S to Pause", 1},
    {"TAP ME or any non numeric key to Pause", 1},
    {"Trigger to Log, Tap or non numeric key to Pause", 1},
    {"TAP or non numeric or <0> to Pause", 1},
    {"TAP or <->, <0> or <.> to Pause", 1},
    {"Trigger to Log, Tap or press any non numeric key to Pause", 1},
    {"&Create File", 2},
    {"&Create File", 4},
    {"C&alibrate", 4},
    {"D&el Calibr.", 4},
    {"&NStn", 6},
    {"&Cmnt", 6},
    {"&Menu", 6},
    {"E&xit", 6},
};

QFont fontOf(double scale) {
  QFont font;
  font.setPixelSize(static_cast<int>(12 * scale));
  return font;
}

TEST(TouchButton, NoTextIsCutInARowOf240Units) {
  for (const double scale : {1.0, 1.5, 2.0, 3.0}) {
    for (const auto& [text, inRow] : kTexts) {
      for (const bool isDefault : {false, true}) {
        TouchButton button(text, dayTheme());
        button.setFont(fontOf(scale));
        button.setDefault(isDefault);
        button.resize(static_cast<int>(240 * scale) / inRow, static_cast<int>(34 * scale));
        const QSize room = button.textRoom().size();
        const QFont font = fittedFont(text, button.font(), room);
        const QRect needed = QFontMetrics(font).boundingRect(
            QRect(QPoint(0, 0), room), Qt::AlignCenter | Qt::TextWordWrap | Qt::TextShowMnemonic, text);
        EXPECT_LE(needed.width(), room.width()) << text << " at " << scale;
        EXPECT_LE(needed.height(), room.height()) << text << " at " << scale;
        EXPECT_GE(font.pixelSize(), static_cast<int>(8 * scale)) << text << " at " << scale;
      }
    }
  }
}

TEST(TouchButton, FittedFontTakesThePlentyAndBearsTheScarce) {
  EXPECT_EQ(fittedFont("&Go", fontOf(2.0), {500, 100}).pixelSize(), 24);
  EXPECT_LT(fittedFont("Calibrate", fontOf(2.0), {60, 100}).pixelSize(), 24) << "a word is not broken";
  EXPECT_EQ(fittedFont("Calibrate", fontOf(2.0), {2, 2}).pixelSize(), 5);
}

TEST(TouchButton, IsNineMillimetresHigh) {
  const struct {
    double dotsPerInch;
    int pixels;
  } cases[]{{96.0, 35}, {254.0, 90}, {50.0, 18}, {800.0, 284},
            {49.0, 35}, {801.0, 35}, {0.0, 35},  {-1.0, 35}};
  for (const auto& item : cases) {
    EXPECT_EQ(touchHeightAt(item.dotsPerInch), item.pixels) << item.dotsPerInch;
  }
  EXPECT_EQ(touchHeightAt(std::numeric_limits<double>::quiet_NaN()), 35);
  EXPECT_EQ(touchHeight(nullptr), 35);
  const TouchButton button("&Go", dayTheme());
  EXPECT_GE(button.sizeHint().height(), touchHeight(button.screen()));
  EXPECT_GE(button.minimumSizeHint().height(), touchHeight(button.screen()));
}

TEST(TouchButton, ClicksByMouseAndKeepsOffTheKeyboard) {
  TouchButton button("&Go", dayTheme());
  button.resize(80, 40);
  int clicks = 0;
  QObject::connect(&button, &QPushButton::clicked, [&clicks] { ++clicks; });
  button.show();
  QTest::mouseClick(&button, Qt::LeftButton, Qt::NoModifier, QPoint(3, 3));
  EXPECT_EQ(clicks, 1);
  EXPECT_EQ(button.focusPolicy(), Qt::NoFocus);
  EXPECT_FALSE(button.autoDefault());
}

// Without its colours: what is as light as the background, and what is not.
QImage outline(TouchButton& button) {
  return button.grab().toImage().convertToFormat(QImage::Format_Mono, Qt::ThresholdDither);
}

TEST(TouchButton, EveryStateLooksDifferentInBothThemes) {
  for (const Theme* theme : {&dayTheme(), &nightTheme()}) {
    TouchButton button("&Go", *theme);
    button.resize(80, 40);
    std::vector<QImage> looks{button.grab().toImage()};
    const auto plain = outline(button);
    button.setDefault(true);
    EXPECT_NE(outline(button), plain) << "by its shape alone";
    looks.push_back(button.grab().toImage());
    button.setDefault(false);
    button.setDown(true);
    looks.push_back(button.grab().toImage());
    button.setDown(false);
    button.setEnabled(false);
    looks.push_back(button.grab().toImage());
    for (std::size_t i = 0; i < looks.size(); ++i) {
      for (std::size_t j = 0; j < i; ++j) EXPECT_NE(looks[i], looks[j]) << i << " and " << j;
    }
    button.setEnabled(true);
    EXPECT_EQ(button.grab().toImage(), looks[0]);
    button.setTheme(theme->night ? dayTheme() : nightTheme());
    EXPECT_NE(button.grab().toImage(), looks[0]);
  }
}

TEST(Palette, CarriesTheTheme) {
  for (const Theme* theme : {&dayTheme(), &nightTheme()}) {
    const auto palette = paletteOf(*theme);
    EXPECT_EQ(palette.color(QPalette::Window), QColor(theme->background));
    EXPECT_EQ(palette.color(QPalette::Base), QColor(theme->background));
    EXPECT_EQ(palette.color(QPalette::Text), QColor(theme->text));
    EXPECT_EQ(palette.color(QPalette::ButtonText), QColor(theme->buttonText));
    EXPECT_EQ(palette.color(QPalette::Disabled, QPalette::ButtonText), QColor(theme->faintText));
    EXPECT_EQ(palette.color(QPalette::Highlight), QColor(theme->focus));
  }
}

}  // namespace
}  // namespace kalmira
