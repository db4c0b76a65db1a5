#include "ui/setup/setup_dialogs.h"

#include <gmock/gmock.h>

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QPushButton>
#include <QScrollArea>
#include <QTest>

#include "support/dialog_actor.h"
#include "ui/screen/template_dialog.h"
#include "ui/screen/touch_button.h"
#include "ui/setup/line_sample.h"

namespace kalmira {
namespace {

class DisplayOptionsDialog : public ::testing::Test {
 protected:
  DisplayOptionsDialog() {
    window.resize(240, 320);
    window.show();
  }

  std::optional<Settings> run(Kind kind, bool ice, const std::function<void(QDialog&)>& act,
                              const Theme& theme = dayTheme()) {
    const DialogActor actor(window, "Display Options", act);
    return runDisplayOptionsDialog(&window, {kind, ice, true, 1}, theme, settings);
  }

  QWidget window;
  Settings settings;
};

void tap(QDialog& dialog, const char* button) {
  QTest::mouseClick(&part<QPushButton>(dialog, button), Qt::LeftButton);
}

void press(QDialog& dialog, const char* control, Qt::Key key) {
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
    if (visible == 4) {
      const auto name = "traceShown" + std::to_string(slot);
      text += part<QCheckBox>(dialog, name.c_str()).text().toStdString() + ",";
    }
  }
  return text;
}

std::string axisOf(const QDialog& dialog) {
  const auto& axis = part<QComboBox>(dialog, "axis");
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

TEST_F(DisplayOptionsDialog, HasTheTracesAndScalesOfTheKindInReach) {
  struct Case {
    Kind kind;
    bool ice;
    int iceDisplay;
    const char* traces;
    const char* axis;
  };
  const auto* dipoles = "Conductivity V,Conductivity H,Inphase V,Inphase H,";
  for (const auto& c :
       {Case{Kind::orla, false, 1, dipoles, "Conductivity"},
        Case{Kind::orla, true, 0, "Conductivity V,Conductivity H,Inphase V,Inphase H,Ice Thickness,",
             "Conductivity"},
        Case{Kind::orla, true, 1, "Conductivity V,Conductivity H,Inphase V,Inphase H,Ice Thickness,",
             "Ice Thickness (greyed)"},
        Case{Kind::teskb, false, 0, dipoles, "Conductivity"},
        Case{Kind::teskdd, false, 0, dipoles, "Conductivity"},
        Case{Kind::tesk, false, 0, dipoles, "Conductivity"},
        Case{Kind::vardo, false, 0, "Cond. V10,Cond. V20,Cond. V40,Cond. H10,Cond. H20,Cond. H40,",
             "Conductivity (greyed)"},
        Case{Kind::mirka, false, 0, "Conductivity,Inphase,", "Conductivity (greyed)"},
        Case{Kind::glaco, false, 0, "Thickness,Inphase,", "Thickness"},
        Case{Kind::tesk2, false, 0,
             "Conductivity 1 V,Conductivity 1 H,Inphase 1 V,Inphase 1 H,Conductivity 2 V,Conductivity 2 H,"
             "Inphase 2 V,Inphase 2 H,",
             "Conductivity"}}) {
    settings.iceDisplay = c.iceDisplay;
    EXPECT_FALSE(run(c.kind, c.ice, [&c](QDialog& dialog) {
      EXPECT_EQ(tracesOf(dialog), c.traces);
      EXPECT_EQ(axisOf(dialog), c.axis);
      auto& area = *dialog.findChild<QScrollArea*>();
      EXPECT_LE(area.widget()->width(), area.viewport()->width()) << "nothing is cut at the right";
      for (auto* control : dialog.findChildren<QPushButton*>()) {
        if (!control->isVisible()) continue;
        EXPECT_GE(control->height(), touchHeight(nullptr));
      }
      tap(dialog, "cancel");
    }));
  }
}

TEST_F(DisplayOptionsDialog, TraceIsHiddenThickenedAndShownInItsSample) {
  settings.traceColour[1] = 0x000000FF;
  settings.traceWidth[7] = 3;
  const auto saved = run(Kind::orla, false, [](QDialog& dialog) {
    const int thin = countPixels(dialog, "traceSample1", 0xFF0000);
    EXPECT_GT(thin, 20);
    press(dialog, "traceWidth1", Qt::Key_End);
    EXPECT_EQ(part<QComboBox>(dialog, "traceWidth1").currentText(), "4 pixels");
    EXPECT_GT(countPixels(dialog, "traceSample1", 0xFF0000), 2 * thin);
    press(dialog, "traceShown1", Qt::Key_Space);
    EXPECT_EQ(countPixels(dialog, "traceSample1", 0xFF0000), 0);
    tap(dialog, "ok");
  });
  ASSERT_TRUE(saved);
  EXPECT_EQ(saved->traceShown, (std::array<int, kTraces>{1, 0, 1, 1, 1, 1, 1, 1}));
  EXPECT_EQ(saved->traceWidth, (std::array<int, kTraces>{1, 4, 1, 1, 1, 1, 1, 3}));
  EXPECT_EQ(saved->traceColour, settings.traceColour);
}

TEST_F(DisplayOptionsDialog, ColourIsChosenByTouchTypedOrLeft) {
  settings.traceColour[2] = 0x00123456;
  const auto saved = run(Kind::glaco, false, [this](QDialog& dialog) {
    const auto pick = [&](const char* button, const std::function<void(QDialog&)>& act) {
      const DialogActor actor(window, "Trace Colour", act);
      tap(dialog, button);
      return part<QPushButton>(dialog, button).text().toStdString();
    };
    EXPECT_EQ(part<QPushButton>(dialog, "traceColour0").text(), "Blue #0072B2");
    EXPECT_EQ(pick("traceColour0", [](QDialog& colours) { tap(colours, "colour6"); }), "Orange #E69F00");
    EXPECT_EQ(pick("traceColour2",
                   [](QDialog& colours) {
                     auto& picker = *colours.findChild<QColorDialog*>();
                     EXPECT_EQ(picker.currentColor(), QColor(0x56, 0x34, 0x12));
                     picker.setCurrentColor(QColor(0x00, 0xFF, 0x80));
                     QTest::keyClick(&picker, Qt::Key_Escape);
                   }),
              "Brown #563412");
    EXPECT_EQ(pick("traceColour2",
                   [](QDialog& colours) {
                     colours.findChild<QColorDialog*>()->setCurrentColor(QColor(0x00, 0x96, 0x3C));
                     tap(colours, "ok");
                   }),
              "Green #00963C");
    tap(dialog, "ok");
  });
  ASSERT_TRUE(saved);
  EXPECT_EQ(saved->traceColour[0], 0x00009FE6);
  EXPECT_EQ(saved->traceColour[2], 0x003C9600);
}

TEST_F(DisplayOptionsDialog, AxisIsFixedWhileThereIsNoGrid) {
  settings.profileGrid = 2;
  const auto without = run(Kind::tesk, false, [](QDialog& dialog) {
    EXPECT_EQ(axisOf(dialog), "Inphase");
    press(dialog, "grid", Qt::Key_Space);
    EXPECT_EQ(axisOf(dialog), "Conductivity (greyed)");
    tap(dialog, "ok");
  });
  ASSERT_TRUE(without);
  EXPECT_EQ(without->profileGrid, 0);

  const auto with = run(Kind::tesk, false, [](QDialog& dialog) {
    press(dialog, "grid", Qt::Key_Space);
    press(dialog, "grid", Qt::Key_Space);
    EXPECT_EQ(axisOf(dialog), "Inphase") << "chosen before";
    press(dialog, "axis", Qt::Key_Up);
    tap(dialog, "ok");
  });
  ASSERT_TRUE(with);
  EXPECT_EQ(with->profileGrid, 1);
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
