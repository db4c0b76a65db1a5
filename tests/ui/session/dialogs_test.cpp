#include "ui/session/dialogs.h"

#include <gmock/gmock.h>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>

#include "datafile/record_format.h"
#include "settings/comment_hint.h"
#include "support/dialog_actor.h"
#include "ui/screen/template_dialog.h"
#include "ui/screen/touch_button.h"

namespace kalmira {
namespace {

using ::testing::ElementsAre;
using How = CommentOutcome::How;

constexpr QSize kUpright{240, 320};
constexpr QSize kLying{320, 240};

class SessionDialogs : public ::testing::Test {
 protected:
  SessionDialogs() {
    window.resize(kUpright);
    window.show();
  }

  std::optional<LineEntry> newLine(double station, const std::function<void(QDialog&)>& act) {
    const DialogActor actor(window, "New Line", act);
    return runNewLineDialog(&window, settings, station);
  }
  std::optional<double> newStation(const std::function<void(QDialog&)>& act) {
    const DialogActor actor(window, "New Station", act);
    return runNewStationDialog(&window, "GetNewStation", settings, 12.5);
  }
  CommentOutcome comment(const std::function<void(QDialog&)>& act) {
    const DialogActor actor(window, "Enter Comment", act);
    return runCommentDialog(&window);
  }
  std::optional<Settings> scale(const char* templateName, Kind kind, bool ice,
                                const std::function<void(QDialog&)>& act) {
    const DialogActor actor(window, "Enter Scale", act);
    return runProfileScaleDialog(&window, templateName, kind, ice, settings);
  }

