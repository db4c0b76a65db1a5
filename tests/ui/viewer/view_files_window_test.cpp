#include "ui/viewer/view_files_window.h"

#include <gmock/gmock.h>

#include <QAbstractItemView>
#include <QSvgRenderer>
#include <cmath>

#include "platform/text.h"
#include "support/dialogs.h"
#include "support/viewed_file.h"
#include "ui/viewer/line_list.h"
#include "ui/viewer/overview_strip.h"
#include "ui/viewer/readout_view.h"
#include "ui/viewer/view_curve_window.h"
#include "ui/viewer/viewer_saving.h"

namespace kalmira {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class ViewFilesTest : public testing::Test {
 protected:
  void SetUp() override {
    settings.traceWidth.fill(1);
    main.resize(240, 320);
    main.setWindowTitle("ORLA");
    main.show();
    viewer = new ViewFilesWnd({.place = {.kind = Kind::orla, .root = folder.path()},
                               .extract = {},
                               .settingsFor = [this](Kind, bool) { return settings; },
                               .takeSettings = [this](Kind, bool, const Settings& now) { taken = now; },
                               .onLeft = [this] { ++left; }},
                              dayTheme(), &main);
    viewer->open();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&main));
  }
  // `stations` of the first line, then a short second one with a new station, a comment in its middle.
  std::filesystem::path survey(int stations) {
    std::string bytes = kOrla + lineBlock("L7");
    for (int i = 0; i < stations; ++i) bytes += vertical();
    bytes += lineBlock("L8") + vertical() + formatNote(24, 'C', "gate", 1000) + vertical();
    bytes += formatStation(24, 50, {.hour = 10}) + horizontal('T');
    const auto path = folder.path() / "Storage/DATAORLA/A.ROR";
    writeFile(path, bytes);
    content = bytes;
    return path;
  }
  void key(Qt::Key qtKey) { QTest::keyClick(viewer, qtKey); }
  QPushButton& button(int identifier) { return *viewer->findChild<QPushButton*>(QString::number(identifier)); }
  static void tapAt(QWidget& widget, int x) {
    QTest::mouseClick(&widget, Qt::LeftButton, {}, QPoint(x, widget.height() / 2));
  }
  std::string readout() { return static_cast<ReadoutView*>(child("Values at the bar"))->text(); }
  QWidget* child(const char* accessibleName) {
    for (auto* widget : viewer->findChildren<QWidget*>()) {
      if (widget->accessibleName() == accessibleName) return widget;
    }
    ADD_FAILURE() << accessibleName;
    return nullptr;
  }
  LineList& lines() { return *static_cast<LineList*>(viewer->findChild<QComboBox*>("lines")); }
  ViewCurveWnd& plot() { return *static_cast<ViewCurveWnd*>(viewer->findChild<QWidget*>("ViewCurveWnd")); }
  // What the next message of that title says; it is answered by Enter.
  DialogActor message(const char* title, std::string& text) {
    return {title, [&text](QDialog& dialog) {
              text = dynamic_cast<QMessageBox&>(dialog).text().toStdString();
              QTest::keyClick(&dialog, Qt::Key_Return);
            }};
  }

  TempFolder folder;
  std::string content;
  Settings settings;
  std::optional<Settings> taken;
  int left = 0;
  QWidget main;
  ViewFilesWnd* viewer = nullptr;
};

