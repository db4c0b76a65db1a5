#include "ui/shell/title.h"

#include <gmock/gmock.h>

#include <QFile>
#include <set>

#include "instruments/resource_names.h"

namespace kalmira {
namespace {

bool hasColour(const QImage& image, std::uint32_t colour) {
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (image.pixel(x, y) == (0xFF000000U | colour)) return true;
    }
  }
  return false;
}

TEST(Title, EveryPictureNameIsADrawing) {
  std::vector<std::string_view> names(commonTitlePictures().begin(), commonTitlePictures().end());
  for (int index = 0; index < kKindCount; ++index) {
    for (const bool ice : {false, true}) {
      const auto own = titlePictures(static_cast<Kind>(index), ice);
      names.insert(names.end(), own.begin(), own.end());
    }
  }
  EXPECT_GE(names.size(), 41U);
  for (const auto name : names) {
    const auto drawing = titleDrawing(name);
    EXPECT_TRUE(QFile::exists(drawing)) << name;
    EXPECT_FALSE(renderDrawing(drawing, dayTheme(), {100, 100}, 1.0).isNull()) << name;
  }
  EXPECT_TRUE(titleDrawing("STATICTIT_").isEmpty());
  EXPECT_TRUE(titleDrawing("").isEmpty());
}

TEST(Title, PicturesByTheShapeOfTheScreen) {
  const struct {
    Kind kind;
    bool ice;
    QSize screen;
    std::string_view name;
  } cases[]{
      {Kind::orla, false, {480, 640}, "STATICTIT_ORLAVVGA"},    {Kind::orla, false, {640, 480}, "STATICTIT_ORLAHVGA"},
      {Kind::orla, false, {240, 320}, "STATICTIT_ORLAMX"},      {Kind::orla, true, {480, 640}, "STATICTIT_ICEV_VGA"},
      {Kind::glaco, false, {800, 480}, "STATICTIT_GLACOH_VGA"}, {Kind::glaco, false, {320, 240}, "STATICTIT_GLACOAR"},
      {Kind::tesk2, false, {480, 640}, "STATICTIT_TESK2ARVGA"}, {Kind::mirka, false, {480, 640}, "STATICBMPAARVGA"},
      {Kind::mirka, false, {240, 320}, "STATICBMPA"},
  };
  for (const auto& test : cases) EXPECT_EQ(titlePictureFor(test.kind, test.ice, test.screen), test.name);
}

TEST(Title, EveryInstrumentLooksDifferentInTheThemesColours) {
  std::set<std::string> pictures;
  for (int index = 0; index <= kKindCount; ++index) {
    const bool ice = index == kKindCount;
    const auto drawing = drawingOf(ice ? Kind::orla : static_cast<Kind>(index), ice, {480, 640});
    const auto day = renderDrawing(drawing, dayTheme(), {320, 200}, 1.0).toImage();
    const auto night = renderDrawing(drawing, nightTheme(), {320, 200}, 1.0).toImage();
    ASSERT_FALSE(day.isNull()) << index;
    pictures.emplace(reinterpret_cast<const char*>(day.constBits()), static_cast<std::size_t>(day.sizeInBytes()));
    EXPECT_TRUE(hasColour(day, dayTheme().focus) && hasColour(day, dayTheme().text)) << index;
    EXPECT_TRUE(hasColour(night, nightTheme().focus) && hasColour(night, nightTheme().text)) << index;
    EXPECT_FALSE(hasColour(night, dayTheme().focus)) << index;
  }
  EXPECT_EQ(pictures.size(), 9U);
}

}  // namespace
}  // namespace kalmira
