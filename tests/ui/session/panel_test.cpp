#include <fmt/format.h>
#include <gmock/gmock.h>

#include <QApplication>
#include <QImage>
#include <QPaintEvent>
#include <QRegion>

#include "gps/nmea.h"
#include "logging/calibration.h"
#include "logging/gps_handler.h"
#include "logging/panel.h"
#include "logging/watchdog.h"
#include "support/session_fixture.h"
#include "ui/session/panel_view.h"

namespace kalmira {
namespace {

// Every panel there is: kinds and the ORLA's ice option, both layouts, with and without GPS, at `scales`.
std::vector<PanelSpace> allPanelSpaces(const std::vector<double>& scales = {1.0, 1.5, 2.0, 3.0}) {
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
  for (const auto& cell : layout.cells) {
    if (cell.field == field) return &cell;
  }
  return nullptr;
}

// How many pixels a text lacks in its cell at its full size; 0 or less when it fits.
double overhang(const PanelLayout& layout, const PanelCell& cell, std::string text) {
  text.resize(text.find_last_not_of(' ') + 1);
  const double needed = measureWith(QApplication::font())(cell.font, layout.size(cell.font), text);
  return needed + cell.labelWidth + 2 * cell.padding - cell.width;
}

PanelLayout layOut(const PanelSpace& space) { return layOutPanel(space, measureWith(QApplication::font())); }

QRect rectOf(const PanelCell& cell) { return {cell.left, cell.top, cell.width, cell.height}; }

TEST(PanelLayout, NothingOverlapsIsCutOrTakesTheChartsRoom) {
  for (const auto& space : allPanelSpaces()) {
    SCOPED_TRACE(describe(space));
    const auto layout = layOut(space);
    const QRect panel(0, 0, space.width, layout.height);
    for (std::size_t i = 0; i < layout.cells.size(); ++i) {
      const auto rect = rectOf(layout.cells[i]);
      ASSERT_TRUE(panel.contains(rect)) << panelFieldName(layout.cells[i].field);
      for (std::size_t j = 0; j < i; ++j) {
        ASSERT_FALSE(rect.intersects(rectOf(layout.cells[j])))
            << panelFieldName(layout.cells[i].field) << " and " << panelFieldName(layout.cells[j].field);
      }
    }
    const auto* battery = findCell(layout, PanelField::battery);
    ASSERT_NE(battery, nullptr);
    EXPECT_EQ(battery->left, space.width - static_cast<int>(40 * space.scale));
    // Below it a row of buttons, 34 units, and a chart of 118 units, of 100 where four or six values are low.
    EXPECT_LE(layout.height, (space.wideLayout ? 145 : space.kind == Kind::tesk2 ? 106 : 93) * space.scale);
    EXPECT_GE(layout.textSize, 11 * space.scale - 1);
    EXPECT_GE(layout.valueSize, 13 * space.scale);
    EXPECT_GE(layout.stateSize, 15 * space.scale);
    for (int i = 0; i < kPanelFields; ++i) {
      const auto field = static_cast<PanelField>(i);
      const auto texts = widestTexts(space, field);
      const auto* cell = findCell(layout, field);
      ASSERT_EQ(cell != nullptr, !texts.empty()) << panelFieldName(field);
      for (const auto& text : texts) EXPECT_LE(overhang(layout, *cell, text), 0.0) << text;
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

std::string withChecksum(const std::string& body) {
  unsigned sum = 0;
  for (const char c : body) sum ^= static_cast<unsigned char>(c);
  return fmt::format("${}*{:02X}", body, sum);
}

void feedGps(Session& session) {
  for (char quality = '0'; quality <= '9'; ++quality) {
    OnGpsLine(session, {.text = withChecksum(fmt::format("GPGGA,1,5,N,7,E,{},24,1.0,0,M,0,M,,", quality))});
  }
  OnGpsLine(session, {.text = withChecksum("GPGSA,A,3,01,02,03,04,05,06,07,08,09,10,11,12,888.8,1,1")});
  OnGpsLine(session, {.text = "$GPGSA,broken*00"});
  OnGpsLine(session, {.text = "$GPGGA,broken*00"});
}

// Every mode byte with the widest fields, both signs.
void feedReadings(TestSession& test) {
  const bool glaco = test.session.instrument.kind == Kind::glaco;
  for (int mode = 0; mode < 256; ++mode) {
    for (const char sign : {'+', '-'}) {
      auto record = fmt::format("T{}{}9999{}9999", static_cast<char>(mode), sign, sign);
      if (glaco) record = fmt::format("T{0}99I{0}99", sign == '-' ? '-' : '9');
      if (test.session.instrument.kind == Kind::tesk2) {
        record = std::string{'T', static_cast<char>(mode)} + std::string(12, sign == '-' ? '\0' : '\xFF');
      }
      test.record(record);
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
  feedReadings(test);
  feedGps(test.session);
  startRecording(test.session);
  feedReadings(test);
  feedGps(test.session);
  paintPanel(test.session);
  if (test.session.instrument.kind == Kind::tesk2) {
    for (const std::string_view modes : {"\x06\x02", "\x06\x06", "\x02\x02"}) feedCalibration(test, modes);
  }
  test.clock.advance(100000);
  onTimer(test.session);  // "Please Wait..."
}

// What sessions really show, against the samples that the panel is laid out by.
TEST(PanelLayout, EverythingASessionShowsHasItsCellAndFits) {
  for (const auto& space : allPanelSpaces({1.0, 2.0})) {
    if (!space.gps) continue;
    SCOPED_TRACE(describe(space));
    TestSession test(space.kind, space.iceOption, space.wideLayout);
    feedSession(test);
    const auto layout = layOut(space);
    std::size_t shown = 0;
    for (const auto& [field, texts] : test.view.changes) {
      for (const auto& text : texts) {
        if (text.find_first_not_of(' ') == std::string::npos) continue;
        const auto* cell = findCell(layout, field);
        ASSERT_NE(cell, nullptr) << panelFieldName(field) << " shows " << text;
        EXPECT_LE(overhang(layout, *cell, text), 0.0) << panelFieldName(field) << " shows " << text;
        ++shown;
      }
    }
    EXPECT_GT(shown, 20U);
    EXPECT_EQ(test.view.texts[PanelField::message], "Please Wait...");
    EXPECT_EQ(test.view.texts[PanelField::pdop], "??");
  }
}

bool shows(const QImage& picture, std::uint32_t colour) {
  for (int y = 0; y < picture.height(); ++y) {
    for (int x = 0; x < picture.width(); ++x) {
      if ((picture.pixel(x, y) & 0xFFFFFFU) == colour) return true;
    }
  }
  return false;
}

struct Panel {
  explicit Panel(const PanelSpace& space, const Theme& theme = dayTheme()) : view(theme, nullptr) {
    view.resize(space.width, view.arrange(space));
  }
  QImage picture() { return view.grab().toImage().convertToFormat(QImage::Format_RGB32); }
  const PanelCell& cell(PanelField field) { return *findCell(view.layoutOfPanel(), field); }

  PanelView view;
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
        const auto rect = rectOf(cell).adjusted(-1, 0, 1, 0);
        EXPECT_NE(after, before) << text << " is not to be seen";
        for (int y = rect.top(); y <= rect.bottom(); ++y) {
          for (int x = rect.left(); x <= rect.right(); ++x) after.setPixel(x, y, before.pixel(x, y));
        }
        EXPECT_EQ(after, before) << panelFieldName(cell.field) << " leaves its cell: " << text;
      }
      panel.view.showText(cell.field, "");
      ASSERT_EQ(panel.picture(), before) << "a cleared field leaves something behind";
    }
  }
}

TEST(PanelView, StatesDifferInColourAndWithoutIt) {
  for (const Theme* theme : {&dayTheme(), &nightTheme()}) {
    Panel panel(kOrla, *theme);
    std::vector<QImage> shapes;
    const std::pair<int, std::uint32_t> states[]{{0, theme->monitor}, {-1, theme->standBy}, {1, theme->logging}};
    for (const auto& [state, colour] : states) {
      panel.view.setLoggingState(state);
      const auto picture = panel.picture();
      EXPECT_EQ(picture.pixel(panel.view.width() - 1, 1) & 0xFFFFFFU, colour);
      const QRect corner(0, 0, panel.cell(PanelField::state).left, panel.view.layoutOfPanel().stateBandHeight);
      // Where the band's own colour is, and where it is not.
      const QImage shape = picture.copy(corner).createMaskFromColor(0xFF000000U | colour);
      for (const auto& other : shapes) EXPECT_NE(shape, other);
      shapes.push_back(shape);
    }
  }
}

TEST(PanelView, MessageStandsOutOnlyWhileThereIsOne) {
  for (const bool wide : {true, false}) {
    Panel panel({.kind = Kind::orla, .wideLayout = wide, .width = 320});
    EXPECT_FALSE(shows(panel.picture(), dayTheme().warning));
    panel.view.showText(PanelField::message, "Disk full");
    EXPECT_TRUE(shows(panel.picture(), dayTheme().warning));
    panel.view.showText(PanelField::message, "");
    EXPECT_FALSE(shows(panel.picture(), dayTheme().warning));
  }
}

// Remembers what of a widget was painted.
struct PaintWatch : QObject {
  bool eventFilter(QObject* /*watched*/, QEvent* event) override {
    if (event->type() == QEvent::Paint) painted += static_cast<QPaintEvent*>(event)->region();
    return false;
  }
  QRegion painted;
};

TEST(PanelView, PaintsOnlyWhatHasChanged) {
  Panel panel(kOrla);
  panel.view.show();
  QApplication::processEvents();
  PaintWatch watch;
  panel.view.installEventFilter(&watch);
  panel.view.showText(PanelField::value1, "C:1.00    mS/m");
  QApplication::processEvents();
  EXPECT_EQ(watch.painted, QRegion(rectOf(panel.cell(PanelField::value1))));
  watch.painted = {};
  panel.view.showText(PanelField::value1, "C:1.00    mS/m");
  panel.view.setLoggingState(0);
  panel.view.showText(PanelField::gpsNote, "has no cell here");
  QApplication::processEvents();
  EXPECT_TRUE(watch.painted.isEmpty());
}

TEST(PanelView, TextsSurviveAnotherLayout) {
  Panel panel(kOrla);
  panel.view.showText(PanelField::value1, "C:1.00    mS/m");
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