TEST_F(ViewFilesTest, KeysAndTapsWalkAlongTheLine) {
  const auto path = survey(600);
  ASSERT_TRUE(viewer->openFile(path));
  EXPECT_EQ(viewer->caption(), "A.ROR  ORLA");
  EXPECT_EQ(main.windowTitle(), "A.ROR  ORLA");
  const auto& at = viewer->navigation();
  const int shown = plot().plotSize().width() - 2;
  EXPECT_EQ(at.pointsInView, shown);
  EXPECT_EQ(at.totalRows, 600);
  // Row 50: 10 + 49 times 1.5.
  EXPECT_THAT(readout(), StartsWith("Stn: 83.50\nTime: 10:00:00\n"));
  EXPECT_THAT(readout(), HasSubstr("10.00 mS/m"));
  const struct {
    Qt::Key key;
    int button;
    int firstRow;
    int bar;
  } steps[] = {{Qt::Key_Right, 483, 1, 51},     {Qt::Key_Down, 483, 1, 52},   {Qt::Key_Left, 482, 1, 51},
               {Qt::Key_PageDown, 484, 81, 51}, {Qt::Key_PageUp, 481, 1, 51}, {Qt::Key_End, 485, 600 - shown + 1, 51},
               {Qt::Key_Home, 480, 1, 51},      {Qt::Key_Up, 482, 1, 50},     {Qt::Key_Q, 0, 1, 50},
               {Qt::Key_Space, 0, 1, 50}};
  for (const bool byKey : {true, false}) {
    for (const auto& step : steps) {
      if (byKey)
        key(step.key);
      else if (step.button != 0)
        QTest::mouseClick(&button(step.button), Qt::LeftButton);
      EXPECT_EQ(at.firstRow, step.firstRow) << step.button;
      EXPECT_EQ(at.bar, step.bar) << step.button;
      EXPECT_EQ(plot().bar(), step.bar);
      EXPECT_TRUE(viewer->hasFocus());
    }
  }
  key(Qt::Key_End);
  tapAt(plot(), shown);  // the last column but the frame
  EXPECT_THAT(readout(), StartsWith("Stn: 908.50\n"));
  auto& overview = *viewer->findChild<QWidget*>("overview");
  tapAt(overview, 0);
  EXPECT_EQ(rowAtBar(at), 2) << "the middle of the rows in the first column";
  tapAt(overview, overview.width() - 1);
  EXPECT_EQ(at.lastRow, 600);
}

TEST_F(ViewFilesTest, TheListChoosesALineAndItsNotesStandAtTheirStations) {
  ASSERT_TRUE(viewer->openFile(survey(300)));
  ASSERT_EQ(lines().count(), 2);
  key(Qt::Key_L);
  auto& list = *lines().view();
  ASSERT_TRUE(QTest::qWaitFor([&] { return list.isVisible(); }));
  QTest::keyClick(&list, Qt::Key_Down);
  QTest::keyClick(&list, Qt::Key_Return);
  ASSERT_TRUE(QTest::qWaitFor([&] { return viewer->hasFocus(); }));
  const auto& at = viewer->navigation();
  EXPECT_EQ(at.selectedLine, 1U);
  EXPECT_EQ(at.totalRows, 2 + 4 + 1);
  EXPECT_EQ(at.bar, 50) << "past the short line's end";
  EXPECT_EQ(readout(), "");
  for (int i = 0; i < 49; ++i) key(Qt::Key_Left);
  EXPECT_THAT(readout(), HasSubstr("Comment: gate"));
  key(Qt::Key_Right);
  EXPECT_THAT(readout(), StartsWith("Stn: 11.50\n"));
  for (int i = 0; i < 9; ++i) key(Qt::Key_Right);
  EXPECT_EQ(at.bar, 7) << "stops at the last row";
  EXPECT_THAT(readout(), StartsWith("Stn: 50.00\n"));

  key(Qt::Key_L);
  ASSERT_TRUE(QTest::qWaitFor([&] { return list.isVisible(); }));
  QTest::keyClick(&list, Qt::Key_Up);
  QTest::keyClick(&list, Qt::Key_Escape);
  ASSERT_TRUE(QTest::qWaitFor([&] { return viewer->hasFocus(); }));
  EXPECT_EQ(lines().currentIndex(), 1) << "closed without a choice";
  EXPECT_EQ(at.totalRows, 7);
}

TEST_F(ViewFilesTest, TabMovesTheHighlightAndEnterPressesIt) {
  const auto highlighted = [this] {
    for (const auto* each : viewer->findChildren<QPushButton*>()) {
      if (each->isDefault()) return each->objectName().toInt();
    }
    return 0;
  };
  std::vector<int> order;
  const auto goRound = [&](std::size_t steps) {
    order.clear();
    for (std::size_t i = 0; i < steps; ++i) {
      order.push_back(highlighted());
      key(Qt::Key_Tab);
    }
  };
  goRound(5);
  EXPECT_THAT(order, testing::ElementsAre(486, 487, 488, 489, 486)) << "without a file";
  EXPECT_FALSE(button(480).isEnabled());
  ASSERT_TRUE(viewer->openFile(survey(60)));
  goRound(13);
  EXPECT_EQ(std::set<int>(order.begin(), order.end()).size(), 12U);
  EXPECT_EQ(order.front(), order.back());
  for (int i = 0; i < 12 && highlighted() != 488; ++i) key(Qt::Key_Tab);
  ASSERT_EQ(highlighted(), 488);
  key(Qt::Key_Return);
  EXPECT_EQ(left, 1);
  EXPECT_TRUE(viewer->isHidden());
}

