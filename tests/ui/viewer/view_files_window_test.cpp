#include "ui/viewer/view_files_window.h"

#include <gmock/gmock.h>

#include <QAbstractItemView>
#include <algorithm>

#include "support/dialogs.h"
#include "support/viewed_file.h"
#include "ui/viewer/line_widgets.h"
#include "ui/viewer/readout_view.h"
#include "ui/viewer/view_curve_window.h"
#include "ui/viewer/viewer_layout.h"
#include "ui/viewer/viewer_saving.h"

namespace kalmira {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

struct ViewFilesTest : testing::Test {
  ViewFilesTest() {
    settings.traceWidth.fill(1);
    main.resize(240, 320);
    main.show();
    viewer.open();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&main));
  }
  // `stations` of the first line, then a short second one with a new station, a comment in its middle.
  std::filesystem::path survey(int stations) {
    content = kOrla + lineBlock("L7");
    for (int i = 0; i < stations; ++i) content += vertical();
    content += lineBlock("L8") + vertical() + formatNote(24, 'C', "gate", 1000) + vertical() +
               formatStation(24, 50, {.hour = 10}) + horizontal('T');
    writeFile(data / "A.ROR", content);
    return data / "A.ROR";
  }
  void key(Qt::Key qtKey, int times = 1) {
    for (int i = 0; i < times; ++i) QTest::keyClick(&viewer, qtKey);
  }
  QPushButton& button(int identifier) { return *viewer.findChild<QPushButton*>(QString::number(identifier)); }
  static void tapAt(QWidget& widget, int x) {
    QTest::mouseClick(&widget, Qt::LeftButton, {}, QPoint(x, widget.height() / 2));
  }
  std::string readout() {
    for (auto* widget : viewer.findChildren<QWidget*>()) {
      if (widget->accessibleName() == "Values at the bar") return dynamic_cast<ReadoutView*>(widget)->text();
    }
    return "no readout";
  }
  LineList& lines() { return dynamic_cast<LineList&>(*viewer.findChild<QComboBox*>("lines")); }
  ViewCurveWnd& plot() { return dynamic_cast<ViewCurveWnd&>(*viewer.findChild<QWidget*>("ViewCurveWnd")); }
  // Opens the list of lines, goes one on and closes it.
  void inList(Qt::Key step, Qt::Key close) {
    key(Qt::Key_L);
    auto& list = *lines().view();
    ASSERT_TRUE(QTest::qWaitFor([&] { return list.isVisible(); }));
    QTest::keyClick(&list, step);
    QTest::keyClick(&list, close);
    ASSERT_TRUE(QTest::qWaitFor([&] { return viewer.hasFocus(); }));
  }
  void fileDialog(const char* title, Qt::Key command, const char* name) {
    const DialogActor actor(title, [name](QDialog& dialog) {
      if (name != nullptr) dialog.findChild<QLineEdit*>("fileNameEdit")->setText(name);
      QTest::keyClick(&dialog, Qt::Key_Return);
    });
    key(command);
  }

  void savedDialog(const char* title, Qt::Key command, const char* name, const std::string& told) {
    std::string text;
    const DialogActor saved("Saved", noted(text));
    fileDialog(title, command, name);
    EXPECT_EQ(text, told);
  }

  TempFolder folder;
  std::filesystem::path data = folder.path() / "Storage/DATAORLA";
  std::string content;
  Settings settings;
  std::optional<Settings> taken;
  std::bitset<kKindCount> confirmed;
  int left = 0;
  std::string concern;
  QWidget main;
  ViewFilesWnd& viewer = *new ViewFilesWnd({.place = {.kind = Kind::orla, .root = folder.path()},
                                            .extract = {},
                                            .settingsFor = [this](Kind, bool) { return settings; },
                                            .takeSettings = [this](Kind, bool, const Settings& now) { taken = now; },
                                            .confirmedScales = confirmed,
                                            .onLeft = [this] { ++left; },
                                            .concern = [this] { return concern; }},
                                           dayTheme(), &main);
  const Navigation& at = viewer.navigation();
};

