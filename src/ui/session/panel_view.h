#pragma once

#include <QColor>
#include <QFont>
#include <QWidget>
#include <array>
#include <string>

#include "logging/panel_layout.h"
#include "logging/signs.h"
#include "ui/screen/calm_updates.h"
#include "ui/screen/theme.h"

namespace kalmira {

// The font of a panel text: `base` in `pixelSize`, the state word in bold.
QFont fontOfPanel(const QFont& base, PanelFont font, double pixelSize);
// Measures texts in those fonts. Keeps the fonts it has made: for one layout, not for ever.
MeasureText measureWith(const QFont& base);

// The status panel on the screen. A text that has not changed is not drawn again, and a text that has changes only its
// own rectangle. A text too wide for its cell is drawn narrower, never cut.
class PanelView final : public QWidget {
 public:
  PanelView(const Theme& theme, QWidget* parent);

  struct StateColours {
    QColor band;
    QColor text;
  };

  // Lays the fields out anew for this space, in the widget's font; the texts stay. Returns the height the panel takes,
  // in pixels.
  int arrange(const PanelSpace& space);
  void setTheme(const Theme& theme);
  // `text` is UTF-8 and replaces what stood in the field.
  void showText(PanelField field, std::string_view text);
  // The colours of the band: as in the session, 0 Monitor, -1 Stand By, 1 Logging.
  void setLoggingState(int loggingState);
  // What is old is seen to be: the band has stripes and says so beside the state word, the values are greyed, and where
  // the fix stands it says how long there has been none.
  void setSigns(const LinkSigns& signs);
  const LinkSigns& signs() const { return signs_; }
  // While one runs it speaks in large letters in a colour of its own, over everything but what it measures.
  void setCalibration(const CalibrationSign& sign);
  const CalibrationSign& calibration() const { return calibration_; }
  // For a sound that nobody can hear: the band turns its colours round for a moment.
  void setFlash(bool flash);
  void clearTexts();

  const std::string& text(PanelField field) const;
  const PanelLayout& layoutOfPanel() const { return layout_; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  // A text as it is drawn: without blanks at its end, and how wide it is.
  struct Shown {
    QString text;
    double width = 0;
  };
  StateColours bandColours() const;
  const PanelCell* cellOf(PanelField field) const;
  const QFont& fontOf(PanelFont font) const;
  Shown shownIn(const PanelCell& cell) const;
  bool isOld(PanelField field) const;
  QFont gpsSignFont() const;
  QRect gpsSignRect() const;
  void paintBand(QPainter& painter) const;
  void paintOldBand(QPainter& painter) const;
  void paintNoData(QPainter& painter, const QRectF& room) const;
  void paintPlate(QPainter& painter, const QRectF& room, const QString& text, const QFont& font) const;
  void paintGpsSign(QPainter& painter) const;
  QRect calibrationRect() const;
  void paintCalibration(QPainter& painter) const;
  void paintCell(QPainter& painter, const PanelCell& cell) const;
  void paintText(QPainter& painter, const QRectF& room, const Shown& shown, PanelFont font) const;

  const Theme* theme_;
  PanelLayout layout_;
  std::array<std::string, kPanelFields> texts_;
  std::array<QFont, 3> fonts_;
  int logging_state_ = 0;
  LinkSigns signs_;
  CalibrationSign calibration_;
  bool flash_ = false;
  CalmUpdates updates_{*this};
};

}  // namespace kalmira
