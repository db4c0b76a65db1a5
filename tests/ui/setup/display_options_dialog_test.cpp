#include <gmock/gmock.h>

#include "settings/settings_file.h"
#include "support/dialogs.h"
#include "ui/setup/setup_dialogs.h"

namespace kalmira {
namespace {

struct DisplayOptionsDialog : DialogTest {
  std::optional<Settings> run(Kind kind, bool ice, const DialogActor::Act& act) {
    return in("Display Options", act, [&] {
      return runDisplayOptionsDialog(&window, {kind, ice, true, 1}, dayTheme(), settings);
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
      {Kind::vardo, false, 0, 2, "0Cond. V10,1Cond. V20,2Cond. V40,3Cond. H10,4Cond. H20,5Cond. H40,",
       "Conductivity (greyed)", 1},
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

TEST_F(DisplayOptionsDialog, ColourIsChosenByTouchOrLeft) {
  const auto saved = run(Kind::glaco, false, [](QDialog& dialog) {
    const auto pick = [&](const DialogActor::Act& act) {
      in("Trace Colour", act, [&] { tap(dialog, "traceColour0"); });
      return textOf(dialog, "traceColour0");
    };
    EXPECT_EQ(pick([](QDialog& colours) { tap(colours, "colour6"); }), "Orange #E69F00");
    EXPECT_EQ(pick([](QDialog& colours) { QTest::keyClick(&colours, Qt::Key_Escape); }), "Orange #E69F00");
    tapOk(dialog);
  });
  ASSERT_TRUE(saved);
  EXPECT_EQ(saved->traceColour[0], 0x00009FE6);
}

TEST_F(DisplayOptionsDialog, AxisIsFixedWhileThereIsNoGrid) {
  settings.profileGrid = 2;
  const auto saved = run(Kind::tesk, false, [](QDialog& dialog) {
    for (const auto* axis : {"Conductivity (greyed)", "Inphase", "Conductivity (greyed)"}) {
      pressOn(dialog, "grid", Qt::Key_Space);
      EXPECT_EQ(textOf(dialog, "axis"), axis);
    }
    tapOk(dialog);
  });
  ASSERT_TRUE(saved);
  EXPECT_EQ(saved->profileGrid, 0);
}

}  // namespace
}  // namespace kalmira
