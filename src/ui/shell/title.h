#pragma once

#include <QIcon>
#include <QPixmap>
#include <QWidget>
#include <string>
#include <string_view>

#include "instruments/catalogue.h"
#include "ui/screen/theme.h"

namespace kalmira {

// The drawing in the program's resources, ":/titles/....svg", that a title picture's name stands for; empty for a name
// that is none.
QString titleDrawing(std::string_view pictureName);
// The picture name for a kind on a screen of that size in pixels; MIRKA has none of its own, its name is a common one.
std::string_view titlePictureFor(Kind kind, bool iceOption, QSize screen);
// The drawing a kind is shown by, MIRKA's too.
QString drawingOf(Kind kind, bool iceOption, QSize screen);
// The kind's name as it is shown: "ORLA", "ORLA ice".
std::string shownName(Kind kind, bool iceOption);

// A drawing in the theme's colours, as large as fits into `size`; empty when there is no such drawing.
QPixmap renderDrawing(const QString& drawing, const Theme& theme, QSize size, qreal pixelRatio);
// The program's icon, for window frames and lists: as pixels, for what draws SVG by itself need not be installed.
QIcon programIcon();

// The title screen: the instrument's silhouette, its name, "KALMIRA" and the version.
class TitleView final : public QWidget {
 public:
  TitleView(Kind kind, bool iceOption, const Theme& theme, QWidget* parent);
  void setTheme(const Theme& theme);
  void setInstrument(Kind kind, bool iceOption);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  const QPixmap& drawingFor(QSize size);

  Kind kind_;
  bool ice_option_;
  const Theme* theme_;
  QPixmap drawing_;  // kept until the size, the theme or the instrument changes
  QSize drawn_size_;
};

}  // namespace kalmira