TEST_F(ViewFilesTest, KeysAndTapsWalkAlongTheLineAndTurningTheWindowKeepsThePlace) {
  ASSERT_TRUE(viewer.openFile(survey(600)));
  EXPECT_EQ(viewer.caption(), "A.ROR  ORLA");
  EXPECT_EQ(main.windowTitle(), "A.ROR  ORLA");
  const int shown = plot().plotSize().width() - 2;
  EXPECT_EQ(at.pointsInView, shown);
  // Row 50: 10 + 49 times 1.5.
  EXPECT_THAT(readout(), StartsWith("Stn: 83.50\nTime: 10:00:00\n"));
  EXPECT_THAT(readout(), HasSubstr("10.00 mS/m"));
  const struct {
    Qt::Key key;
    int button, firstRow, bar;
  } steps[] = {{Qt::Key_Right, 483, 1, 51},     {Qt::Key_Down, 483, 1, 52},   {Qt::Key_Left, 482, 1, 51},
               {Qt::Key_PageDown, 484, 81, 51}, {Qt::Key_PageUp, 481, 1, 51}, {Qt::Key_End, 485, 600 - shown + 1, 51},
               {Qt::Key_Home, 480, 1, 51},      {Qt::Key_Up, 482, 1, 50}};
  for (const bool byKey : {true, false}) {
    for (const auto& step : steps) {
      byKey ? key(step.key) : QTest::mouseClick(&button(step.button), Qt::LeftButton);
      EXPECT_EQ(at.firstRow, step.firstRow) << step.button;
      EXPECT_EQ(at.bar, step.bar) << step.button;
      EXPECT_EQ(plot().bar(), step.bar);
      EXPECT_TRUE(viewer.hasFocus());
    }
  }
  for (int i = 0; i < 6; ++i) {
    QTest::mouseClick(&button(483), Qt::LeftButton);
    QTest::mouseDClick(&button(483), Qt::LeftButton);
    QTest::mouseRelease(&button(483), Qt::LeftButton);
  }
  EXPECT_EQ(at.bar, 62) << "twelve quick taps";
  QTest::mousePress(&button(482), Qt::LeftButton);
  EXPECT_TRUE(QTest::qWaitFor([&] { return at.bar < 60; })) << "goes on while it is held";
  QTest::mouseRelease(&button(482), Qt::LeftButton);
  key(Qt::Key_End);
  tapAt(plot(), shown);  // the last column but the frame
  EXPECT_THAT(readout(), StartsWith("Stn: 908.50\n"));
  auto& overview = *viewer.findChild<QWidget*>("overview");
  tapAt(overview, 0);
  EXPECT_EQ(rowAtBar(at), 3) << "the middle of the rows in the first column";
  tapAt(overview, overview.width() - 1);
  EXPECT_EQ(at.lastRow, 600);
  const int first = at.firstRow;
  main.resize(320, 240);
  EXPECT_EQ(viewer.size(), QSize(320, 240));
  EXPECT_EQ(at.firstRow, first);
  EXPECT_EQ(at.pointsInView, plot().plotSize().width() - 2);
}

TEST_F(ViewFilesTest, TheListChoosesALineAndItsNotesStandAtTheirStations) {
  ASSERT_TRUE(viewer.openFile(survey(300)));
  inList(Qt::Key_Down, Qt::Key_Return);
  EXPECT_EQ(at.selectedLine, 1U);
  EXPECT_EQ(at.totalRows, 2 + 4 + 1);
  EXPECT_EQ(at.bar, 50) << "past the short line's end";
  EXPECT_EQ(readout(), "No station here\n");
  key(Qt::Key_Left, 49);
  EXPECT_THAT(readout(), HasSubstr("Comment: gate"));
  key(Qt::Key_Right);
  EXPECT_THAT(readout(), StartsWith("Stn: 11.50\n"));
  key(Qt::Key_Right, 9);
  EXPECT_EQ(at.bar, 7) << "stops at the last row";
  EXPECT_THAT(readout(), StartsWith("Stn: 50.00\n"));
  inList(Qt::Key_Up, Qt::Key_Escape);
  EXPECT_EQ(lines().currentIndex(), 1) << "closed without a choice";
  EXPECT_EQ(at.totalRows, 7);
}

