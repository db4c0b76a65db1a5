#include <fmt/format.h>
#include <gmock/gmock.h>

#include <QDialogButtonBox>
#include <QSettings>
#include <Qt>
#include <algorithm>
#include <limits>
#include <set>

#include "logging/keys.h"
#include "settings/line_entry.h"
#include "support/dialogs.h"
#include "support/session_fixture.h"
#include "support/temp_folder.h"
#include "ui/screen/file_dialog.h"
#include "ui/screen/key_table.h"
#include "ui/session/dialogs.h"
#include "ui/session/panel_view.h"

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
  for (const auto& [typed, wanted, asked] : {std::tuple{"", 0.0, true},
                                             {"abc", 0.0, true},
                                             {" 17.25m", 17.25, false},
                                             {"-3,5", -3.5, false},
                                             {"+0", 0.0, false},
                                             {"1e999", 0.0, true}}) {
    const auto station = newStation([typed = typed, asked = asked](QDialog& dialog) {
      shows(dialog, "startStation=3.000|lastStation=12.500|newStation=");
      QTest::keyClicks(dialog.focusWidget(), typed);
      // No, which Enter presses, comes back to the field; Yes sets it.
      for (const auto* answer : {"No", "Yes"}) {
        std::optional<DialogActor> question;
        if (asked) question.emplace("No Number", answered(answer));
        press(dialog, Qt::Key_Enter);
        if (!asked) return;
        EXPECT_EQ(dialog.isVisible(), *answer == 'N');
      }
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
  const auto fitted = in(
      "Enter Scale",
      [](QDialog& dialog) {
        buttonOf(dialog, "&Fit").click();
        tapOk(dialog);
      },
      [&] {
        return runProfileScaleDialog(&window, "GetNewProfileScaleOrlaH", Kind::orla, false, settings,
                                     settingsOf("conductivityMaximum=70|inphaseMinimum=-3"));
      });
  ASSERT_TRUE(fitted);
  EXPECT_EQ(std::pair(fitted->conductivityMaximum, fitted->inphaseMinimum), std::pair(70.0F, -3.0F));
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

// Every panel there is: kinds and the ORLA's ice option, both layouts, with and without GPS, at `scales`.
std::vector<PanelSpace> allPanelSpaces(const std::vector<double>& scales) {
  std::vector<PanelSpace> spaces;
  for (const double scale : scales) {
    for (int variant = 0; variant < 4 * (kKindCount + 1); ++variant) {
      const bool wide = variant % 2 == 0;
      const int kind = variant / 4;
      spaces.push_back({.kind = static_cast<Kind>(kind % kKindCount),
                        .iceOption = kind == kKindCount,
                        .wideLayout = wide,
                        .gps = variant % 4 >= 2,
                        .scale = scale,
                        .width = static_cast<int>((wide ? 240 : 320) * scale)});
      if (scale < 2) continue;
      auto larger = spaces.back();  // with a tenth more width, and half a window less its buttons
      larger.roomy = true;
      larger.width = larger.width * 11 / 10;
      larger.mostHeight = static_cast<int>((wide ? 160 : 120) * scale) - static_cast<int>(35 * scale);
      spaces.push_back(larger);
    }
  }
  return spaces;
}

std::string describe(const PanelSpace& space) {
  return fmt::format("{}{} {} wide, scale {}, {}", instrumentOf(space.kind).name, space.iceOption ? " ice" : "",
                     space.width, space.scale, space.gps ? "gps" : "no gps");
}

const PanelCell* findCell(const PanelLayout& layout, PanelField field) {
  const auto found = std::find_if(layout.cells.begin(), layout.cells.end(),
                                  [field](const PanelCell& cell) { return cell.field == field; });
  return found == layout.cells.end() ? nullptr : &*found;
}

// A text has a cell, and at its full size room in it.
void expectRoom(const PanelLayout& layout, const MeasureText& measure, PanelField field, std::string text) {
  const auto* cell = findCell(layout, field);
  ASSERT_NE(cell, nullptr) << panelFieldName(field) << " shows " << text;
  text.resize(text.find_last_not_of(' ') + 1);
  const double needed = measure(cell->font, layout.size(cell->font), text) + cell->labelWidth + 2 * cell->padding;
  EXPECT_LE(needed, cell->width) << panelFieldName(field) << " shows " << text;
}

QRect rectOf(const PanelCell& cell) { return {cell.left, cell.top, cell.width, cell.height}; }

TEST(PanelLayout, NothingOverlapsIsCutOrTakesTheChartsRoom) {
  const auto measure = measureWith(QApplication::font());
  for (const auto& space : allPanelSpaces({1.0, 1.5, 2.0, 3.0})) {
    SCOPED_TRACE(describe(space));
    const auto layout = layOutPanel(space, measure);
    std::vector<QRect> rects;
    for (const auto& cell : layout.cells) rects.push_back(rectOf(cell));
    expectApart({0, 0, space.width, layout.height}, rects);
    // Below it a row of buttons, 34 units, and a chart of 118 units, of 100 where four or six values are low.
    const double usual = (space.wideLayout ? 145 : space.kind == Kind::tesk2 ? 106 : 93) * space.scale;
    EXPECT_LE(layout.height, space.roomy ? space.mostHeight : usual);
    EXPECT_GE(layout.textSize, (space.roomy ? 9 : 11) * space.scale - 1);
    EXPECT_GE(layout.valueSize, 13 * space.scale);
    EXPECT_GE(layout.stateSize, 15 * space.scale);
    for (int i = 0; i < kPanelFields; ++i) {
      const auto field = static_cast<PanelField>(i);
      const auto texts = widestTexts(space, field);
      EXPECT_TRUE(!texts.empty() || findCell(layout, field) == nullptr) << panelFieldName(field);
      for (const auto& text : texts) expectRoom(layout, measure, field, text);
    }
  }
}

struct KeyTable : testing::Test {
  KeyTable() { test.session.inputEnabled = true; }
  int codeOf(int state, int qtKey, int pauseKey = 0) {
    test.session.loggingState = state;
    test.session.settings.pauseKey = pauseKey;
    Focus focus;
    const int keyCode = keyCodeOf(qtKey, pauseKey);
    return keyCode == kNoKey ? kNoCode : codeOfKey(test.session, focus, {}, keyCode);
  }
  TestSession test{Kind::orla};
};

// What a key of the keyboard asks for in each state, pause key "any". -1: nothing.
TEST_F(KeyTable, FromTheKeyboardToTheCodesWithoutALoneShiftThatPauses) {
  const struct {
    std::vector<int> qtKeys;
    int noFile, standBy, logging;
  } cases[]{{{Qt::Key_C}, 0, 3, 0},
            {{Qt::Key_G}, -1, 0, 0},
            {{Qt::Key_L}, -1, 1, 0},
            {{Qt::Key_N}, 2, 2, 0},
            {{Qt::Key_M}, 4, 4, 0},
            {{Qt::Key_X}, 4, 5, 0},
            {{Qt::Key_U}, 1, -1, 0},
            {{Qt::Key_A, Qt::Key_E, Qt::Key_0, Qt::Key_Tab, Qt::Key_Space, Qt::Key_F5, Qt::Key_Escape}, -1, -1, 0},
            {{Qt::Key_Return, Qt::Key_Enter, Qt::Key_Select}, 0, 0, 0},
            {{Qt::Key_Shift, Qt::Key_Control, Qt::Key_VolumeUp}, -1, -1, -1}};
  for (const auto& item : cases) {
    for (const int key : item.qtKeys) {
      EXPECT_EQ(codeOf(kNoFile, key), item.noFile) << key;
      EXPECT_EQ(codeOf(kStandBy, key), item.standBy) << key;
      EXPECT_EQ(codeOf(kLogging, key), item.logging) << key;
    }
  }
  test.session.inputEnabled = false;
  EXPECT_EQ(codeOf(kStandBy, Qt::Key_C), kNoCode);
}

}  // namespace
}  // namespace kalmira