TEST_F(ViewFilesTest, HelpAndScale) {
  std::string help;
  {
    const auto actor = message("View Files Help", help);
    tapAt(button(489), 10);
  }
  EXPECT_THAT(help, StartsWith("Select Line in box"));
  EXPECT_THAT(help, HasSubstr("80 right- tap --->"));
  ASSERT_TRUE(viewer->openFile(survey(300)));
  const auto before = plot().picture();
  {
    const DialogActor actor("Enter Scale", [](QDialog& dialog) {
      expectFits(dialog);
      type(dialog, "firstMaximum", "40");
      press(dialog, Qt::Key_Return);
    });
    key(Qt::Key_S);
  }
  ASSERT_TRUE(taken);
  EXPECT_EQ(taken->conductivityMaximum, 40.0F);
  EXPECT_THAT(viewer->caption(), EndsWith("C:0/40  I:-10/10"));
  EXPECT_NE(plot().picture(), before);
}

TEST_F(ViewFilesTest, TheOpenDialogStartsInTheKindsFolder) {
  survey(60);
  {
    const DialogActor actor("Open Data File", [](QDialog& dialog) {
      QTest::keyClicks(dialog.findChild<QLineEdit*>("fileNameEdit"), "A.ROR");
      QTest::keyClick(&dialog, Qt::Key_Return);
    });
    key(Qt::Key_F);
  }
  EXPECT_EQ(viewer->navigation().totalRows, 60);
}

TEST_F(ViewFilesTest, SavesPicturesAndTablesButNeverOverADataFile) {
  const auto path = survey(300);
  ASSERT_TRUE(viewer->openFile(path));
  const auto saveAs = [this](const char* title, Qt::Key command, const char* name) {
    const DialogActor actor(title, [name](QDialog& dialog) {
      auto& field = *dialog.findChild<QLineEdit*>("fileNameEdit");
      if (name != nullptr) field.setText(name);
      QTest::keyClick(&dialog, Qt::Key_Return);
    });
    key(command);
  };
  const auto beside = path.parent_path();
  saveAs("Save Picture", Qt::Key_P, nullptr);
  const QImage png(QString::fromStdString((beside / "A-7.png").string()));
  EXPECT_EQ(png.size(), QSize(1600, 900));
  saveAs("Save Picture", Qt::Key_P, "line.svg");
  const auto svg = readFile(beside / "line.svg");
  EXPECT_TRUE(QSvgRenderer(QByteArray::fromStdString(svg)).isValid());
  EXPECT_THAT(svg, HasSubstr("A.ROR  ORLA   Line 7"));
  EXPECT_THAT(svg, HasSubstr("Conductivity, mS/m"));
  saveAs("Export CSV", Qt::Key_C, nullptr);
  const auto csv = readFile(beside / "A.csv");
  EXPECT_EQ(std::count(csv.begin(), csv.end(), '\n'), 1 + 303);
  EXPECT_THAT(viewer->caption(), EndsWith("303 readings in A.csv"));

  // After the warning it is asked for again, and then given up.
  std::string warning;
  std::optional<DialogActor> again;
  {
    const DialogActor answered("WARNING", [&](QDialog& dialog) {
      warning = dynamic_cast<QMessageBox&>(dialog).text().toStdString();
      again.emplace("Export CSV", Qt::Key_Escape);
      QTest::keyClick(&dialog, Qt::Key_Return);
    });
    saveAs("Export CSV", Qt::Key_C, "A.ROR");
  }
  EXPECT_THAT(warning, HasSubstr("data file"));
  EXPECT_EQ(readFile(path), content);
}

TEST_F(ViewFilesTest, WhatCannotBeShownIsTold) {
  ASSERT_TRUE(viewer->openFile(survey(60)));
  const struct {
    const char* name;
    std::string bytes;
  } bad[] = {{"empty.ROR", ""}, {"zeros.ROR", std::string(4800, '\0')}, {"text.ROR", "no data file at all\n"}};
  for (const auto& each : bad) {
    SCOPED_TRACE(each.name);
    writeFile(folder.path() / each.name, each.bytes);
    std::string told;
    const auto actor = message("View Files", told);
    EXPECT_FALSE(viewer->openFile(folder.path() / each.name));
    EXPECT_THAT(told, StartsWith(each.name));
    EXPECT_EQ(viewer->navigation().totalRows, 60) << "what was shown stays";
  }
  writeFile(folder.path() / "none.ROR", kOrla);
  EXPECT_TRUE(viewer->openFile(folder.path() / "none.ROR"));
  EXPECT_EQ(lines().count(), 0);
  EXPECT_THAT(viewer->caption(), EndsWith("no lines"));
  for (const auto each : {Qt::Key_Home, Qt::Key_PageDown, Qt::Key_End, Qt::Key_Right, Qt::Key_L}) key(each);
  EXPECT_EQ(readout(), "");
}

