#include <gtest/gtest.h>

#include "datafile/survey_notes.h"
#include "support/dialogs.h"
#include "ui/setup/setup_dialogs.h"

namespace kalmira {
namespace {

struct SurveyNotesDialog : DialogTest {
  std::optional<SurveyNotes> run(const DialogActor::Act& act) {
    return in("Survey Notes", act, [&] { return runSurveyNotesDialog(&window, last); });
  }
  SurveyNotes last{.project = "Moor", .site = "a\"b", .instrumentHeight = 0.1, .gpsLag = -0.25};
};

TEST_F(SurveyNotesDialog, OnlyWhatChangesIsTypedAndEveryFieldIsReached) {
  for (const QSize size : {QSize(240, 320), QSize(320, 240), QSize(640, 480)}) {
    window.resize(size);
    EXPECT_EQ(run(tapOk), last);
    EXPECT_EQ(run(tapCancel), std::nullopt);
    const SurveyNotes all{.project = "Peat | Süd",
                          .operatorName = "N. N.",
                          .instrumentSerial = "0017",
                          .calibrationDate = "2026-05-14",
                          .instrumentHeight = 1.5,
                          .antennaAhead = -0.5,
                          .antennaRight = 0,
                          .antennaUp = 100,
                          .gpsLag = -0.25};
    EXPECT_EQ(run([](QDialog& dialog) {
                shows(dialog, "project=Moor|site=a\"b|operator=|instrumentHeight=0.1|antennaUp=|gpsLag=-0.25");
                EXPECT_EQ(dialog.focusWidget()->objectName(), "project");
                fill(dialog,
                     "site= |operator=N. N. |instrumentSerial=0017|calibrationDate=2026-05-14|instrumentHeight=1,5|"
                     "antennaAhead=-.5|antennaRight=0|antennaUp=100");
                part<QLineEdit>(dialog, "project").setText("Peat | Süd");
                press(dialog, Qt::Key_Return);
              }),
              all);
  }
}

TEST_F(SurveyNotesDialog, AWrongNumberIsToldAndItsFieldKeepsTheKeyboard) {
  const struct {
    const char *field, *typed, *said;
  } cases[] = {{"antennaUp", "1.8 m", "Up: a number from -100 to 100 is wanted, or nothing"},
               {"instrumentHeight", "-1", "Height, m: a number from 0 to 100 is wanted, or nothing"},
               {"gpsLag", "10.1", "GPS Lag, s: a number from -10 to 10 is wanted, or nothing"},
               {"gpsLag", "nan", "GPS Lag, s: a number from -10 to 10 is wanted, or nothing"},
               {"site", "a\tb", "Site: one line of at most 1000 bytes is wanted"}};
  for (const auto& [field, typed, said] : cases) {
    SCOPED_TRACE(typed);
    const auto changed = run([&, field = field, typed = typed, said = said](QDialog& dialog) {
      type(dialog, "operator", "N");
      part<QLineEdit>(dialog, field).setText(typed);
      std::string text;
      {
        const DialogActor actor("WARNING", noted(text));
        tapOk(dialog);
      }
      EXPECT_EQ(text, said);
      ASSERT_TRUE(dialog.isVisible());
      EXPECT_EQ(dialog.focusWidget()->objectName(), field);
      EXPECT_FALSE(dialog.focusWidget()->visibleRegion().isEmpty());
      type(dialog, field, "5");
      tapOk(dialog);
    });
    ASSERT_TRUE(changed);
    EXPECT_EQ(changed->operatorName, "N");
  }
}

}  // namespace
}  // namespace kalmira