TEST_F(ViewFilesTest, TabMovesTheHighlightTheScaleIsShownAndEnterPresses) {
  std::vector<std::string> round;
  const auto goRound = [&](std::size_t steps) {
    for (round.clear(); round.size() < steps; key(Qt::Key_Tab)) round.push_back(markedOf(viewer));
    return std::set<std::string>(round.begin(), round.end()).size();
  };
  EXPECT_EQ(goRound(5), 4U) << "without a file";
  EXPECT_EQ(round.front(), round.back());
  ASSERT_TRUE(viewer.openFile(survey(300)));
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
  EXPECT_THAT(viewer.caption(), EndsWith("C:0/40  I:-10/10"));
  EXPECT_NE(plot().picture(), before);
  EXPECT_TRUE(confirmed.test(0));
  EXPECT_EQ(goRound(16), 15U);
  EXPECT_EQ(round.front(), round.back());
  while (!button(488).isDefault() && !HasFailure()) key(Qt::Key_Tab);
  key(Qt::Key_Return);
  EXPECT_EQ(left, 1);
  EXPECT_TRUE(viewer.isHidden());
}

TEST_F(ViewFilesTest, TheScaleIsFittedUnlessTheOperatorConfirmedOneAndIsNeverHandedOn) {
  settings.conductivityMaximum = 5;
  const auto path = survey(300);
  const auto marks = [&] { return plot().offScale().size(); };
  ASSERT_TRUE(viewer.openFile(path));
  EXPECT_EQ(marks(), 0U);
  key(Qt::Key_T);
  EXPECT_THAT(viewer.caption(), EndsWith("C:9/11  I:-3/-1"));
  {
    const DialogActor actor("Enter Scale", [](QDialog& dialog) {
      EXPECT_EQ(dialog.findChild<QLineEdit*>("firstMaximum")->text(), "5") << "the operator's own";
      press(dialog, Qt::Key_Return);
    });
    key(Qt::Key_S);
  }
  EXPECT_THAT(viewer.caption(), EndsWith("C:0/5  I:-10/10"));
  EXPECT_GT(marks(), 3U) << "10 mS/m";
  ASSERT_TRUE(taken);
  EXPECT_EQ(taken->conductivityMaximum, 5.0F);
  ASSERT_TRUE(viewer.openFile(path));
  EXPECT_GT(marks(), 3U) << "holds for the next file, too";
  taken.reset();
  QTest::mouseClick(&button(493), Qt::LeftButton);
  EXPECT_EQ(marks(), 0U);
  ASSERT_TRUE(viewer.openFile(path));
  EXPECT_EQ(marks(), 0U);
  EXPECT_FALSE(taken);
}

TEST_F(ViewFilesTest, ZoomsByKeysButtonsAndWheelAndStretchesShortLines) {
  const auto path = survey(600);
  ASSERT_TRUE(viewer.openFile(path));
  const auto before = at;
  const auto places = [&] {
    std::string text;
    for (const auto& label : plot().labels()) text += label.text + " ";
    return text;
  };
  const auto usual = places();
  key(Qt::Key_Minus);
  const auto whole = places();
  EXPECT_THAT(whole, HasSubstr("10.00 ")) << "the first";
  EXPECT_THAT(whole, HasSubstr(" 8")) << "one near the last, 908.50";
  key(Qt::Key_Right, 3);
  EXPECT_THAT(readout(), StartsWith("Stn: 88.00\n"));
  tapAt(plot(), plot().width() - 3);
  EXPECT_THAT(readout(), StartsWith("Stn: 90")) << "in the last column";
  key(Qt::Key_Home);
  viewer.run(kZoomIn);
  EXPECT_EQ(places(), usual);
  QTest::mouseClick(&button(495), Qt::LeftButton);
  EXPECT_NE(places(), usual);
  key(Qt::Key_Plus, 9);
  key(Qt::Key_Right, 9);
  EXPECT_THAT(places(), HasSubstr(readout().substr(5, 6))) << "the view follows the bar";
  for (int i = 0; i < 20; ++i) {
    QWheelEvent wheel(QPointF(9, 9), QPointF(9, 9), {}, QPoint(0, -120), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&viewer, &wheel);
  }
  EXPECT_EQ(places(), whole);
  EXPECT_EQ(at.pointsInView, before.pointsInView);

  ASSERT_TRUE(viewer.openFile(survey(20)));
  EXPECT_EQ(at.bar, 10);
  EXPECT_GT(plot().bar(), plot().width() / 3) << "stretched";
  tapAt(plot(), plot().width() - 3);
  EXPECT_EQ(at.bar, 20);
}

