#include <gmock/gmock.h>

#include <QColorDialog>

#include "settings/settings_file.h"
#include "support/dialogs.h"
#include "ui/setup/setup_dialogs.h"

namespace kalmira {
namespace {

struct DisplayOptionsDialog : DialogTest {
  std::optional<Settings> run(Kind kind, bool ice, const DialogActor::Act& act, const Theme& theme = dayTheme()) {
    return in("Display Options", act, [&] {
      return runDisplayOptionsDialog(&window, {kind, ice, true, 1}, theme, settings);
    });
  }
  Settings settings;
};

void pressOn(const QDialog& dialog, const char* control, Qt::Key key) {
  auto& widget = part<QWidget>(dialog, control);
  widget.setFocus();
  QTest::keyClick(&widget, key);
}

// The names of the traces whose parts are all there, and nothing of the others.
std::string tracesOf(const QDialog& dialog) {
  std::string text;
  for (char slot = '0'; slot < '0' + static_cast<char>(kTraces); ++slot) {
    int visible = 0;
    for (const std::string name : {"traceShown", "traceColour", "traceWidth", "traceSample"}) {
      const auto* widget = dialog.findChild<QWidget*>((name + slot).c_str());
      if (widget != nullptr && widget->isVisible()) ++visible;
    }
    EXPECT_TRUE(visible == 0 || visible == 4) << slot;
    if (visible != 0) text += slot + textOf(dialog, (std::string("traceShown") + slot).c_str()) + ",";
  }
  return text;
}

int countIn(const QDialog& dialog, const char* sample, QRgb colour) {
  return countPixels(part<QWidget>(dialog, sample).findChild<QWidget*>()->grab().toImage(), colour);
}

TEST_F(DisplayOptionsDialog, HasTheTracesOfTheKindAndKeepsGridAndAxisAsOneNumber) {
  const struct {
    Kind kind;
    bool ice;
    int iceDisplay, stored;
    std::string traces;
    const char* axis;
    int saved;
  } cases[]{
      {Kind::orla, true, 0, 2, "0Conductivity V,1Conductivity H,2Inphase V,3Inphase H,4Ice Thickness,", "Inphase", 2},
      {Kind::orla, true, 1, 2, "0Conductivity V,1Conductivity H,2Inphase V,3Inphase H,4Ice Thickness,",
       "Ice Thickness (greyed)", 3},
      {Kind::orla, false, 1, 3, "0Conductivity V,1Conductivity H,2Inphase V,3Inphase H,", "Conductivity", 1},
      {Kind::teskdd, false, 0, 0, "0Conductivity V,1Conductivity H,2Inphase V,3Inphase H,", "Conductivity (greyed)", 0},
      {Kind::vardo, false, 0, 2, "0Cond. V10,1Cond. V20,2Cond. V40,3Cond. H10,4Cond. H20,5Cond. H40,",
       "Conductivity (greyed)", 1},
      {Kind::mirka, false, 0, 1, "0Conductivity,2Inphase,", "Conductivity (greyed)", 1},
      {Kind::glaco, false, 0, 2, "0Thickness,2Inphase,", "Inphase", 2},
      {Kind::tesk2, false, 0, -4,
       "0Conductivity 1 V,1Conductivity 1 H,2Inphase 1 V,3Inphase 1 H,4Conductivity 2 V,5Conductivity 2 H,"
       "6Inphase 2 V,7Inphase 2 H,",
       "Conductivity", 1}};
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << instrumentOf(c.kind).name << c.stored);
    settings.iceDisplay = c.iceDisplay;
    settings.profileGrid = c.stored;
    const auto kept = run(c.kind, c.ice, [&c](QDialog& dialog) {
      EXPECT_EQ(tracesOf(dialog), c.traces);
      EXPECT_EQ(textOf(dialog, "axis"), c.axis);
      tapOk(dialog);
    });
    ASSERT_TRUE(kept);
    Settings expected = settings;
    expected.profileGrid = c.saved;
    EXPECT_EQ(formatSettings(*kept, c.kind, c.ice), formatSettings(expected, c.kind, c.ice));
    EXPECT_FALSE(run(c.kind, c.ice, tapCancel));
  }
}