TEST_F(ViewFilesTest, RowFilesThatAreGoneAreTold) {
  ASSERT_TRUE(viewer->openFile(survey(300)));
  const auto rows = rowFilesOf(folder.path(), kDefaultStorageClass);
  std::filesystem::remove(rows.line1);
  std::string told;
  const auto actor = message("View Files", told);
  key(Qt::Key_PageDown);
  EXPECT_EQ(told, "invalid handle 1");
}

TEST_F(ViewFilesTest, BreakRowsAreGaps) {
  ASSERT_TRUE(viewer->openFile(survey(300)));
  lines().setCurrentIndex(1);
  emit lines().activated(1);
  const auto picture = plot().picture();
  const auto traced = [&](int x) {
    for (int y = 0; y < picture.height(); ++y) {
      const QColor colour = picture.pixelColor(x, y);
      if (colour.saturation() > 60) return true;
    }
    return false;
  };
  // Two stations, four break rows, one station.
  EXPECT_TRUE(traced(1) && traced(2) && traced(7));
  for (int x = 3; x < 7; ++x) EXPECT_FALSE(traced(x)) << x;
}

TEST_F(ViewFilesTest, TurningTheWindowKeepsThePlace) {
  ASSERT_TRUE(viewer->openFile(survey(900)));
  key(Qt::Key_PageDown);
  main.resize(640, 480);
  EXPECT_EQ(viewer->size(), QSize(640, 480));
  EXPECT_EQ(viewer->navigation().firstRow, 81);
  EXPECT_EQ(viewer->navigation().pointsInView, plot().plotSize().width() - 2);
  key(Qt::Key_End);
  EXPECT_EQ(viewer->navigation().lastRow, 900);
}

// What the engine has logged of each instrument is what the viewer shows: the first station's values stand in
// the first row of the table that kalmira-export makes of the file.
TEST_F(ViewFilesTest, EveryKindsSurveyIsShownAsItWasLogged) {
  for (int index = 0; index < kKindCount; ++index) {
    const auto& instrument = instrumentOf(static_cast<Kind>(index));
    SCOPED_TRACE(instrument.name);
    const auto path =
        std::filesystem::path(KALMIRA_SAMPLES) / (std::string(instrument.name) + std::string(instrument.extension));
    ASSERT_TRUE(viewer->openFile(path));
    EXPECT_THAT(viewer->caption(), EndsWith(std::string(instrument.name)));
    EXPECT_EQ(lines().count(), 3);
    EXPECT_EQ(lines().itemText(0), "12N");
    for (int i = 0; i < 60; ++i) key(Qt::Key_Left);
    std::uint64_t readings = 0;
    ASSERT_EQ(exportTable(path, folder.path() / "t.csv", false, readings), "");
    std::istringstream table(readFile(folder.path() / "t.csv"));
    std::string cells;
    std::string row;
    std::getline(table, row);
    // The readings of a whole station may be several.
    for (int i = 0; i < 6 && std::getline(table, row); ++i) cells += row + ",";
    std::istringstream shown(readout());
    int values = 0;
    while (std::getline(shown, row)) {
      if (row.starts_with("Time") || row.starts_with("Stn") || row.find(": ") == std::string::npos) continue;
      if (row.starts_with("T:") || row.starts_with("t:")) continue;         // the table has no auxiliary values
      if (std::isdigit(static_cast<unsigned char>(row[0])) != 0) continue;  // a note
      const double value = parseReal(row.substr(row.find(": ") + 2));
      bool found = false;
      std::istringstream columns(cells);
      for (std::string cell; std::getline(columns, cell, ',');) {
        found = found || (!cell.empty() && std::abs(parseReal(cell) - value) < 0.0051);
      }
      EXPECT_TRUE(found) << row << "\n" << cells;
      ++values;
    }
    EXPECT_GE(values, 1) << readout();
  }
}

}  // namespace
}  // namespace kalmira
