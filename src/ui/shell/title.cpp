#include "ui/shell/title.h"

#include <fmt/format.h>

#include <QFile>
#include <QPainter>
#include <QScreen>
#include <QSvgRenderer>
#include <algorithm>
#include <array>

#include "platform/command_line.h"

namespace kalmira {
namespace {

constexpr int kLargeScreen = 640;  // longer side from which a screen takes the large pictures
constexpr std::string_view kEmblem = "kalmira";

// The colours the drawings are made in, and what they become.
struct InkColour {
  const char* inDrawing;
  std::uint32_t Theme::*inTheme;
};
constexpr std::array<InkColour, 3> kInks{
    {{"#101010", &Theme::text}, {"#0044cc", &Theme::focus}, {"#c0c0c0", &Theme::chartGrid}}};

QString resourceOf(std::string_view file) { return qtText(fmt::format(":/titles/{}.svg", file)); }

std::string_view drawingFile(Kind kind, bool iceOption) {
  const auto& row = instrumentOf(kind);
  return iceOption && row.hasIce() ? row.drawingIce : row.drawing;
}

bool contains(std::span<const std::string_view> names, std::string_view name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

// The endings of the pictures made for such a screen, best first.
std::span<const std::string_view> endingsFor(QSize screen) {
  static constexpr std::array<std::string_view, 4> kLargeUpright{"VVGA", "V_VGA", "ARVGA", "_VGA"};
  static constexpr std::array<std::string_view, 3> kLargeWide{"HVGA", "H_VGA", "_VGA"};
  static constexpr std::array<std::string_view, 2> kSmallUpright{"MX", "STATICBMPA"};
  static constexpr std::array<std::string_view, 1> kSmallWide{"AR"};
  const bool wide = screen.width() > screen.height();
  if (std::max(screen.width(), screen.height()) >= kLargeScreen) {
    return wide ? std::span<const std::string_view>(kLargeWide) : kLargeUpright;
  }
  return wide ? std::span<const std::string_view>(kSmallWide) : kSmallUpright;
}

QFont fontOfHeight(const QFont& base, int pixels, bool bold) {
  QFont font = base;
  font.setPixelSize(std::max(pixels, 6));
  font.setBold(bold);
  return font;
}

}  // namespace

QString titleDrawing(std::string_view pictureName) {
  if (contains(commonTitlePictures(), pictureName)) return resourceOf(kEmblem);
  for (int index = 0; index < kKindCount; ++index) {
    const auto kind = static_cast<Kind>(index);
    for (const bool ice : {false, true}) {
      if (contains(titlePictures(kind, ice), pictureName)) return resourceOf(drawingFile(kind, ice));
    }
  }
  return {};
}

std::string_view titlePictureFor(Kind kind, bool iceOption, QSize screen) {
  const auto own = titlePictures(kind, iceOption);
  const auto names = own.empty() ? commonTitlePictures() : own;
  for (const auto ending : endingsFor(screen)) {
    for (const auto name : names) {
      if (name.ends_with(ending)) return name;
    }
  }
  return names.front();
}

QString drawingOf(Kind kind, bool iceOption, QSize screen) {
  if (titlePictures(kind, iceOption).empty()) return resourceOf(drawingFile(kind, iceOption));
  return titleDrawing(titlePictureFor(kind, iceOption, screen));
}

std::string shownName(Kind kind, bool iceOption) {
  return fmt::format("{}{}", instrumentOf(kind).name, instrumentOf(kind).hasIce() && iceOption ? " ice" : "");
}

QPixmap renderDrawing(const QString& drawing, const Theme& theme, QSize size, qreal pixelRatio) {
  QFile file(drawing);
  if (drawing.isEmpty() || size.isEmpty() || !file.open(QIODevice::ReadOnly)) return {};
  QByteArray text = file.readAll();
  for (const auto& ink : kInks) {
    text.replace(ink.inDrawing, QByteArray::fromStdString(fmt::format("#{:06x}", theme.*ink.inTheme)));
  }
  QSvgRenderer renderer(text);
  if (!renderer.isValid()) return {};
  const QSize fitted = renderer.defaultSize().scaled(size, Qt::KeepAspectRatio);
  QPixmap picture(fitted * pixelRatio);
  picture.setDevicePixelRatio(pixelRatio);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  renderer.render(&painter, QRectF(QPointF(0, 0), fitted));
  return picture;
}

QIcon programIcon() {
  QIcon icon;
  for (const int side : {16, 24, 32, 48, 64, 128}) {
    icon.addPixmap(renderDrawing(QStringLiteral(":/icon.svg"), dayTheme(), {side, side}, 1.0));
  }
  return icon;
}

TitleView::TitleView(Kind kind, bool iceOption, const Theme& theme, QWidget* parent)
    : QWidget(parent), kind_(kind), ice_option_(iceOption), theme_(&theme) {}

void TitleView::setTheme(const Theme& theme) {
  theme_ = &theme;
  drawn_size_ = {};
  update();
}

void TitleView::setInstrument(Kind kind, bool iceOption) {
  kind_ = kind;
  ice_option_ = iceOption;
  drawn_size_ = {};
  update();
}

const QPixmap& TitleView::drawingFor(QSize size) {
  const QSize wanted = size * devicePixelRatio();
  if (wanted != drawn_size_) {
    drawn_size_ = wanted;
    drawing_ = renderDrawing(drawingOf(kind_, ice_option_, window()->size()), *theme_, size, devicePixelRatio());
  }
  return drawing_;
}

// Name above, drawing, "KALMIRA" and the version below.
void TitleView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), QColor(theme_->background));
  const int unit = std::min(width() / 12, height() / 9);
  const QRect inside = rect().adjusted(unit / 2, unit / 3, -unit / 2, -unit / 3);
  const int nameHeight = unit * 2;
  const int footHeight = unit * 4 / 3;

  painter.setPen(QColor(theme_->text));
  painter.setFont(fontOfHeight(font(), nameHeight * 3 / 4, true));
  painter.drawText(QRect(inside.left(), inside.top(), inside.width(), nameHeight), Qt::AlignCenter,
                   qtText(shownName(kind_, ice_option_)));

  const QRect foot(inside.left(), inside.bottom() + 1 - footHeight, inside.width(), footHeight);
  painter.setFont(fontOfHeight(font(), footHeight * 2 / 3, true));
  painter.drawText(foot, Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("KALMIRA"));
  painter.setPen(QColor(theme_->faintText));
  painter.setFont(fontOfHeight(font(), footHeight / 2, false));
  painter.drawText(foot, Qt::AlignRight | Qt::AlignVCenter, qtText(fmt::format("Version {}", programVersion())));

  const QRect room(inside.left(), inside.top() + nameHeight, inside.width(), inside.height() - nameHeight - footHeight);
  const auto& drawing = drawingFor(room.size());
  if (drawing.isNull()) return;
  QRectF place(QPointF(0, 0), drawing.deviceIndependentSize());
  place.moveCenter(QRectF(room).center());
  painter.drawPixmap(place.topLeft(), drawing);
}

}  // namespace kalmira