  QWidget window;
  Settings settings;
};

void press(QDialog& dialog, Qt::Key key) {
  QTest::keyClick(dialog.focusWidget(), key);
}

void tap(QDialog& dialog, const char* button) {
  QTest::mouseClick(&part<QPushButton>(dialog, button), Qt::LeftButton);
}

// As an operator does: over what is selected there, and on to the next field.
void type(QDialog& dialog, const QString& text) {
  QTest::keyClicks(dialog.focusWidget(), text);
  press(dialog, Qt::Key_Tab);
}

std::string fieldText(const QDialog& dialog, const char* field) {
  return typedText(part<QLineEdit>(dialog, field));
}

std::string labelText(const QDialog& dialog, const char* label) {
  return part<QLabel>(dialog, label).text().toStdString();
}

struct LineFields {
  std::vector<std::string> texts;
  int direction = -1;
};

LineFields lineFields(const QDialog& dialog) {
  return {{labelText(dialog, "currentLine"), labelText(dialog, "lastStation"), fieldText(dialog, "newLine"),
           fieldText(dialog, "lineIncrement"), fieldText(dialog, "startStation"),
           fieldText(dialog, "stationIncrement")},
          part<QComboBox>(dialog, "direction").currentIndex()};
}

TEST_F(SessionDialogs, NewLineProposesTheWayBackOrTheSameAgain) {
  settings.lineName = "A7";
  settings.lineIncrement = 2.0F;
  settings.stationIncrement = 2.5F;
  settings.direction = 2;
  settings.startStation = 5.0;
  LineFields shown;
  const auto look = [&shown](QDialog& dialog) {
    shown = lineFields(dialog);
    press(dialog, Qt::Key_Escape);
  };
  EXPECT_FALSE(newLine(50.0, look));
  EXPECT_THAT(shown.texts, ElementsAre("A7", "50.000", "2.00", "2.00", "50.000", "-2.500"));
  EXPECT_EQ(shown.direction, 1);

  settings.sequenceMode = kSequenceOneWay;
  EXPECT_FALSE(newLine(50.0, look));
  EXPECT_THAT(shown.texts, ElementsAre("A7", "50.000", "2.00", "2.00", "5.000", "2.500"));
  EXPECT_EQ(shown.direction, 2);
}

TEST_F(SessionDialogs, NewLineIsTypedFieldByFieldAndConfirmedByEnter) {
  const auto entry = newLine(1.0, [](QDialog& dialog) {
    type(dialog, "Bach 7, West");
    type(dialog, "2,5");
    EXPECT_EQ(fieldText(dialog, "lineIncrement"), "2.5") << "a comma is a full stop to be seen";
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Down);
    press(dialog, Qt::Key_Tab);
    QTest::keyClick(dialog.focusWidget(), Qt::Key_End);
    press(dialog, Qt::Key_Tab);
    type(dialog, "12.75x9");
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
    type(dialog, "1e300");
    part<QLineEdit>(dialog, "startStation").setText("inf");
    part<QLineEdit>(dialog, "stationIncrement").setText("nan");
    tap(dialog, "ok");
  });
  ASSERT_TRUE(entry);
  EXPECT_EQ(entry->lineName.size(), 2 * kLineNameCharacters);
  EXPECT_EQ(entry->lineIncrement, std::numeric_limits<float>::max());
  EXPECT_EQ(entry->startStation, 0.0);
  EXPECT_EQ(entry->stationIncrement, 0.0F);
}

TEST_F(SessionDialogs, NewStationStartsEmptyAndReadsWhatIsANumber) {
  settings.startStation = 3;
  struct Case {
    const char* typed;
    double station;
  };
  for (const auto& c :
       {Case{"", 0}, Case{"abc", 0}, Case{" 17.25m", 17.25}, Case{"-3,5", -3.5}, Case{"1e999", 0}}) {
    const auto station = newStation([&c](QDialog& dialog) {
      EXPECT_EQ(labelText(dialog, "startStation"), "3.000");
      EXPECT_EQ(labelText(dialog, "lastStation"), "12.500");
      EXPECT_EQ(fieldText(dialog, "newStation"), "");
      QTest::keyClicks(dialog.focusWidget(), c.typed);
      press(dialog, Qt::Key_Enter);
    });
    ASSERT_TRUE(station) << c.typed;
    EXPECT_EQ(*station, c.station) << c.typed;
  }
  EXPECT_FALSE(newStation([](QDialog& dialog) { tap(dialog, "cancel"); }));
}

TEST_F(SessionDialogs, CommentIsConfirmedOrCancelledWithAndWithoutText) {
  struct Case {
    const char* typed;
    Qt::Key key;
    How how;
  };
  for (const auto& c :
       {Case{"Zaun", Qt::Key_Return, How::confirmed}, Case{"", Qt::Key_Return, How::confirmed},
        Case{"Zaun", Qt::Key_Escape, How::cancelledWithText},
        Case{"", Qt::Key_Escape, How::cancelledEmpty}}) {
    const auto outcome = comment([&c](QDialog& dialog) {
      QTest::keyClicks(dialog.focusWidget(), c.typed);
      press(dialog, c.key);
    });
    EXPECT_EQ(outcome.how, c.how) << c.typed;
    EXPECT_EQ(outcome.text, c.typed);
  }
}

TEST_F(SessionDialogs, CommentTakes512CharactersAndShowsWhatIsKept) {
  const auto outcome = comment([](QDialog& dialog) {
    EXPECT_EQ(labelText(dialog, "hint"), "11 characters fit");
    QTest::keyClicks(dialog.focusWidget(), "Bridge");
    EXPECT_EQ(labelText(dialog, "hint"), "5 more fit");
    part<QLineEdit>(dialog, "comment").setText(QString::fromUtf8("Brücke über") + QString(600, 'z'));
    EXPECT_EQ(labelText(dialog, "hint"), "Kept: Br?cke ?ber");
    press(dialog, Qt::Key_Return);
  });
  EXPECT_EQ(outcome.text.size(), 512U + 2U);
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

TEST_F(SessionDialogs, ScalesAreShownAndLimitedAsTheKindHasThem) {
  settings.conductivityMinimum = 2.6F;
  settings.iceMinimum = 3;
  std::vector<std::string> shown;
  const auto changed = scale("GetNewProfileScaleICE", Kind::orla, true, [&shown](QDialog& dialog) {
    for (const char* field :
         {"firstMinimum", "firstMaximum", "inphaseMinimum", "inphaseMaximum", "iceMinimum", "iceMaximum"}) {
      shown.push_back(fieldText(dialog, field));
    }
    for (const char* text : {"50", "20", "-12000", "1e30", "12"}) type(dialog, text);
    QTest::keyClicks(dialog.focusWidget(), "15");
    press(dialog, Qt::Key_Return);
  });
  EXPECT_THAT(shown, ElementsAre("3", "10", "-10", "10", "3", "10"));
  ASSERT_TRUE(changed);
  EXPECT_THAT(
      (std::vector{changed->conductivityMinimum, changed->conductivityMaximum, changed->inphaseMinimum,
                   changed->inphaseMaximum, changed->iceMinimum, changed->iceMaximum}),
      ElementsAre(50, 150, -9000, 9000, 9, 10));
}

TEST_F(SessionDialogs, GlacoHasThicknessWithADecimalAndVardoNoInphase) {
  settings.conductivityMinimum = 1.25F;
  const auto ice = scale("GetNewProfileScaleOrla", Kind::glaco, false, [](QDialog& dialog) {
    EXPECT_EQ(labelText(dialog, "firstLabel"), "Thickness");
    EXPECT_EQ(fieldText(dialog, "firstMinimum"), "1.2");
    type(dialog, "3");
    type(dialog, "3");
    press(dialog, Qt::Key_Return);
  });
  ASSERT_TRUE(ice);
  EXPECT_EQ(ice->conductivityMinimum, 3.0F);
  EXPECT_EQ(ice->conductivityMaximum, 4.0F);

  settings.inphaseMinimum = 0.4F;  // would be rounded if it were read back
  const auto vardo = scale("GetNewProfileScaleVardo", Kind::vardo, false, [](QDialog& dialog) {
    EXPECT_EQ(labelText(dialog, "firstLabel"), "Conductivity");
    EXPECT_EQ(dialog.findChildren<QLineEdit*>().size(), 2);
    press(dialog, Qt::Key_Return);
  });
  ASSERT_TRUE(vardo);
  EXPECT_EQ(vardo->inphaseMinimum, 0.4F);
  EXPECT_EQ(vardo->conductivityMinimum, 1.0F);
  EXPECT_FALSE(
      scale("GetNewProfileScaleOrla", Kind::orla, false, [](QDialog& dialog) { tap(dialog, "cancel"); }));
}

TEST_F(SessionDialogs, IceScaleIsNeitherShownNorReadWhileTheIceDisplayIsOff) {
  settings.iceMinimum = 8.7F;
  const auto changed = scale("GetNewProfileScaleICE", Kind::orla, false, [](QDialog& dialog) {
    EXPECT_FALSE(part<QLineEdit>(dialog, "iceMinimum").isVisible());
    EXPECT_FALSE(part<QLabel>(dialog, "iceLabel").isVisible());
    press(dialog, Qt::Key_Return);
  });
  ASSERT_TRUE(changed);
  EXPECT_EQ(changed->iceMinimum, 8.7F);
}

TEST_F(SessionDialogs, CanBeClosedFromOutsideUnderAMessageBox) {
  const auto outcome = comment([this](QDialog& dialog) {
    QTest::keyClicks(dialog.focusWidget(), "half a wo");
    const DialogActor closer(window, "Note", [&dialog](QDialog& box) {
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
    window.resize(kLying);
    QApplication::processEvents();
    EXPECT_LE(dialog.height(), kLying.height());
    EXPECT_TRUE(part<QPushButton>(dialog, "ok").visibleRegion().boundingRect().contains(QPoint(5, 30)));
    part<QLineEdit>(dialog, "startStation").setFocus();
    press(dialog, Qt::Key_Tab);
    EXPECT_FALSE(part<QLineEdit>(dialog, "stationIncrement").visibleRegion().isEmpty())
        << "scrolled into view";
    dialog.reject();
  }));
}

struct Template {
  std::string name;
  QSize window;
};

class Templates : public ::testing::TestWithParam<Template> {};

// At the smallest scale, with the fingers of a screen of 96 dots an inch.
TEST_P(Templates, LoadFitTheWindowAndFitFingers) {
  QWidget window;
  window.resize(GetParam().window);
  window.show();
  const auto dialog = makeDialog(GetParam().name, &window);
  ASSERT_NE(dialog, nullptr);
  const DialogActor actor(window, dialog->windowTitle(), [](QDialog& open) {
    EXPECT_TRUE(open.parentWidget()->frameGeometry().contains(open.frameGeometry()));
    for (auto* bar : open.findChildren<QScrollBar*>()) EXPECT_FALSE(bar->isVisible()) << "does not fit";
    for (auto* control : open.findChildren<QWidget*>()) {
      if (qobject_cast<QLineEdit*>(control) == nullptr && qobject_cast<QPushButton*>(control) == nullptr)
        continue;
      EXPECT_GE(control->height(), touchHeight(nullptr)) << control->objectName().toStdString();
      EXPECT_FALSE(control->visibleRegion().isEmpty()) << control->objectName().toStdString();
    }
    for (auto* label : open.findChildren<QLabel*>()) {
      EXPECT_GE(label->width(), label->sizeHint().width()) << label->text().toStdString();
    }
    EXPECT_NE(open.focusWidget(), nullptr);
    open.accept();
  });
  EXPECT_TRUE(runDialog(*dialog));
}

std::string templateCase(const ::testing::TestParamInfo<Template>& info) {
  return info.param.name + (info.param.window == kLying ? "Lying" : "Upright");
}

INSTANTIATE_TEST_SUITE_P(All, Templates,
                         ::testing::Values(Template{"GetNewLine", kUpright}, Template{"GetNewLine", kLying},
                                           Template{"GetNewStation", kUpright},
                                           Template{"GetNewStationwm6", kLying},
                                           Template{"GetComment", kUpright}, Template{"GetComment", kLying},
                                           Template{"GetNewProfileScaleOrla", kUpright},
                                           Template{"GetNewProfileScaleOrlaH", kLying},
                                           Template{"GetNewProfileScaleVardo", kUpright},
                                           Template{"GetNewProfileScaleVardo", kLying},
                                           Template{"GetNewProfileScaleICE", kUpright},
                                           Template{"GetNewProfileScaleICE", kLying}),
                         templateCase);

TEST(TemplateDialog, UnknownNameIsNoDialog) {
  EXPECT_EQ(makeDialog("GetNothing", nullptr), nullptr);
}

}  // namespace
}  // namespace kalmira
