#include "support/dialogs.h"

namespace kalmira {
namespace {

// Every name that a dialog is made from, and the smallest window, by its short side, that shows all of it at
// once; 0: it may always have to be scrolled. What is filled in by the dialogs' own code is looked at where
// they are run, see DialogTest.
struct Template {
  const char* name;
  int wholeFrom;
  enum { both, upright, lying } shape = both;
};
const Template kTemplates[]{
    {"GetComment", 240},
    {"GetGPSMessage", 240},
    {"GetNewLine", 240},
    {"GetNewStation", 240},
    {"GetNewStationwm6", 240},
    {"GetNewProfileScaleICE", 240},
    {"GetNewProfileScaleOrla", 240, Template::upright},
    {"GetNewProfileScaleOrlaH", 240, Template::lying},
    {"GetNewProfileScaleVardo", 240},
    {"Devices", 480},
    {"GetGPSPortSetup", 480},
    {"GetLoggerSetupOrla", 480},
    {"GetLoggerSetupOrlaIce", 480},
    {"GetLoggerSetupTesk", 480},
    {"GetLoggerSetupTesk2", 480},
    {"GetOptions", 0},
    {"GetOptionsGlaco", 0},
    {"GetOptionsIceNew", 0},
    {"GetOptionsTesk2", 0},
    {"GetOptionsVardo", 0},
    {"GetSurveySetupGlaco", 0},
    {"GetSurveySetupMirka", 0},
    {"GetSurveySetupOrlaH", 0, Template::lying},
    {"GetSurveySetupOrlaHWIDE", 0, Template::lying},
    {"GetSurveySetupOrlaV", 0},
    {"GetSurveySetupTesk", 0},
    {"GetSurveySetupTeskB", 0},
    {"GetSurveySetupTeskBV", 0},
    {"GetSurveySetupTeskD", 0},
    {"GetSurveySetupVardo", 0},
    {"GetTraceColour", 0},
};

TEST(Templates, FitTheWindowAndFingersUprightAndLyingSmallAndLarge) {
  for (const QSize size : {QSize(240, 320), QSize(320, 240), QSize(480, 640), QSize(640, 480)}) {
    QWidget window;
    window.resize(size);
    window.show();
    const int shortSide = std::min(size.width(), size.height());
    for (const auto& [name, wholeFrom, shape] : kTemplates) {
      if (shape == (size.width() < size.height() ? Template::lying : Template::upright)) continue;
      SCOPED_TRACE(testing::Message() << name << " in " << size.width() << " x " << size.height());
      const auto dialog = makeDialog(name, &window);
      ASSERT_NE(dialog, nullptr);
      const bool whole = wholeFrom != 0 && shortSide >= wholeFrom;
      const DialogActor actor(dialog->windowTitle(), [whole](QDialog& open) {
        expectFits(open, whole);
        tapOk(open);
      });
      EXPECT_TRUE(runDialog(*dialog));
    }
  }
  EXPECT_EQ(makeDialog("GetNothing", nullptr), nullptr);
}

}  // namespace
}  // namespace kalmira
