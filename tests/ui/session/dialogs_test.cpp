#include "ui/session/dialogs.h"

#include <limits>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <QDialogButtonBox>
#include <QSettings>

#include "settings/line_entry.h"
#include "support/dialogs.h"
#include "support/temp_folder.h"
#include "ui/screen/file_dialog.h"

namespace kalmira {
namespace {

using How = CommentOutcome::How;

struct SessionDialogs : DialogTest {
  std::optional<LineEntry> newLine(double station, const DialogActor::Act& act) {
    return in("New Line", act, [&] { return runNewLineDialog(&window, settings, station); });
  }
  CommentOutcome comment(const DialogActor::Act& act) {
    return in("Enter Comment", act, [&] { return runCommentDialog(&window); });
  }
  Settings settings;
};

// As an operator does: over what is selected there, and on to the next field.
void typeOn(QDialog& dialog, const char* text) {
  QTest::keyClicks(dialog.focusWidget(), text);
  press(dialog, Qt::Key_Tab);
}

TEST_F(SessionDialogs, NewLineShowsTheProposalAndIsTypedFieldByFieldInATurnedWindow) {
  settings = settingsOf("lineName=A7|lineIncrement=2|stationIncrement=2.5|direction=2");
  const auto entry = newLine(50.0, [this](QDialog& dialog) {
    shows(dialog,
          "currentLine=A7|lastStation=50.000|newLine=2.00|lineIncrement=2.00|startStation=50.000|"
          "stationIncrement=-2.500|direction=South|sequence=Alternate");
    window.resize(320, 240);
    QApplication::processEvents();
    expectFits(dialog);
    typeOn(dialog, "Bach 7, West");
    typeOn(dialog, "2,5");
    EXPECT_EQ(textOf(dialog, "lineIncrement"), "2.5") << "a comma is a full stop to be seen";
    press(dialog, Qt::Key_Down);
    press(dialog, Qt::Key_Tab);
    press(dialog, Qt::Key_End);
    press(dialog, Qt::Key_Tab);
    typeOn(dialog, "12.75x9");
    QTest::keyClicks(dialog.focusWidget(), "-1,25");
    press(dialog, Qt::Key_Return);
  });
  ASSERT_TRUE(entry);
  EXPECT_EQ(entry->lineName, "Bach 7, West") << "a name is kept as typed";
  EXPECT_EQ(entry->lineIncrement, 2.5F);
  EXPECT_EQ(entry->sequenceMode, kSequenceOneWay);
  EXPECT_EQ(entry->direction, 3);
  EXPECT_EQ(entry->startStation, 12.75);
  EXPECT_EQ(entry->stationIncrement, -1.25F);
  EXPECT_FALSE(newLine(50.0, [](QDialog& dialog) { press(dialog, Qt::Key_Escape); }));
}

TEST_F(SessionDialogs, NumbersBeyondReasonAreBroughtToWhatAFieldHolds) {
  constexpr auto kMost = std::numeric_limits<float>::max();
  settings = {.lineName = "99999999999999999999999999999999999999", .lineIncrement = kMost};
  const auto entry = newLine(-1e300, [](QDialog& dialog) {
    fill(dialog, "newLine=" + std::string(40, 'x') + "|lineIncrement=1e300|startStation=inf|stationIncrement=nan");
    tapOk(dialog);
  });
  ASSERT_TRUE(entry);
  EXPECT_EQ(entry->lineName.size(), kLineNameCharacters);
  EXPECT_EQ(entry->lineIncrement, kMost);
  EXPECT_EQ(entry->startStation, 0.0);
  EXPECT_EQ(entry->stationIncrement, 0.0F);
}

TEST_F(SessionDialogs, NewStationStartsEmptyAndReadsWhatIsANumber) {
  settings.startStation = 3;
  const auto newStation = [this](const DialogActor::Act& act) {
    return in("New Station", act, [&] { return runNewStationDialog(&window, "GetNewStation", settings, 12.5); });
  };
  for (const auto& [typed, wanted] :
       {std::pair{"", 0.0}, {"abc", 0.0}, {" 17.25m", 17.25}, {"-3,5", -3.5}, {"1e999", 0.0}}) {
    const auto station = newStation([typed = typed](QDialog& dialog) {
      shows(dialog, "startStation=3.000|lastStation=12.500|newStation=");
      QTest::keyClicks(dialog.focusWidget(), typed);
      press(dialog, Qt::Key_Enter);
    });
    EXPECT_EQ(station, std::optional(wanted)) << typed;
  }
  EXPECT_FALSE(newStation(tapCancel));
}

TEST_F(SessionDialogs, CommentIsConfirmedOrCancelledWithAndWithoutText) {
  for (const auto& [typed, key, how] : {std::tuple{"Zaun", Qt::Key_Return, How::confirmed},
                                        {"", Qt::Key_Return, How::confirmed},
                                        {"Zaun", Qt::Key_Escape, How::cancelledWithText},
                                        {"", Qt::Key_Escape, How::cancelledEmpty}}) {
    const auto outcome = comment([typed = typed, key = key](QDialog& dialog) {
      QTest::keyClicks(dialog.focusWidget(), typed);
      press(dialog, key);
    });
    EXPECT_EQ(outcome.how, how) << typed;
    EXPECT_EQ(outcome.text, typed);
  }
  const auto longest = comment([](QDialog& dialog) {
    for (const auto& [text, hint] : {std::pair{"Br\xC3\x9C", "8 more fit"},
                                     {"12345678901", "Fits exactly"},
                                     {"Br\xC3\x9C\x63ke \xC3\x9C\x62\x65rz", "Kept: Br?cke ?ber"}}) {
      type(dialog, "comment", text);
      EXPECT_EQ(textOf(dialog, "hint"), hint);
    }
    part<QLineEdit>(dialog, "comment").setText(QString(600, 'z'));
    press(dialog, Qt::Key_Return);
  });
  EXPECT_EQ(longest.text.size(), 512U);
}

// What a dialog does not show it leaves as it is, and does not round.
TEST_F(SessionDialogs, ScalesAreShownAndLimitedAsTheKindHasThemThicknessToo) {
  const struct {
    const char* name;
    Kind kind;
    bool ice;
    const char *firstLabel, *shown, *typed, *saved;
  } cases[]{{"GetNewProfileScaleICE", Kind::orla, true, "Conductivity", "3 10 -10 0 9 10 ", "50 20 -12000 1e30 12 15",
             "50 150 -9000 9000 9 10"},
            {"GetNewProfileScaleICE", Kind::orla, false, "Conductivity", "3 10 -10 0   ", "", "3 10 -10 0 8.7 10"},
            {"GetNewProfileScaleOrla", Kind::glaco, false, "Thickness", "2.6 10.0 -10 0   ", "3 3", "3 4 -10 0 8.7 10"},
            {"GetNewProfileScaleVardo", Kind::vardo, false, "Conductivity", "3 10     ", "", "3 10 -10 0.4 8.7 10"}};
  settings = settingsOf("iceMinimum=8.7|conductivityMinimum=2.6|inphaseMaximum=0.4");
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.name << c.firstLabel << c.ice);
    const auto scale = [&](const DialogActor::Act& act) {
      return in("Enter Scale", act, [&] { return runProfileScaleDialog(&window, c.name, c.kind, c.ice, settings); });
    };
    const auto changed = scale([&c](QDialog& dialog) {
      std::string shown;
      for (const auto* end : {"firstM", "inphaseM", "iceM"}) {
        for (const auto* which : {"inimum", "aximum"}) shown += textOf(dialog, std::string(end) + which) + ' ';
      }
      EXPECT_EQ(shown, c.shown);
      EXPECT_EQ(textOf(dialog, "firstLabel"), c.firstLabel);
      for (const auto& text : QString(c.typed).split(' ', Qt::SkipEmptyParts)) typeOn(dialog, text.toUtf8());
      tapOk(dialog);
    });
    ASSERT_TRUE(changed);
    EXPECT_EQ(fmt::format("{} {} {} {} {} {}", changed->conductivityMinimum, changed->conductivityMaximum,
                          changed->inphaseMinimum, changed->inphaseMaximum, changed->iceMinimum, changed->iceMaximum),
              c.saved);
    EXPECT_FALSE(scale(tapCancel));
  }
}