TEST_F(DisplayOptionsDialog, TraceIsHiddenThickenedAndShownInItsSampleAsTheNightDrawsIt) {
  settings.traceColour[1] = 0x000000FF;
  settings.traceColour[2] = 0;  // black, which the night cannot show
  settings.traceWidth[7] = 3;
  const auto drawn = traceColourOn(nightTheme(), settings.traceColour[2]);
  ASSERT_NE(drawn, 0U);
  const auto work = [drawn](QDialog& dialog) {
    EXPECT_GT(countIn(dialog, "traceSample2", drawn), 20);
    const auto red = traceColourOn(nightTheme(), 0x000000FF);
    const int thin = countIn(dialog, "traceSample1", red);
    EXPECT_GT(thin, 20);
    pressOn(dialog, "traceWidth1", Qt::Key_End);
    EXPECT_EQ(textOf(dialog, "traceWidth1"), "4 pixels");
    EXPECT_GT(countIn(dialog, "traceSample1", red), 2 * thin);
    pressOn(dialog, "traceShown1", Qt::Key_Space);
    EXPECT_EQ(countIn(dialog, "traceSample1", red), 0);
    tapOk(dialog);
  };
  const auto saved = run(Kind::orla, false, work, nightTheme());
  ASSERT_TRUE(saved);
  EXPECT_EQ(saved->traceShown, (std::array<int, kTraces>{1, 0, 1, 1, 1, 1, 1, 1}));
  EXPECT_EQ(saved->traceWidth, (std::array<int, kTraces>{1, 4, 1, 1, 1, 1, 1, 3}));
  EXPECT_EQ(saved->traceColour, settings.traceColour);
}

TEST_F(DisplayOptionsDialog, ColourIsChosenByTouchTypedOrLeft) {
  settings.traceColour[2] = 0x00123456;
  const auto saved = run(Kind::glaco, false, [](QDialog& dialog) {
    const auto pick = [&](const char* button, const DialogActor::Act& act) {
      in("Trace Colour", act, [&] { tap(dialog, button); });
      return textOf(dialog, button);
    };
    // Over the brown that the settings have.
    const auto paint = [](QDialog& colours, const QColor& now) {
      auto& picker = *colours.findChild<QColorDialog*>();
      EXPECT_EQ(picker.currentColor(), QColor(0x56, 0x34, 0x12));
      picker.setCurrentColor(now);
      return &picker;
    };
    EXPECT_EQ(textOf(dialog, "traceColour0"), "Blue #0072B2");
    EXPECT_EQ(pick("traceColour0", [](QDialog& colours) { tap(colours, "colour6"); }), "Orange #E69F00");
    const auto leave = [&](QDialog& colours) { QTest::keyClick(paint(colours, Qt::green), Qt::Key_Escape); };
    EXPECT_EQ(pick("traceColour2", leave), "Brown #563412");
    const auto take = [&](QDialog& colours) { paint(colours, QColor(0x00, 0x96, 0x3C)), tapOk(colours); };
    EXPECT_EQ(pick("traceColour2", take), "Green #00963C");
    tapOk(dialog);
  });
  ASSERT_TRUE(saved);
  EXPECT_EQ(saved->traceColour[0], 0x00009FE6);
  EXPECT_EQ(saved->traceColour[2], 0x003C9600);
}

TEST_F(DisplayOptionsDialog, AxisIsFixedWhileThereIsNoGrid) {
  settings.profileGrid = 2;
  for (const bool again : {false, true}) {
    const auto saved = run(Kind::tesk, false, [again](QDialog& dialog) {
      pressOn(dialog, "grid", Qt::Key_Space);
      EXPECT_EQ(textOf(dialog, "axis"), "Conductivity (greyed)");
      if (again) {
        pressOn(dialog, "grid", Qt::Key_Space);
        EXPECT_EQ(textOf(dialog, "axis"), "Inphase") << "chosen before";
        pressOn(dialog, "axis", Qt::Key_Up);
      }
      tapOk(dialog);
    });
    ASSERT_TRUE(saved);
    EXPECT_EQ(saved->profileGrid, again ? 1 : 0);
  }
}

}  // namespace
}  // namespace kalmira
