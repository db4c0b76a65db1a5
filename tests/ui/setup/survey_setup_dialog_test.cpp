#include <gtest/gtest.h>

#include <limits>

#include "settings/settings_file.h"
#include "support/dialogs.h"
#include "ui/setup/setup_dialogs.h"

namespace kalmira {
namespace {

struct SurveySetupDialog : DialogTest {
  std::optional<Settings> run(Kind kind, const DialogActor::Act& act) {
    const bool portrait = window.width() < window.height();
    return in("Survey Setup", act, [&] { return runSurveySetupDialog(&window, {kind, false, portrait, 1}, settings); });
  }
  void expectSaved(Kind kind, const std::string& wanted, const DialogActor::Act& act) {
    const auto saved = run(kind, act);
    ASSERT_TRUE(saved);
    EXPECT_EQ(formatSettings(*saved, kind, false), formatSettings(settingsOf(wanted), kind, false));
  }
  Settings settings;
};

// "Label: entry|entry=what is chosen" of a list that is there.
std::string listOf(const QDialog& dialog, const std::string& name) {
  const auto* box = dialog.findChild<QComboBox*>(name.c_str());
  if (box == nullptr || !box->isVisible()) return {};
  return textOf(dialog, (name + "Label").c_str()) + ": " + entriesOf(dialog, name.c_str());
}

// Which fields a mode greys, "is" for interval and samples.
std::string enabled(const QDialog& dialog) {
  const auto* samples = dialog.findChild<QLineEdit*>("readingsCount");
  return std::string(part<QLineEdit>(dialog, "readingsInterval").isEnabled() ? "i" : "") +
         (samples != nullptr && samples->isEnabled() ? "s" : "");
}

// With 1 in list A and 2 in list B of the settings; what is saved from Manual mode.
const std::string kDipoles = "Dipole Mode: Vertical|Horizontal|Both=Both";
const std::string kCoils = "Coil Setting: V10|V20|V40|H10|H20|H40=V40";
const std::string kSamples = "Rdgs/Station: 1|2|3|4|5|6=1";
const std::string kDisplay = "Display: Cond./Inphase|Inphase=Inphase";
const std::string kOne = "Component: Inphase|Conductivity=Inphase";
const std::string kAll = "Component: Both|Inphase|Conductivity=Inphase";
const std::string kUnits = "Inphase: ppt|Unscaled=Unscaled";
const struct {
  Kind kind;
  std::string listA, listB, manualA, manualB;
  const char* manualEnabled;
  int savedA, savedB;
} kKinds[]{{Kind::orla, kDisplay, kDipoles, kDisplay, kDipoles, "s", 1, 2},
           {Kind::teskb, "", kDipoles, "", kDipoles, "s", 0, 2},
           {Kind::teskdd, kOne, "", kAll, "", "s", 1, 0},
           {Kind::tesk, kOne, kDipoles, kAll, kDipoles, "s", 1, 2},
           {Kind::vardo, "", kCoils, "", kSamples, "s", 0, 0},
           {Kind::mirka, "", "", "", "", "s", 0, 0},
           {Kind::glaco, "", "", "", "", "", 0, 0},
           {Kind::tesk2, kUnits, kDipoles, kUnits, kDipoles, "s", 1, 2}};

TEST_F(SurveySetupDialog, ListsAreThoseOfKindAndModeAndWhatTheModeDoesNotUseIsGreyed) {
  for (const auto& c : kKinds) {
    for (const QSize size : {QSize(240, 320), QSize(320, 240)}) {
      SCOPED_TRACE(testing::Message() << instrumentOf(c.kind).name << size.width());
      window.resize(size);
      settings = settingsOf("surveyListA=1|surveyListB=2");
      const auto saved = run(c.kind, [&c](QDialog& dialog) {
        EXPECT_EQ(listOf(dialog, "surveyListA"), c.listA);
        EXPECT_EQ(listOf(dialog, "surveyListB"), c.listB);
        EXPECT_EQ(enabled(dialog), "i");
        choose(dialog, "surveyMode", kModeWheel);
        EXPECT_EQ(listOf(dialog, "surveyListA"), c.listA);
        EXPECT_EQ(enabled(dialog), "");
        choose(dialog, "surveyMode", kModeManual);
        EXPECT_EQ(listOf(dialog, "surveyListA"), c.manualA);
        EXPECT_EQ(listOf(dialog, "surveyListB"), c.manualB);
        EXPECT_EQ(enabled(dialog), c.manualEnabled);
        tapOk(dialog);
      });
      ASSERT_TRUE(saved);
      EXPECT_EQ(std::tie(saved->surveyMode, saved->surveyListA, saved->surveyListB),
                std::tie(kModeManual, c.savedA, c.savedB));
    }
    // What is shown is what is saved: nothing is rounded or put elsewhere.
    const auto odd = std::string(
                         "surveyMode=1|modeIncrement[0]=0.1|modeIncrement[1]=-0.062|modeIncrement[2]=0.00001|"
                         "readingsInterval=0.15|lineName=Bach 7 West|startStation=-1234567.12|"
                         "stationIncrement=-0.062|surveyListA=") +
                     std::to_string(c.savedA) + "|surveyListB=" + (c.listB.empty() ? "0" : "2");
    settings = settingsOf(odd);
    expectSaved(c.kind, odd, tapOk);
    EXPECT_FALSE(run(c.kind, tapCancel));
  }
}

TEST_F(SurveySetupDialog, AFirstLineIsTypedWithItsDirectionAndEachModeHasItsOwnIncrement) {
  expectSaved(Kind::orla,
              "surveyListA=1|surveyListB=2|modeIncrement[0]=-2.5|readingsInterval=0.25|lineIncrement=5|"
              "lineName=A line of far more than |sequenceMode=1|direction=3|startStation=1000000.25|"
              "stationIncrement=-2.5",
              [](QDialog& dialog) {
                fill(dialog,
                     "readingsInterval=0,25|stationIncrement=-2.5|lineIncrement=5|surveyListA=Inphase|surveyListB=Both|"
                     "lineName=A line of far more than 24 letters|sequence=One Way|direction=East|"
                     "startStation=1000000.25");
                EXPECT_EQ(textOf(dialog, "readingsPerSecond"), "= 4.000/s");
                press(dialog, Qt::Key_Return);
              });
  settings = settingsOf("lengthUnits=1|modeIncrement[1]=2|modeIncrement[2]=3");
  expectSaved(Kind::teskb,
              "lengthUnits=1|surveyMode=1|readingsCount=10|modeIncrement[0]=1.5|modeIncrement[1]=2|modeIncrement[2]=3|"
              "stationIncrement=2",
              [](QDialog& dialog) {
                EXPECT_EQ(textOf(dialog, "stationIncrementLabel"), "Stn Increm., ft");
                // What is typed in one mode, and shown in the next. What is no number is not kept.
                for (const auto& [typed, shown] : {std::pair{"stationIncrement=1.5|surveyMode=Wheel", "2"},
                                                   {"stationIncrement=oops|surveyMode=Manual", "3"},
                                                   {"readingsCount=10|surveyMode=Auto", "1.5"},
                                                   {"surveyMode=Wheel", "2"}}) {
                  fill(dialog, typed);
                  EXPECT_EQ(textOf(dialog, "stationIncrement"), shown) << typed;
                }
                tapOk(dialog);
              });
}

TEST_F(SurveySetupDialog, FirstOkCorrectsAndMarksSecondTakes) {
  const auto work = [](QDialog& dialog) {
    fill(dialog, "readingsInterval=0.001|stationIncrement=1e38|lineIncrement=nan|lineName= |startStation=");
    tapOk(dialog);
    shows(dialog,
          "readingsInterval=0.05|readingsIntervalNote=Was \"0.001\": 0.05 to 86400|stationIncrement=9999|"
          "lineIncrementNote=Was \"nan\": no number|lineNameNote=Was empty|startStationNote=Was empty");
    EXPECT_EQ(dialog.focusWidget()->objectName(), "readingsInterval");
    EXPECT_FALSE(dialog.focusWidget()->visibleRegion().isEmpty());
    type(dialog, "readingsInterval", "0.5");
    EXPECT_EQ(textOf(dialog, "readingsIntervalNote"), "") << "typed over";
    tapOk(dialog);
  };
  expectSaved(Kind::tesk2, "modeIncrement[0]=9999|readingsInterval=0.5|stationIncrement=9999", work);
}

TEST_F(SurveySetupDialog, DamagedSettingsAreShownAsANewLoggerHasThem) {
  settings = settingsOf(
      "surveyMode=99|surveyListA=-1|surveyListB=77|sequenceMode=5|direction=-3|readingsCount=1000|startStation=1e300");
  settings.readingsInterval = std::numeric_limits<float>::quiet_NaN();
  settings.modeIncrement[0] = std::numeric_limits<float>::infinity();
  expectSaved(Kind::tesk, "surveyListA=2|readingsCount=100|startStation=9999999", [](QDialog& dialog) {
    shows(dialog, "readingsIntervalNote=Was \"nan\": no number|readingsCount=100 (greyed)");
    tapOk(dialog);  // what is marked from the start is taken at once
  });
}

}  // namespace
}  // namespace kalmira
