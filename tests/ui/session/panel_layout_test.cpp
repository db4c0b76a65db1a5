#include <gmock/gmock.h>

#include <QRect>

#include "gps/nmea.h"
#include "logging/calibration.h"
#include "logging/gps_handler.h"
#include "logging/panel.h"
#include "logging/watchdog.h"
#include "support/session_fixture.h"
#include "ui/session/panel_spaces.h"

namespace kalmira {
namespace {

PanelLayout layOut(const PanelSpace& space) {
  return layOutPanel(space, measureWith(QApplication::font()));
}

QRect rectOf(const PanelCell& cell) {
  return {cell.left, cell.top, cell.width, cell.height};
}

TEST(PanelLayout, NothingOverlapsOrLeavesThePanel) {
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
  }
}

TEST(PanelLayout, LeavesRoomForTheChartAndStaysReadable) {
  for (const auto& space : allPanelSpaces()) {
    SCOPED_TRACE(describe(space));
    const auto layout = layOut(space);
    // Below it a row of buttons, 34 units, and a chart of 118 units, of 100 where four or six values are low.
    EXPECT_LE(layout.height, (space.wideLayout ? 145 : space.kind == Kind::tesk2 ? 106 : 93) * space.scale);
    EXPECT_GE(layout.textSize, 11 * space.scale - 1);
    EXPECT_GE(layout.valueSize, 13 * space.scale);
    EXPECT_GE(layout.stateSize, 15 * space.scale);
  }
}

TEST(PanelLayout, WidestTextsFitAtFullSize) {
  for (const auto& space : allPanelSpaces()) {
    SCOPED_TRACE(describe(space));
    const auto layout = layOut(space);
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

TEST(PanelLayout, FieldsOfTheKindAndOfGps) {
  using F = PanelField;
  const struct {
    Kind kind;
    bool gps;
    std::vector<PanelField> there, missing;
  } cases[]{
      {Kind::orla, false, {F::mode, F::range, F::gpsNote}, {F::value3, F::calibration, F::pdop, F::fix}},
      {Kind::orla, true, {F::pdop, F::satellites, F::gpsCount, F::gpsActivity}, {F::gpsNote}},
      {Kind::glaco, true, {F::value1, F::value2}, {F::mode, F::range, F::repeat, F::value3}},
      {Kind::tesk2, true, {F::value6, F::calibration}, {F::range}}};
  for (const bool wide : {true, false}) {
    for (const auto& item : cases) {
      const auto layout = layOut({.kind = item.kind, .wideLayout = wide, .gps = item.gps, .width = 320});
      for (const auto field : item.there) EXPECT_TRUE(findCell(layout, field)) << panelFieldName(field);
      for (const auto field : item.missing) EXPECT_FALSE(findCell(layout, field)) << panelFieldName(field);
    }
  }
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

}  // namespace
}  // namespace kalmira