struct CreateFileDialog : DialogTest {
  CreateFileDialog() {
    // Qt's dialog remembers how it was left; not in the settings of whoever runs the tests.
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, QString::fromStdString(folder.path() / "conf"));
    writeFile(data / "111510Z.ROR", "survey");
  }
  std::optional<std::filesystem::path> run(const DialogActor::Act& act, const std::string& proposal = "x") {
    const DialogActor actor("Create Data File", act);
    return runCreateFileDialog(&window, place, proposal);
  }
  // Over the proposal, or taken as it is.
  std::optional<std::filesystem::path> entered(const std::string& name, const std::string& proposal = "x") {
    const auto enter = [&name](QDialog& dialog) {
      if (!name.empty()) part<QLineEdit>(dialog, "fileNameEdit").setText(QString::fromStdString(name));
      press(dialog, Qt::Key_Return);
    };
    return run(enter, proposal);
  }

  TempFolder folder;
  DataPlace place{.kind = Kind::orla, .root = folder.path()};
  std::filesystem::path data = dataFolderOf(place);
};

TEST_F(CreateFileDialog, NamesBecomePathsAndExistingOnesAreHandedBackWithoutAQuestion) {
  const struct {
    std::string typed, proposal;
    std::filesystem::path path;
  } cases[]{{"", "111510A", data / "111510A.ROR"},
            {"other.txt", "x", data / "other.txt"},
            {folder.path() / "elsewhere", "x", folder.path() / "elsewhere.ROR"},
            {"", "Storage\\DATAORLA\\111510Z.ROR", data / "111510Z.ROR"}};
  for (const auto& each : cases) EXPECT_EQ(entered(each.typed, each.proposal), each.path);
  EXPECT_EQ(readFile(data / "111510Z.ROR"), "survey");
  EXPECT_FALSE(run([](QDialog& dialog) { press(dialog, Qt::Key_Escape); }));
  // A folder that is closed or gone does no harm.
  std::filesystem::permissions(data, std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
  EXPECT_EQ(entered("a"), data / "a.ROR");
  std::filesystem::remove_all(folder.path() / "Storage");
  EXPECT_EQ(entered("b").value_or("").filename(), "b.ROR");
}

TEST_F(CreateFileDialog, FitsASmallWindowAndFingers) {
  const auto work = [](QDialog& dialog) {
    EXPECT_TRUE(dialog.width() <= 240 && dialog.height() <= 320);
    auto& buttons = *dialog.findChild<QDialogButtonBox*>();
    for (auto* button : buttons.buttons()) {
      EXPECT_TRUE(button->height() >= touchHeight(nullptr) && !button->visibleRegion().isEmpty());
    }
    QTest::keyClicks(dialog.focusWidget(), "Acker");  // the proposal is selected
    QTest::mouseClick(buttons.button(QDialogButtonBox::Save), Qt::LeftButton);
  };
  EXPECT_EQ(run(work), data / "Acker.ROR");
}

}  // namespace
}  // namespace kalmira
