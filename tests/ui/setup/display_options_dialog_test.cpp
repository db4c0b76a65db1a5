#include "ui/setup/setup_dialogs.h"

#include <gmock/gmock.h>

#include <QCheckBox>
#include <QColorDialog>

#include "settings/settings_file.h"
#include "support/dialogs.h"

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
  for (int slot = 0; slot < static_cast<int>(kTraces); ++slot) {
    int visible = 0;
    for (const char* name : {"traceShown", "traceColour", "traceWidth", "traceSample"}) {
      const auto* widget = dialog.findChild<QWidget*>(QString(name) + QChar('0' + slot));
      if (widget != nullptr && widget->isVisible()) ++visible;
    }
    EXPECT_TRUE(visible == 0 || visible == 4) << slot;
    if (visible == 0) continue;
    const auto name = "traceShown" + std::to_string(slot);
    text += std::to_string(slot) + part<QCheckBox>(dialog, name.c_str()).text().toStdString() + ",";
  }
  return text;
}

std::string axisOf(const QDialog& dialog) {
  const auto& axis = list(dialog, "axis");
  return axis.currentText().toStdString() + (axis.isEnabled() ? "" : " (greyed)");
}

// Pixels of a sample in one colour, 0xRRGGBB.
int countPixels(const QDialog& dialog, const char* place, QRgb colour) {
  const auto image = part<QWidget>(dialog, place).findChild<QWidget*>()->grab().toImage();
  int count = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) count += (image.pixel(x, y) & RGB_MASK) == colour ? 1 : 0;
  }
  return count;
}

TEST_F(DisplayOptionsDialog, HasTheTracesOfTheKindAndKeepsGridAndAxisAsOneNumber) {
  struct Case {
    Kind kind;
    bool ice;
    int iceDisplay, stored;
    std::string traces;
    const char* axis;
    int saved;
  };
  const std::string dipoles = "0Conductivity V,1Conductivity H,2Inphase V,3Inphase H,";
  for (const auto& c :
       {Case{Kind::orla, false, 1, 3, dipoles, "Conductivity", 1},
        Case{Kind::orla, true, 0, 2, dipoles + "4Ice Thickness,", "Inphase", 2},
        Case{Kind::orla, true, 1, 2, dipoles + "4Ice Thickness,", "Ice Thickness (greyed)", 3},
        Case{Kind::teskb, false, 0, 1, dipoles, "Conductivity", 1},
        Case{Kind::teskdd, false, 0, 0, dipoles, "Conductivity (greyed)", 0},
        Case{Kind::tesk, false, 0, 2, dipoles, "Inphase", 2},
        Case{Kind::vardo, false, 0, 2, "0Cond. V10,1Cond. V20,2Cond. V40,3Cond. H10,4Cond. H20,5Cond. H40,",
             "Conductivity (greyed)", 1},
        Case{Kind::mirka, false, 0, 1, "0Conductivity,2Inphase,", "Conductivity (greyed)", 1},
        Case{Kind::glaco, false, 0, 2, "0Thickness,2Inphase,", "Inphase", 2},
        Case{Kind::tesk2, false, 0, -4,
             "0Conductivity 1 V,1Conductivity 1 H,2Inphase 1 V,3Inphase 1 H,4Conductivity 2 V,"
             "5Conductivity 2 H,6Inphase 2 V,7Inphase 2 H,",
             "Conductivity", 1}}) {
    SCOPED_TRACE(testing::Message() << instrumentOf(c.kind).name << c.stored);
    settings.iceDisplay = c.iceDisplay;
    settings.profileGrid = c.stored;
    const auto look = [&c](QDialog& dialog) {
      EXPECT_EQ(tracesOf(dialog), c.traces);
      EXPECT_EQ(axisOf(dialog), c.axis);
    };
    const auto kept = run(c.kind, c.ice, [&](QDialog& dialog) {
      look(dialog);
      tapOk(dialog);
    });
    ASSERT_TRUE(kept);
    Settings expected = settings;
    expected.profileGrid = c.saved;
    EXPECT_EQ(formatSettings(*kept, c.kind, c.ice), formatSettings(expected, c.kind, c.ice));
    EXPECT_FALSE(run(c.kind, c.ice, tapCancel));
  }
}

TEST_F(DisplayOptionsDialog, TraceIsHiddenThickenedAndShownInItsSample) {
  settings.traceColour[1] = 0x000000FF;
  settings.traceWidth[7] = 3;
  const auto saved = run(Kind::orla, false, [](QDialog& dialog) {
    const int thin = countPixels(dialog, "traceSample1", 0xFF0000);
    EXPECT_GT(thin, 20);
    pressOn(dialog, "traceWidth1", Qt::Key_End);
    EXPECT_EQ(list(dialog, "traceWidth1").currentText(), "4 pixels");
    EXPECT_GT(countPixels(dialog, "traceSample1", 0xFF0000), 2 * thin);
    pressOn(dialog, "traceShown1", Qt::Key_Space);
    EXPECT_EQ(countPixels(dialog, "traceSample1", 0xFF0000), 0);
    tapOk(dialog);
  });
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
      return part<QPushButton>(dialog, button).text().toStdString();
    };
    const auto paint = [](QDialog& colours, const QColor& before, const QColor& now) {
      auto& picker = *colours.findChild<QColorDialog*>();
      EXPECT_EQ(picker.currentColor(), before);
      picker.setCurrentColor(now);
      return &picker;
    };
    const QColor brown(0x56, 0x34, 0x12);
    EXPECT_EQ(part<QPushButton>(dialog, "traceColour0").text(), "Blue #0072B2");
    EXPECT_EQ(pick("traceColour0", [](QDialog& colours) { tap(colours, "colour6"); }), "Orange #E69F00");
    EXPECT_EQ(pick("traceColour2",
                   [&](QDialog& colours) {
                     QTest::keyClick(paint(colours, brown, QColor(0x00, 0xFF, 0x80)), Qt::Key_Escape);
                   }),
              "Brown #563412");
    EXPECT_EQ(pick("traceColour2",
                   [&](QDialog& colours) {
                     paint(colours, brown, QColor(0x00, 0x96, 0x3C));
                     tapOk(colours);
                   }),
              "Green #00963C");
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
      EXPECT_EQ(axisOf(dialog), "Conductivity (greyed)");
      if (again) {
        pressOn(dialog, "grid", Qt::Key_Space);
        EXPECT_EQ(axisOf(dialog), "Inphase") << "chosen before";
        pressOn(dialog, "axis", Qt::Key_Up);
      }
      tapOk(dialog);
    });
    ASSERT_TRUE(saved);
    EXPECT_EQ(saved->profileGrid, again ? 1 : 0);
  }
}

TEST_F(DisplayOptionsDialog, DarkColoursAreShownAsTheNightDrawsThem) {
  const auto drawn = traceColourOn(nightTheme(), settings.traceColour[4]);
  ASSERT_NE(drawn, 0U);
  const auto look = [drawn](QDialog& dialog) {
    EXPECT_GT(countPixels(dialog, "traceSample4", drawn), 20);
    dialog.reject();
  };
  EXPECT_FALSE(run(Kind::vardo, false, look, nightTheme()));
}

}  // namespace
}  // namespace kalmira
