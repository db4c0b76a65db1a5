#include <gmock/gmock.h>

#include <limits>

#include "settings/settings_file.h"
#include "support/dialogs.h"
#include "ui/setup/setup_dialogs.h"

namespace kalmira {
namespace {

using ::testing::ElementsAre;

struct SurveySetupDialog : DialogTest {
  std::optional<Settings> run(Kind kind, const DialogActor::Act& act, int storageClass = 1) {
    const bool portrait = window.width() < window.height();
    return in("Survey Setup", act, [&] {
      return runSurveySetupDialog(&window, {kind, false, portrait, storageClass}, settings);
    });
  }
  Settings settings;
};

std::string noteOf(const QDialog& dialog, const std::string& field) {
  const auto& label = part<QLabel>(dialog, (field + "Note").c_str());
  return label.isVisible() ? label.text().toStdString() : std::string();
}

// "Label: entry|entry=what is chosen" of a list that is there.
std::string entries(const QDialog& dialog, const char* name) {
  const auto* box = dialog.findChild<QComboBox*>(QLatin1String(name));
  if (box == nullptr || !box->isVisible()) return {};
  QStringList texts;
  for (int i = 0; i < box->count(); ++i) texts << box->itemText(i);
  return labelText(dialog, (std::string(name) + "Label").c_str()) + ": " + texts.join('|').toStdString() + "=" +
         box->currentText().toStdString();
}

// Which fields a mode greys, "is" for interval and samples.
std::string enabled(const QDialog& dialog) {
  std::string text;
  if (part<QLineEdit>(dialog, "readingsInterval").isEnabled()) text += 'i';
  const auto* samples = dialog.findChild<QLineEdit*>("readingsCount");
  if (samples != nullptr && samples->isEnabled()) text += 's';
  return text;
}

// With 1 in list A and 2 in list B of the settings; what is saved from Manual mode.
struct KindCase {
  Kind kind;
  std::string listA, listB, manualA, manualB;
  const char* manualEnabled;
  int savedA, savedB;
};
const std::string kDipoles = "Dipole Mode: Vertical|Horizontal|Both=Both";
const std::string kCoils = "Coil Setting: V10|V20|V40|H10|H20|H40=V40";
const std::string kSamples = "Rdgs/Station: 1|2|3|4|5|6=1";
const std::string kDisplay = "Display: Cond./Inphase|Inphase=Inphase";
const std::string kOne = "Component: Inphase|Conductivity=Inphase";
const std::string kAll = "Component: Both|Inphase|Conductivity=Inphase";
const std::string kUnits = "Inphase: ppt|Unscaled=Unscaled";
const KindCase kKinds[]{{Kind::orla, kDisplay, kDipoles, kDisplay, kDipoles, "s", 1, 2},
                        {Kind::teskb, "", kDipoles, "", kDipoles, "s", 0, 2},
                        {Kind::teskdd, kOne, "", kAll, "", "s", 1, 0},
                        {Kind::tesk, kOne, kDipoles, kAll, kDipoles, "s", 1, 2},
                        {Kind::vardo, "", kCoils, "", kSamples, "s", 0, 0},
                        {Kind::mirka, "", "", "", "", "s", 0, 0},
                        {Kind::glaco, "", "", "", "", "", 0, 0},
                        {Kind::tesk2, kUnits, kDipoles, kUnits, kDipoles, "s", 1, 2}};

TEST_F(SurveySetupDialog, ListsAreThoseOfKindAndModeAndWhatTheModeDoesNotUseIsGreyed) {
  settings.surveyListA = 1;
  settings.surveyListB = 2;
  for (const auto& c : kKinds) {
    for (const QSize size : {QSize(240, 320), QSize(320, 240)}) {
      SCOPED_TRACE(testing::Message() << instrumentOf(c.kind).name << size.width());
      window.resize(size);
      const auto saved = run(c.kind, [&c](QDialog& dialog) {
        EXPECT_EQ(entries(dialog, "surveyListA"), c.listA);
        EXPECT_EQ(entries(dialog, "surveyListB"), c.listB);
        EXPECT_EQ(enabled(dialog), "i");
        choose(dialog, "surveyMode", kModeWheel);
        EXPECT_EQ(entries(dialog, "surveyListA"), c.listA);
        EXPECT_EQ(enabled(dialog), "");
        choose(dialog, "surveyMode", kModeManual);
        EXPECT_EQ(list(dialog, "surveyMode").currentText(), "Manual");
        EXPECT_EQ(entries(dialog, "surveyListA"), c.manualA);
        EXPECT_EQ(entries(dialog, "surveyListB"), c.manualB);
        EXPECT_EQ(enabled(dialog), c.manualEnabled);
        tapOk(dialog);
      });
      ASSERT_TRUE(saved);
      EXPECT_EQ(saved->surveyMode, kModeManual);
      EXPECT_EQ(saved->surveyListA, c.savedA);
      EXPECT_EQ(saved->surveyListB, c.savedB);
    }
    // What is shown is what is saved: nothing is rounded or put elsewhere.
    Settings odd;
    odd.surveyMode = kModeWheel;
    odd.surveyListA = c.savedA;
    odd.surveyListB = c.listB.empty() ? 0 : 2;
    odd.modeIncrement = {0.1F, -0.0625F, 1e-5F};
    odd.stationIncrement = -0.0625F;
    odd.readingsInterval = 0.15F;
    odd.startStation = -1234567.125;
    odd.lineName = "Bach 7 West";
    std::swap(odd, settings);
    const auto same = run(c.kind, tapOk);
    ASSERT_TRUE(same);
    EXPECT_EQ(formatSettings(*same, c.kind, false), formatSettings(settings, c.kind, false));
    EXPECT_FALSE(run(c.kind, tapCancel));
    std::swap(odd, settings);
  }
  for (const int storageClass : {0, 1, 2, 3}) {
    window.resize(320, 240);
    EXPECT_TRUE(run(Kind::orla, tapOk, storageClass)) << storageClass;
  }
}

TEST_F(SurveySetupDialog, AFirstLineIsTyped) {
  const auto saved = run(Kind::orla, [](QDialog& dialog) {
    type(dialog, "readingsInterval", "0,25");
    EXPECT_EQ(labelText(dialog, "readingsPerSecond"), "= 4.000/s");
    type(dialog, "stationIncrement", "-2.5");
    type(dialog, "lineName", "A line of far more than 24 letters");
    type(dialog, "lineIncrement", "5");
    choose(dialog, "surveyListA", 1);
    choose(dialog, "surveyListB", 2);
    choose(dialog, "sequence", 1);
    choose(dialog, "direction", 3);
    type(dialog, "startStation", "1000000.25");
    press(dialog, Qt::Key_Return);
  });
  Settings wanted;
  wanted.readingsInterval = 0.25F;
  wanted.modeIncrement[0] = wanted.stationIncrement = -2.5F;
  wanted.lineName = "A line of far more than ";
  wanted.lineIncrement = 5;
  wanted.surveyListA = 1;
  wanted.surveyListB = 2;
  wanted.sequenceMode = 1;
  wanted.direction = 3;
  wanted.startStation = 1000000.25;
  ASSERT_TRUE(saved);
  EXPECT_EQ(formatSettings(*saved, Kind::orla, false), formatSettings(wanted, Kind::orla, false));
}

TEST_F(SurveySetupDialog, EachModeHasItsOwnIncrement) {
  settings.modeIncrement = {1, 2, 3};
  settings.lengthUnits = 1;
  const auto saved = run(Kind::teskb, [](QDialog& dialog) {
    EXPECT_EQ(labelText(dialog, "stationIncrementLabel"), "Stn Increm., ft");
    type(dialog, "stationIncrement", "1.5");
    choose(dialog, "surveyMode", kModeWheel);
    EXPECT_EQ(fieldText(dialog, "stationIncrement"), "2");
    type(dialog, "stationIncrement", "oops");
    choose(dialog, "surveyMode", kModeManual);
    EXPECT_EQ(fieldText(dialog, "stationIncrement"), "3");
    type(dialog, "readingsCount", "10");
    choose(dialog, "surveyMode", kModeAuto);
    EXPECT_EQ(fieldText(dialog, "stationIncrement"), "1.5");
    choose(dialog, "surveyMode", kModeWheel);
    EXPECT_EQ(fieldText(dialog, "stationIncrement"), "2") << "what was no number was not kept";
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
    EXPECT_EQ(fieldText(dialog, "readingsInterval"), "0.05");
    EXPECT_EQ(noteOf(dialog, "readingsInterval"), "Was \"0.001\": 0.05 to 86400");
    EXPECT_EQ(fieldText(dialog, "stationIncrement"), "9999");
    EXPECT_EQ(noteOf(dialog, "lineIncrement"), "Was \"nan\": no number");
    EXPECT_EQ(noteOf(dialog, "lineName"), "Was empty");
    EXPECT_EQ(noteOf(dialog, "startStation"), "Was empty");
    EXPECT_EQ(dialog.focusWidget()->objectName(), "readingsInterval");
    EXPECT_FALSE(dialog.focusWidget()->visibleRegion().isEmpty());
    type(dialog, "readingsInterval", "0.5");
    EXPECT_EQ(noteOf(dialog, "readingsInterval"), "") << "typed over";
    tapOk(dialog);
  });
  Settings wanted;
  wanted.readingsInterval = 0.5F;
  wanted.modeIncrement[0] = wanted.stationIncrement = 9999;
  ASSERT_TRUE(saved);
  EXPECT_EQ(formatSettings(*saved, Kind::tesk2, false), formatSettings(wanted, Kind::tesk2, false));
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
    EXPECT_EQ(noteOf(dialog, "readingsInterval"), "Was \"nan\": no number");
    EXPECT_EQ(fieldText(dialog, "readingsCount"), "100");
    tapOk(dialog);
  });
  Settings wanted;
  wanted.surveyListA = 2;
  wanted.readingsCount = 100;
  wanted.startStation = 9999999.0;
  ASSERT_TRUE(saved) << "what is marked from the start is taken at once";
  EXPECT_EQ(formatSettings(*saved, Kind::tesk, false), formatSettings(wanted, Kind::tesk, false));
}

}  // namespace
}  // namespace kalmira
