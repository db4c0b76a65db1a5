#include "ui/screen/touch_button.h"

#include <gtest/gtest.h>

#include <QTest>
#include <limits>

namespace kalmira {
namespace {

TEST(TouchButton, FittedFontTakesThePlentyAndBearsTheScarce) {
  QFont font;
  font.setPixelSize(24);
  EXPECT_EQ(fittedFont("&Go", font, {500, 100}).pixelSize(), 24);
  EXPECT_LT(fittedFont("Calibrate", font, {60, 100}).pixelSize(), 24) << "a word is not broken";
  EXPECT_EQ(fittedFont("Calibrate", font, {2, 2}).pixelSize(), 5);
}

TEST(TouchButton, IsNineMillimetresHigh) {
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  for (const auto& [dotsPerInch, pixels] : {std::pair{96.0, 35},
                                            {254.0, 90},
                                            {50.0, 18},
                                            {800.0, 284},
                                            {49.0, 35},
                                            {801.0, 35},
                                            {0.0, 35},
                                            {-1.0, 35},
                                            {kNan, 35}}) {
    EXPECT_EQ(touchHeightAt(dotsPerInch), pixels) << dotsPerInch;
  }
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
  QTest::mouseDClick(&button, Qt::LeftButton);
  QTest::mouseRelease(&button, Qt::LeftButton);
  EXPECT_EQ(clicks, 1) << "the second tap of a double tap is none";
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

}  // namespace
}  // namespace kalmira