TEST_F(ViewFilesTest, AFileThatGrowsIsFollowedAtItsEnd) {
  const auto path = survey(300);
  const auto grow = [&](int stations, const std::string& before = "") {
    std::string bytes = before;
    for (int i = 0; i < stations; ++i) bytes += vertical();
    std::ofstream(path, std::ios::binary | std::ios::app) << bytes;
  };
  ASSERT_TRUE(viewer.openFile(path));
  grow(200);
  QTest::qWait(700);
  EXPECT_EQ(at.totalRows, 300) << "another line is shown";
  viewer.showEnd();
  EXPECT_EQ(at.selectedLine, 1U);
  EXPECT_EQ(at.totalRows, 207);
  EXPECT_EQ(rowAtBar(at), 207);
  grow(300);
  ASSERT_TRUE(QTest::qWaitFor([&] { return at.totalRows == 507; }));
  EXPECT_EQ(at.lastRow, 507);
  EXPECT_EQ(rowAtBar(at), 507) << "the bar goes along";
  EXPECT_THAT(readout(), StartsWith("Stn: 800.00\n"));
  key(Qt::Key_Left, 5);
  grow(1);
  ASSERT_TRUE(QTest::qWaitFor([&] { return at.totalRows == 508; }));
  EXPECT_EQ(rowAtBar(at), 502) << "or stays where it is";
  key(Qt::Key_Home);
  grow(1);
  ASSERT_TRUE(QTest::qWaitFor([&] { return at.totalRows == 509; }));
  EXPECT_EQ(at.firstRow, 1);
  key(Qt::Key_End);
  grow(3, lineBlock("L9"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return at.selectedLine == 2; })) << "the next line";
  EXPECT_EQ(at.totalRows, 3);
  EXPECT_EQ(lines().count(), 3);
  viewer.leave();
  EXPECT_EQ(std::filesystem::file_size(rowFilesOf(folder.path(), kDefaultStorageClass).line1), 3 * kLine1Row);
}

TEST_F(ViewFilesTest, WhatASessionHasToSayStandsInFront) {
  ASSERT_TRUE(viewer.openFile(survey(300)));
  const auto& band = *viewer.findChild<QLabel*>("concern");
  for (const std::string text : {"Please Wait...", ""}) {
    concern = text;
    EXPECT_TRUE(QTest::qWaitFor([&] { return band.isVisible() == !text.empty(); }));
    EXPECT_EQ(band.text().toStdString(), text);
  }
  viewer.resize(640, 480);
  QApplication::processEvents();
  EXPECT_LT(band.height(), plot().height() / 2) << "lying, too, the line stays in sight";
}

