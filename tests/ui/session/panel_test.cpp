#include <fmt/format.h>

#include <gmock/gmock.h>
#include <algorithm>

#include <QPaintEvent>
#include <QPainter>

#include "gps/nmea.h"
#include "logging/calibration.h"
#include "logging/handlers.h"
#include "logging/panel.h"
#include "logging/session_link.h"
#include "support/dialogs.h"
#include "support/session_fixture.h"
#include "ui/session/panel_view.h"

namespace kalmira {
namespace {

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
    }
  }
  return spaces;
}

std::string describe(const PanelSpace& space) {
  return fmt::format("{}{} {} scale {} {}", instrumentOf(space.kind).name, space.iceOption ? " ice" : "",
                     space.wideLayout ? "portrait" : "landscape", space.scale, space.gps ? "gps" : "no gps");
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
    EXPECT_LE(layout.height, (space.wideLayout ? 145 : space.kind == Kind::tesk2 ? 106 : 93) * space.scale);
    EXPECT_GE(layout.textSize, 11 * space.scale - 1);
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

TEST(PanelLayout, LargerFontsThanThereIsRoomForShrink) {
  PanelSpace space{.kind = Kind::tesk2, .gps = true, .width = 240};
  const MeasureText broad = [](PanelFont, double size, std::string_view text) {
    return 0.8 * size * static_cast<double>(text.size());
  };
  const auto layout = layOutPanel(space, broad);
  EXPECT_LT(layout.textSize, 11);
  for (const auto& cell : layout.cells) {
    for (const auto& text : widestTexts(space, cell.field)) {
      EXPECT_LE(broad(cell.font, layout.size(cell.font), text) + cell.labelWidth, cell.width) << text;
    }
  }
  space.width = 60;  // hopeless: it ends all the same
  EXPECT_GT(layOutPanel(space, broad).textSize, 0);
}

void feedGps(Session& session) {
  const auto line = [&session](const std::string& body) {
    unsigned sum = 0;
    for (const char c : body) sum ^= static_cast<unsigned char>(c);
    OnGpsLine(session, {.text = fmt::format("${}*{:02X}", body, sum)});
  };
  for (char quality = '0'; quality <= '9'; ++quality) line(fmt::format("GPGGA,1,5,N,7,E,{},24,1.0,0,M,0,M,,", quality));
  line("GPGSA,A,3,01,02,03,04,05,06,07,08,09,10,11,12,888.8,1,1");
  OnGpsLine(session, {.text = "$GPGSA,broken*00"});
  OnGpsLine(session, {.text = "$GPGGA,broken*00"});
}

// Every mode byte with the widest fields, both signs.
void feedReadings(TestSession& test) {
  const auto kind = test.session.instrument.kind;
  for (int mode = 0; mode < 256; ++mode) {
    for (const char sign : {'+', '-'}) {
      const std::string start{'T', static_cast<char>(mode)};
      if (kind == Kind::glaco) test.record(fmt::format("T{0}99I{0}99", sign == '-' ? '-' : '9'));
      if (kind == Kind::tesk2) test.record(start + std::string(12, sign == '-' ? '\0' : '\xFF'));
      if (kind != Kind::glaco && kind != Kind::tesk2) test.record(fmt::format("{}{}9999{}9999", start, sign, sign));
    }
  }
}

void feedCalibration(TestSession& test, std::string_view modes) {
  ASSERT_TRUE(startCalibration(test.session));
  for (int i = 0; i < 600 && test.session.calibration.calibrationPhase != 0; ++i) {
    const char mode = modes[test.session.calibration.calibrationActive == 1 ? 0 : 1];
    test.clock.advance(50);
    test.record(std::string{'T', mode} + std::string(12, '\0'));
  }
}

void feedSession(TestSession& test) {
  test.settings.gpsInput = 1;
  test.settings.lengthUnits = 1;
  test.settings.iceDisplay = 1;
  test.settings.surveyMode = kModeManual;
  test.settings.surveyListB = 2;
  test.settings.readingsCount = 100;
  test.settings.startStation = -99999.99F;
  test.session.setup.teskRangeTimes10 = true;
  test.begin();
  test.session.station = -99999.99;
  for (const bool recording : {false, true}) {
    if (recording) startRecording(test.session);
    feedReadings(test);
    feedGps(test.session);
  }
  paintPanel(test.session);
  if (test.session.instrument.kind == Kind::tesk2) {
    for (const std::string_view modes : {"\x06\x02", "\x06\x06", "\x02\x02"}) feedCalibration(test, modes);
  }
  test.clock.advance(100000);
  onTimer(test.session);  // "Please Wait..."
}

// What sessions really show, against the samples that the panel is laid out by.
TEST(PanelLayout, EverythingASessionShowsHasItsCellAndFits) {
  const auto measure = measureWith(QApplication::font());
  for (const auto& space : allPanelSpaces({1.0, 2.0})) {
    if (!space.gps) continue;
    SCOPED_TRACE(describe(space));
    TestSession test(space.kind, space.iceOption, space.wideLayout);
    feedSession(test);
    const auto layout = layOutPanel(space, measure);
    std::size_t shown = 0;
    for (const auto& [field, texts] : test.view.changes) {
      for (const auto& text : texts) {
        if (text.find_first_not_of(' ') == std::string::npos) continue;
        expectRoom(layout, measure, field, text);
        ++shown;
      }
    }
    EXPECT_GT(shown, 20U);
    EXPECT_EQ(test.view.texts[PanelField::message], "Please Wait...");
    EXPECT_EQ(test.view.texts[PanelField::pdop], "??");
  }
}

// Remembers what of its view was painted.
struct Panel : QObject {
  explicit Panel(const PanelSpace& space, const Theme& theme = dayTheme()) : view(theme, nullptr) {
    view.resize(space.width, view.arrange(space));
    view.installEventFilter(this);
  }
  QImage picture() { return view.grab().toImage().convertToFormat(QImage::Format_RGB32); }
  const PanelCell& cell(PanelField field) { return *findCell(view.layoutOfPanel(), field); }
  bool eventFilter(QObject* /*watched*/, QEvent* event) override {
    if (event->type() == QEvent::Paint) painted += static_cast<QPaintEvent*>(event)->region();
    return false;
  }

  PanelView view;
  QRegion painted;
};

const PanelSpace kOrla{.kind = Kind::orla, .gps = true, .scale = 2.0, .width = 480};

// A text as wide as can be, or much wider, changes nothing outside its cell: neither cut nor over a
// neighbour.
TEST(PanelView, TextsStayInTheirCells) {
  for (const auto& space : allPanelSpaces({1.0})) {
    SCOPED_TRACE(describe(space));
    Panel panel(space);
    const auto before = panel.picture();
    for (const auto& cell : panel.view.layoutOfPanel().cells) {
      auto texts = widestTexts(space, cell.field);
      texts.emplace_back(40, 'W');
      for (const auto& text : texts) {
        panel.view.showText(cell.field, text);
        auto after = panel.picture();
        EXPECT_NE(after, before) << text << " is not to be seen";
        const auto rect = rectOf(cell).adjusted(-1, 0, 1, 0);
        QPainter(&after).drawImage(rect, before, rect);
        EXPECT_EQ(after, before) << panelFieldName(cell.field) << " leaves its cell: " << text;
      }
      panel.view.showText(cell.field, "");
      ASSERT_EQ(panel.picture(), before) << "a cleared field leaves something behind";
    }
  }
}

TEST(PanelView, StatesDifferInColourAndWithoutItAndMessagesStandOut) {
  for (const Theme* theme : {&dayTheme(), &nightTheme()}) {
    Panel panel(kOrla, *theme);
    std::vector<QImage> shapes;
    for (const auto& [state, colour] : {std::pair{0, theme->monitor}, {-1, theme->standBy}, {1, theme->logging}}) {
      panel.view.setLoggingState(state);
      const auto picture = panel.picture();
      EXPECT_EQ(picture.pixel(panel.view.width() - 1, 1) & RGB_MASK, colour);
      const QRect corner(0, 0, panel.cell(PanelField::state).left, panel.view.layoutOfPanel().stateBandHeight);
      // Where the band's own colour is, and where it is not.
      shapes.push_back(picture.copy(corner).createMaskFromColor(0xFF000000U | colour));
      EXPECT_EQ(std::count(shapes.begin(), shapes.end(), shapes.back()), 1);
    }
    for (const char* text : {"", "Disk full", ""}) {
      panel.view.showText(PanelField::message, text);
      EXPECT_EQ(countPixels(panel.picture(), theme->warning) > 0, *text != '\0');
    }
  }
}

TEST(PanelView, PaintsOnlyWhatHasChangedAndKeepsItsTextsInAnotherLayout) {
  Panel panel(kOrla);
  panel.view.show();
  QApplication::processEvents();
  for (const bool first : {true, false}) {
    panel.painted = {};
    panel.view.showText(PanelField::value1, "C:1.00    mS/m");
    panel.view.setLoggingState(0);
    panel.view.showText(PanelField::gpsNote, "has no cell here");
    QApplication::processEvents();
    EXPECT_EQ(panel.painted, first ? QRegion(rectOf(panel.cell(PanelField::value1))) : QRegion());
  }
  const auto before = panel.picture();
  PanelSpace turned = kOrla;
  turned.wideLayout = false;
  turned.width = 640;
  EXPECT_LT(panel.view.arrange(turned), before.height());
  EXPECT_EQ(panel.view.text(PanelField::value1), "C:1.00    mS/m");
  panel.view.arrange(kOrla);
  EXPECT_EQ(panel.picture(), before);
  panel.view.clearTexts();
  EXPECT_EQ(panel.view.text(PanelField::value1), "");
  EXPECT_NE(panel.picture(), before);
}

}  // namespace
}  // namespace kalmira
