#include "ui/session/dialogs.h"

#include <gmock/gmock.h>

#include "datafile/record_format.h"
#include "settings/comment_hint.h"
#include "support/dialogs.h"

namespace kalmira {
namespace {

using ::testing::ElementsAre;
using How = CommentOutcome::How;

struct SessionDialogs : DialogTest {
  std::optional<LineEntry> newLine(double station, const DialogActor::Act& act) {
    return in("New Line", act, [&] { return runNewLineDialog(&window, settings, station); });
  }
  std::optional<double> newStation(const DialogActor::Act& act) {
    return in("New Station", act, [&] { return runNewStationDialog(&window, "GetNewStation", settings, 12.5); });
  }
  CommentOutcome comment(const DialogActor::Act& act) {
    return in("Enter Comment", act, [&] { return runCommentDialog(&window); });
  }
  std::optional<Settings> scale(const char* templateName, Kind kind, bool ice, const DialogActor::Act& act) {
    return in("Enter Scale", act, [&] { return runProfileScaleDialog(&window, templateName, kind, ice, settings); });
  }
  Settings settings;
};

// As an operator does: over what is selected there, and on to the next field.
void typeOn(QDialog& dialog, const char* text) {
  QTest::keyClicks(dialog.focusWidget(), text);
  press(dialog, Qt::Key_Tab);
}

std::vector<std::string> fields(const QDialog& dialog, std::initializer_list<const char*> names) {
  std::vector<std::string> texts;
  for (const char* name : names) texts.push_back(fieldText(dialog, name));
  return texts;
}

TEST_F(SessionDialogs, NewLineShowsTheProposalAndIsTypedFieldByField) {
  settings.lineName = "A7";
  settings.lineIncrement = 2.0F;
  settings.stationIncrement = 2.5F;
  settings.direction = 2;
  settings.startStation = 5.0;
  const auto look = [](const QDialog& dialog) {
    EXPECT_EQ(labelText(dialog, "currentLine"), "A7");
    EXPECT_EQ(labelText(dialog, "lastStation"), "50.000");
    EXPECT_THAT(fields(dialog, {"newLine", "lineIncrement", "startStation", "stationIncrement"}),
                ElementsAre("2.00", "2.00", "50.000", "-2.500"));
    EXPECT_EQ(list(dialog, "sequence").currentIndex(), 0);
    EXPECT_EQ(list(dialog, "direction").currentText(), "South");
  };
  EXPECT_FALSE(newLine(50.0, [&](QDialog& dialog) {
    look(dialog);
    press(dialog, Qt::Key_Escape);
  }));
  const auto entry = newLine(50.0, [&](QDialog& dialog) {
    look(dialog);
    typeOn(dialog, "Bach 7, West");
    typeOn(dialog, "2,5");
    EXPECT_EQ(fieldText(dialog, "lineIncrement"), "2.5") << "a comma is a full stop to be seen";
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
}

TEST_F(SessionDialogs, NumbersBeyondReasonAreBroughtToWhatAFieldHolds) {
  settings.lineName = "99999999999999999999999999999999999999";
  settings.startStation = 1e300;
  settings.lineIncrement = std::numeric_limits<float>::max();
  const auto entry = newLine(-1e300, [](QDialog& dialog) {
    part<QLineEdit>(dialog, "newLine").setText(QString(40, QChar(0x00E4)));
    press(dialog, Qt::Key_Tab);
    typeOn(dialog, "1e300");
    part<QLineEdit>(dialog, "startStation").setText("inf");
    part<QLineEdit>(dialog, "stationIncrement").setText("nan");
    tapOk(dialog);
  });
  ASSERT_TRUE(entry);
  EXPECT_EQ(entry->lineName.size(), 2 * kLineNameCharacters);
  EXPECT_EQ(entry->lineIncrement, std::numeric_limits<float>::max());
  EXPECT_EQ(entry->startStation, 0.0);
  EXPECT_EQ(entry->stationIncrement, 0.0F);
}

TEST_F(SessionDialogs, NewStationStartsEmptyAndReadsWhatIsANumber) {
  settings.startStation = 3;
  for (const auto& [typed, wanted] :
       {std::pair{"", 0.0}, {"abc", 0.0}, {" 17.25m", 17.25}, {"-3,5", -3.5}, {"1e999", 0.0}}) {
    const auto station = newStation([typed = typed](QDialog& dialog) {
      EXPECT_EQ(labelText(dialog, "startStation"), "3.000");
      EXPECT_EQ(labelText(dialog, "lastStation"), "12.500");
      EXPECT_EQ(fieldText(dialog, "newStation"), "");
      QTest::keyClicks(dialog.focusWidget(), typed);
      press(dialog, Qt::Key_Enter);
    });
    ASSERT_TRUE(station) << typed;
    EXPECT_EQ(*station, wanted) << typed;
  }
  EXPECT_FALSE(newStation(tapCancel));
}

TEST_F(SessionDialogs, CommentIsConfirmedOrCancelledWithAndWithoutText) {
  struct Case {
    const char* typed;
    Qt::Key key;
    How how;
  };
  for (const auto& c :
       {Case{"Zaun", Qt::Key_Return, How::confirmed}, Case{"", Qt::Key_Return, How::confirmed},
        Case{"Zaun", Qt::Key_Escape, How::cancelledWithText}, Case{"", Qt::Key_Escape, How::cancelledEmpty}}) {
    const auto outcome = comment([&c](QDialog& dialog) {
      QTest::keyClicks(dialog.focusWidget(), c.typed);
      press(dialog, c.key);
    });
    EXPECT_EQ(outcome.how, c.how) << c.typed;
    EXPECT_EQ(outcome.text, c.typed);
  }
  const auto longest = comment([](QDialog& dialog) {
    EXPECT_EQ(labelText(dialog, "hint"), "11 characters fit");
    QTest::keyClicks(dialog.focusWidget(), "Bridge");
    EXPECT_EQ(labelText(dialog, "hint"), "5 more fit");
    part<QLineEdit>(dialog, "comment").setText(QString::fromUtf8("Brücke über") + QString(600, 'z'));
    EXPECT_EQ(labelText(dialog, "hint"), "Kept: Br?cke ?ber");
    press(dialog, Qt::Key_Return);
  });
  EXPECT_EQ(longest.text.size(), 512U + 2U);
}

TEST(CommentHint, CountsAsTheRecordDoes) {
  EXPECT_EQ(commentHint("Br\xC3\xBC"), "8 more fit");
  EXPECT_EQ(commentHint("12345678901"), "Fits exactly");
  for (const int length : {24, 26}) {
    const auto record = formatNote(length, tag::kComment, "abcdefghijklmnop", 0);
    EXPECT_EQ("Kept: " + record.substr(1, kCommentCharactersKept), commentHint("abcdefghijklmnop"));
    EXPECT_EQ(record[1 + kCommentCharactersKept], ' ') << "nothing of the text comes after it";
  }
}

// What the scales of the settings are shown as, and become when something is typed. What a dialog does not
// show it leaves as it is, and does not round.
TEST_F(SessionDialogs, ScalesAreShownAndLimitedAsTheKindHasThem) {
  const struct {
    const char* name;
    Kind kind;
    bool ice;
    const char* firstLabel;
    std::vector<std::string> shown;
    std::vector<const char*> typed;
    std::vector<float> saved;
  } cases[]{
      {"GetNewProfileScaleICE",
       Kind::orla,
       true,
       "Conductivity",
       {"3", "10", "-10", "0", "9", "10"},
       {"50", "20", "-12000", "1e30", "12", "15"},
       {50, 150, -9000, 9000, 9, 10}},
      {"GetNewProfileScaleICE",
       Kind::orla,
       false,
       "Conductivity",
       {"3", "10", "-10", "0"},
       {},
       {3, 10, -10, 0, 8.7F, 10}},
      {"GetNewProfileScaleOrla",
       Kind::glaco,
       false,
       "Thickness",
       {"2.6", "10.0", "-10", "0"},
       {"3", "3"},
       {3, 4, -10, 0, 8.7F, 10}},
      {"GetNewProfileScaleVardo", Kind::vardo, false, "Conductivity", {"3", "10"}, {}, {3, 10, -10, 0.4F, 8.7F, 10}}};
  settings.conductivityMinimum = 2.6F;
  settings.inphaseMaximum = 0.4F;
  settings.iceMinimum = 8.7F;
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.name << c.firstLabel << c.ice);
    const auto changed = scale(c.name, c.kind, c.ice, [&c](QDialog& dialog) {
      std::vector<std::string> shown;
      for (const char* field :
           {"firstMinimum", "firstMaximum", "inphaseMinimum", "inphaseMaximum", "iceMinimum", "iceMaximum"}) {
        const auto* edit = dialog.findChild<QLineEdit*>(QLatin1String(field));
        if (edit != nullptr && edit->isVisible()) shown.push_back(edit->text().toStdString());
      }
      EXPECT_EQ(shown, c.shown);
      EXPECT_EQ(labelText(dialog, "firstLabel"), c.firstLabel);
      for (const char* text : c.typed) typeOn(dialog, text);
      tapOk(dialog);
    });
    ASSERT_TRUE(changed);
    EXPECT_EQ((std::vector{changed->conductivityMinimum, changed->conductivityMaximum, changed->inphaseMinimum,
                           changed->inphaseMaximum, changed->iceMinimum, changed->iceMaximum}),
              c.saved);
    EXPECT_FALSE(scale(c.name, c.kind, c.ice, tapCancel));
  }
}

TEST_F(SessionDialogs, CanBeClosedFromOutsideUnderAMessageBox) {
  const auto outcome = comment([](QDialog& dialog) {
    QTest::keyClicks(dialog.focusWidget(), "half a wo");
    const DialogActor closer("Note", [&dialog](QDialog& box) {
      dialog.reject();
      EXPECT_TRUE(box.isVisible());
      box.reject();
    });
    QMessageBox box(QMessageBox::NoIcon, "Note", "on top", QMessageBox::Ok, &dialog);
    box.exec();
  });
  EXPECT_EQ(outcome.how, How::cancelledWithText);
  EXPECT_EQ(outcome.text, "half a wo");
}

TEST_F(SessionDialogs, DialogFollowsAWindowThatIsTurned) {
  EXPECT_FALSE(newLine(0, [this](QDialog& dialog) {
    window.resize(320, 240);
    QApplication::processEvents();
    expectFits(dialog);
    dialog.reject();
  }));
}

}  // namespace
}  // namespace kalmira