TEST_F(ViewFilesTest, SavesPicturesAndTablesButNeverOverADataFile) {
  std::optional<DialogActor> again;
  const auto path = survey(300);
  fileDialog("Open Data File", Qt::Key_F, "A.ROR");  // found in the kind's folder
  savedDialog("Save Picture", Qt::Key_P, nullptr, "The picture of line 7 is in\n" + (data / "A-7.png").string());
  EXPECT_EQ(QImage(QString::fromStdString(data / "A-7.png")).size(), QSize(1600, 900));
  savedDialog("Save Picture", Qt::Key_P, "line.svg", "The picture of line 7 is in\n" + (data / "line.svg").string());
  EXPECT_THAT(readFile(data / "line.svg"), HasSubstr("A.ROR  ORLA   Line 7"));
  const auto whole = readFile(data / "line.svg");
  for (int i = 0; i < 4; ++i) key(Qt::Key_Plus);
  savedDialog("Save Picture", Qt::Key_P, "seen.svg", "The picture of line 7 is in\n" + (data / "seen.svg").string());
  for (const char* station : {">10.00<", ">352.00<"}) {
    EXPECT_THAT(whole, HasSubstr(station)) << "the whole line was seen";
    EXPECT_EQ(readFile(data / "seen.svg").find(station), std::string::npos) << "and now its middle";
  }
  const auto exported = [&](int format, int part, const char* name, const std::string& told) {
    const DialogActor chosen("Export", [&](QDialog& dialog) {
      dialog.findChild<QComboBox*>("exportFormat")->setCurrentIndex(format);
      dialog.findChild<QComboBox*>("exportPart")->setCurrentIndex(part);
      again.emplace("Export", [name](QDialog& file) {
        if (name != nullptr) file.findChild<QLineEdit*>("fileNameEdit")->setText(name);
        QTest::keyClick(&file, Qt::Key_Return);
      });
      QTest::keyClick(&dialog, Qt::Key_Return);
    });
    std::string text;
    const DialogActor saved("Saved", noted(text));
    key(Qt::Key_R);
    EXPECT_EQ(text, told);
  };
  exported(0, 0, nullptr, "The CSV table of 300 readings is in\n" + (data / "A-7.csv").string());
  const auto csv = readFile(data / "A-7.csv");
  EXPECT_EQ(std::count(csv.begin(), csv.end(), '\n'), 1 + 300) << "the line that is seen, not the next one";
  exported(2, 1, nullptr, "The GeoPackage of 303 readings is in\n" + (data / "A.gpkg").string());
  EXPECT_THAT(readFile(data / "A.gpkg"), StartsWith("SQLite format 3"));
  exported(2, 1, "all.xyz", "The XYZ table of 303 readings is in\n" + (data / "all.xyz").string());
  EXPECT_THAT(readFile(data / "all.xyz"), HasSubstr("\nLine 8\n")) << "by the ending that was typed";

  // After the warning it is asked for again, and then given up.
  std::string warning;
  {
    const DialogActor warned("WARNING", [&](QDialog& dialog) {
      again.emplace("Save Picture", Qt::Key_Escape);
      noted(warning)(dialog);
    });
    fileDialog("Save Picture", Qt::Key_P, "A.ROR");
  }
  EXPECT_THAT(warning, HasSubstr("data file"));
  EXPECT_EQ(readFile(path), content);
  std::filesystem::create_symlink(path, folder.path() / "alias.csv");
  for (const auto& [target, refused] : {std::pair{path, true},
                                        {data / "other.nts", true},
                                        {folder.path() / "alias.csv", true},
                                        {data / "A.csv", false}})
    EXPECT_EQ(!saveProblem(target, path).empty(), refused) << target;
  EXPECT_EQ(proposedName("/d/A.ROR", "12/N", "png"), "/d/A-12_N.png");
}

TEST_F(ViewFilesTest, WhatCannotBeShownIsTold) {
  ASSERT_TRUE(viewer.openFile(survey(300)));
  std::string told;
  for (const auto& [name, bytes] : {std::pair<std::string, std::string>{"empty.ROR", ""},
                                    {"zeros.ROR", std::string(4800, '\0')},
                                    {"text.ROR", "no data file at all\n"}}) {
    writeFile(folder.path() / name, bytes);
    const DialogActor actor("View Files", noted(told));
    EXPECT_FALSE(viewer.openFile(folder.path() / name));
    EXPECT_THAT(told, StartsWith(name));
    EXPECT_EQ(at.totalRows, 300) << "what was shown stays";
  }
  {
    std::filesystem::remove(rowFilesOf(folder.path(), kDefaultStorageClass).line1);
    const DialogActor actor("View Files", noted(told));
    key(Qt::Key_PageDown);
    EXPECT_EQ(told, "invalid handle 1");
  }
  writeFile(folder.path() / "none.ROR", kOrla);
  EXPECT_TRUE(viewer.openFile(folder.path() / "none.ROR"));
  EXPECT_THAT(viewer.caption(), EndsWith("no lines"));
  for (const auto each : {Qt::Key_Home, Qt::Key_PageDown, Qt::Key_End, Qt::Key_L}) key(each);
  EXPECT_EQ(readout(), "No station here\n");
}

TEST(ViewerLayout, NothingOverlapsOrLeavesTheWindowAndButtonsFitAFinger) {
  constexpr int kTouch = 34;
  for (const auto& [width, height] : {std::pair(240, 320), {320, 240}, {480, 640}, {640, 480}, {1280, 800}}) {
    SCOPED_TRACE(testing::Message() << width << " x " << height);
    const auto layout = layOutViewer(width, height, kTouch);
    std::vector<QRect> rects{layout.lines, layout.overview};
    rects.insert(rects.end(), layout.buttons.begin(), layout.buttons.end());
    for (const auto& rect : rects) EXPECT_GE(std::min(rect.width(), rect.height()), kTouch);
    rects.insert(rects.end(), {layout.caption, layout.readout, layout.plot});
    expectApart({0, 0, width, height}, rects);
    EXPECT_TRUE(layout.plot.height() >= height / 4 && layout.plot.width() >= width / 2);
  }
}

}  // namespace
}  // namespace kalmira
