#include "ui/setup/setup_dialogs.h"

#include <gmock/gmock.h>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QTest>
#include <cmath>
#include <limits>

#include "settings/settings_file.h"
#include "support/dialog_actor.h"
#include "ui/screen/template_dialog.h"
#include "ui/screen/touch_button.h"

namespace kalmira {
namespace {

using ::testing::ElementsAre;

class SurveySetupDialog : public ::testing::Test {
 protected:
  SurveySetupDialog() {
    window.resize(240, 320);
    window.show();
  }

  std::optional<Settings> run(Kind kind, const std::function<void(QDialog&)>& act) {
    const DialogActor actor(window, "Survey Setup", act);
    const bool portrait = window.width() < window.height();
    return runSurveySetupDialog(&window, {kind, false, portrait, 1}, settings);
  }

  QWidget window;
  Settings settings;
};

void tapOk(QDialog& dialog) {
  QTest::mouseClick(&part<QPushButton>(dialog, "ok"), Qt::LeftButton);
}

// Goes to an entry of a list as fingers on a keypad do.
void choose(QDialog& dialog, const char* list, int position) {
  auto& box = part<QComboBox>(dialog, list);
  box.setFocus();
  QTest::keyClick(&box, Qt::Key_Home);
  for (int i = 0; i < position; ++i) QTest::keyClick(&box, Qt::Key_Down);
  EXPECT_EQ(box.currentIndex(), position) << list;
}

void type(QDialog& dialog, const char* field, const char* text) {
  auto& edit = part<QLineEdit>(dialog, field);
  edit.setFocus();
  edit.selectAll();
  QTest::keyClick(&edit, Qt::Key_Delete);
  QTest::keyClicks(&edit, text);
}

std::string shown(const QDialog& dialog, const char* field) {
  return typedText(part<QLineEdit>(dialog, field));
}

std::string noteOf(const QDialog& dialog, const char* field) {
  const auto& label = part<QLabel>(dialog, (std::string(field) + "Note").c_str());
  return label.isVisible() ? label.text().toStdString() : std::string();
}

std::string entries(const QDialog& dialog, const char* list) {
  auto* box = dialog.findChild<QComboBox*>(QLatin1String(list));
  if (box == nullptr || !box->isVisible()) return {};
  std::string text;
  for (int i = 0; i < box->count(); ++i) text += box->itemText(i).toStdString() + ",";
  return text + box->currentText().toStdString();
}

// Which fields a mode greys, "is" for interval and samples.
std::string enabled(const QDialog& dialog) {
  std::string text;
  if (part<QLineEdit>(dialog, "readingsInterval").isEnabled()) text += 'i';
  auto* samples = dialog.findChild<QLineEdit*>("readingsCount");
  if (samples != nullptr && samples->isEnabled()) text += 's';
  return text;
}

struct KindCase {
  Kind kind;
  const char* modes;
  const char* listA;
  const char* listB;
  const char* manualA;
  const char* manualB;
  const char* manualEnabled;
};

constexpr std::array<KindCase, kKindCount> kKinds{
    {{Kind::orla, "Auto,Wheel,Manual,Auto", "Cond./Inphase,Inphase,Inphase", "Vertical,Horizontal,Both,Both",
      "Cond./Inphase,Inphase,Inphase", "Vertical,Horizontal,Both,Both", "s"},
     {Kind::teskb, "Auto,Wheel,Manual,Auto", "", "Vertical,Horizontal,Both,Both", "",
      "Vertical,Horizontal,Both,Both", "s"},
     {Kind::teskdd, "Auto,Wheel,Manual,Auto", "Inphase,Conductivity,Inphase", "",
      "Both,Inphase,Conductivity,Inphase", "", "s"},
     {Kind::tesk, "Auto,Wheel,Manual,Auto", "Inphase,Conductivity,Inphase", "Vertical,Horizontal,Both,Both",
      "Both,Inphase,Conductivity,Inphase", "Vertical,Horizontal,Both,Both", "s"},
     {Kind::vardo, "Auto,Wheel,Manual,Auto", "", "V10,V20,V40,H10,H20,H40,V40", "", "1,2,3,4,5,6,1", "s"},
     {Kind::mirka, "Auto,Wheel,Manual,Auto", "", "", "", "", "s"},
     {Kind::glaco, "Auto,Wheel,Manual,Auto", "", "", "", "", ""},
     {Kind::tesk2, "Auto,Wheel,Manual,Auto", "ppt,Unscaled,Unscaled", "Vertical,Horizontal,Both,Both",
      "ppt,Unscaled,Unscaled", "Vertical,Horizontal,Both,Both", "s"}}};

class SurveySetupOf : public SurveySetupDialog, public ::testing::WithParamInterface<int> {};

INSTANTIATE_TEST_SUITE_P(Kinds, SurveySetupOf, ::testing::Range(0, kKindCount));

TEST_P(SurveySetupOf, HasTheListsOfItsKindAndGreysWhatTheModeDoesNotUse) {
  const auto& c = kKinds.at(static_cast<std::size_t>(GetParam()));
  settings.surveyListA = 1;
  settings.surveyListB = 2;
  for (const QSize size : {QSize(240, 320), QSize(320, 240)}) {
    window.resize(size);
    const auto saved = run(c.kind, [&c](QDialog& dialog) {
      EXPECT_EQ(entries(dialog, "surveyMode"), c.modes);
      EXPECT_EQ(entries(dialog, "surveyListA"), c.listA);
      EXPECT_EQ(entries(dialog, "surveyListB"), c.listB);
      EXPECT_EQ(enabled(dialog), "i");
      choose(dialog, "surveyMode", part<QComboBox>(dialog, "surveyMode").count() - 1);
      EXPECT_EQ(entries(dialog, "surveyListA"), c.manualA);
      EXPECT_EQ(entries(dialog, "surveyListB"), c.manualB);
      EXPECT_EQ(enabled(dialog), c.manualEnabled);
      tapOk(dialog);
    });
    ASSERT_TRUE(saved);
    EXPECT_EQ(saved->surveyMode, kModeManual);
    EXPECT_EQ(saved->surveyListA, *c.listA == '\0' ? 0 : 1);
    EXPECT_EQ(saved->surveyListB, *c.listB == '\0' || c.kind == Kind::vardo ? 0 : 2);
  }
}

TEST_P(SurveySetupOf, OkWithoutAChangeKeepsTheSettingsFileAsItIs) {
  const auto kind = static_cast<Kind>(GetParam());
  settings.surveyMode = kModeWheel;
  settings.surveyListA = kind == Kind::teskb || kind == Kind::vardo || kind >= Kind::mirka ? 0 : 1;
  settings.surveyListB = kind == Kind::teskdd || kind == Kind::mirka || kind == Kind::glaco ? 0 : 2;
  settings.modeIncrement = {0.1F, -0.0625F, 1e-5F};
  settings.stationIncrement = -0.0625F;
  settings.readingsInterval = 0.15F;
  settings.startStation = -1234567.125;
  settings.lineName = "Bach 7 West";
  const auto saved = run(kind, tapOk);
  ASSERT_TRUE(saved);
  EXPECT_EQ(formatSettings(*saved, kind, false), formatSettings(settings, kind, false));
}

TEST_P(SurveySetupOf, EveryFieldIsWithinReachOfKeysAndFingers) {
  EXPECT_FALSE(run(static_cast<Kind>(GetParam()), [](QDialog& dialog) {
    auto& area = *dialog.findChild<QScrollArea*>();
    EXPECT_LE(area.widget()->width(), area.viewport()->width()) << "nothing is cut at the right";
    std::size_t met = 0;
    for (const auto* first = dialog.focusWidget(); dialog.focusWidget() != first || met == 0; ++met) {
      const auto& control = *dialog.focusWidget();
      EXPECT_GE(control.height(), touchHeight(nullptr)) << control.objectName().toStdString();
      EXPECT_FALSE(control.visibleRegion().isEmpty()) << control.objectName().toStdString();
      QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
      ASSERT_LT(met, 20U);
    }
    EXPECT_GE(met, 9U);
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Escape);
  }));
}

TEST_F(SurveySetupDialog, AFirstLineIsTyped) {
  const auto saved = run(Kind::orla, [](QDialog& dialog) {
    type(dialog, "readingsInterval", "0,25");
    EXPECT_EQ(part<QLabel>(dialog, "readingsPerSecond").text(), "= 4.000/s");
    type(dialog, "stationIncrement", "-2.5");
    type(dialog, "lineName", "A line of far more than 24 letters");
    type(dialog, "lineIncrement", "5");
    choose(dialog, "sequence", 1);
    choose(dialog, "direction", 3);
    type(dialog, "startStation", "1000000.25");
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
  });
  ASSERT_TRUE(saved);
  EXPECT_EQ(saved->readingsInterval, 0.25F);
  EXPECT_THAT(saved->modeIncrement, ElementsAre(-2.5F, 1.0F, 1.0F));
  EXPECT_EQ(saved->stationIncrement, -2.5F);
  EXPECT_EQ(saved->lineName, "A line of far more than ");
  EXPECT_EQ(saved->lineIncrement, 5.0F);
  EXPECT_EQ(saved->sequenceMode, 1);
  EXPECT_EQ(saved->direction, 3);
  EXPECT_EQ(saved->startStation, 1000000.25);
}

TEST_F(SurveySetupDialog, EachModeHasItsOwnIncrement) {
  settings.modeIncrement = {1, 2, 3};
  const auto saved = run(Kind::teskb, [](QDialog& dialog) {
    type(dialog, "stationIncrement", "1.5");
    choose(dialog, "surveyMode", kModeWheel);
    EXPECT_EQ(shown(dialog, "stationIncrement"), "2");
    type(dialog, "stationIncrement", "oops");
    choose(dialog, "surveyMode", kModeManual);
    EXPECT_EQ(shown(dialog, "stationIncrement"), "3");
    type(dialog, "readingsCount", "10");
    choose(dialog, "surveyMode", kModeAuto);
    EXPECT_EQ(shown(dialog, "stationIncrement"), "1.5");
    choose(dialog, "surveyMode", kModeWheel);
    EXPECT_EQ(shown(dialog, "stationIncrement"), "2") << "what was no number was not kept";
    tapOk(dialog);
  });
  ASSERT_TRUE(saved);
  EXPECT_THAT(saved->modeIncrement, ElementsAre(1.5F, 2.0F, 3.0F));
  EXPECT_EQ(saved->stationIncrement, 2.0F);
  EXPECT_EQ(saved->readingsCount, 10);
}

TEST_F(SurveySetupDialog, FirstOkCorrectsAndMarksSecondTakes) {
  const auto saved = run(Kind::tesk2, [](QDialog& dialog) {
    type(dialog, "readingsInterval", "0.001");
    type(dialog, "stationIncrement", "1e38");
    type(dialog, "lineIncrement", "nan");
    type(dialog, "lineName", " ");
    type(dialog, "startStation", "");
    tapOk(dialog);
    EXPECT_TRUE(dialog.isVisible()) << "to be looked at first";
    EXPECT_EQ(shown(dialog, "readingsInterval"), "0.05");
    EXPECT_EQ(noteOf(dialog, "readingsInterval"), "Was \"0.001\": 0.05 to 86400");
    EXPECT_EQ(shown(dialog, "stationIncrement"), "9999");
    EXPECT_EQ(noteOf(dialog, "lineIncrement"), "Was \"nan\": no number");
    EXPECT_EQ(noteOf(dialog, "lineName"), "Was empty");
    EXPECT_EQ(noteOf(dialog, "startStation"), "Was empty");
    EXPECT_EQ(dialog.focusWidget()->objectName(), "readingsInterval");
    EXPECT_FALSE(dialog.focusWidget()->visibleRegion().isEmpty());
    type(dialog, "readingsInterval", "0.5");
    EXPECT_EQ(noteOf(dialog, "readingsInterval"), "") << "typed over";
    tapOk(dialog);
  });
  ASSERT_TRUE(saved);
  EXPECT_EQ(saved->readingsInterval, 0.5F);
  EXPECT_EQ(saved->stationIncrement, 9999.0F);
  EXPECT_EQ(saved->lineIncrement, 1.0F);
  EXPECT_EQ(saved->lineName, "1");
  EXPECT_EQ(saved->startStation, 0.0);
}

TEST_F(SurveySetupDialog, DamagedSettingsAreShownAsANewLoggerHasThem) {
  settings.surveyMode = 99;
  settings.surveyListA = -1;
  settings.surveyListB = 77;
  settings.sequenceMode = 5;
  settings.direction = -3;
  settings.readingsInterval = std::numeric_limits<float>::quiet_NaN();
  settings.readingsCount = 1000;
  settings.modeIncrement[0] = std::numeric_limits<float>::infinity();
  settings.startStation = 1e300;
  const auto saved = run(Kind::tesk, [](QDialog& dialog) {
    EXPECT_EQ(shown(dialog, "readingsInterval"), "1");
    EXPECT_EQ(noteOf(dialog, "readingsInterval"), "Was \"nan\": no number");
    EXPECT_EQ(shown(dialog, "readingsCount"), "100");
    EXPECT_EQ(shown(dialog, "startStation"), "9999999");
    tapOk(dialog);
  });
  ASSERT_TRUE(saved) << "what is marked from the start is taken at once";
  EXPECT_EQ(saved->surveyMode, kModeAuto);
  EXPECT_EQ(saved->surveyListA, 2);
  EXPECT_EQ(saved->surveyListB, 0);
  EXPECT_EQ(saved->sequenceMode, 0);
  EXPECT_EQ(saved->direction, 2);
  EXPECT_EQ(saved->readingsInterval, 1.0F);
  EXPECT_EQ(saved->readingsCount, 100);
  EXPECT_EQ(saved->stationIncrement, 1.0F);
  EXPECT_EQ(saved->startStation, 9999999.0);
}

TEST_F(SurveySetupDialog, EveryOrlaScreenHasItsTemplate) {
  for (const int storageClass : {0, 1, 2, 3}) {
    for (const bool portrait : {true, false}) {
      const DialogActor actor(window, "Survey Setup", tapOk);
      EXPECT_TRUE(runSurveySetupDialog(&window, {Kind::orla, false, portrait, storageClass}, settings))
          << storageClass << portrait;
    }
  }
}

}  // namespace
}  // namespace kalmira
