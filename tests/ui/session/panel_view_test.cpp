#include <gtest/gtest.h>

#include <QImage>
#include <QPaintEvent>
#include <QRegion>

#include "ui/session/panel_spaces.h"

namespace kalmira {
namespace {

QRect rectOf(const PanelCell& cell) {
  return {cell.left, cell.top, cell.width, cell.height};
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
    const std::pair<int, std::uint32_t> states[]{
        {0, theme->monitor}, {-1, theme->standBy}, {1, theme->logging}};
    for (const auto& [state, colour] : states) {
      panel.view.setLoggingState(state);
      const auto picture = panel.picture();
      EXPECT_EQ(picture.pixel(panel.view.width() - 1, 1) & 0xFFFFFFU, colour);
      const QRect corner(0, 0, panel.cell(PanelField::state).left,
                         panel.view.layoutOfPanel().stateBandHeight);
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
