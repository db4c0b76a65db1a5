#include "viewer/viewer_commands.h"

#include <gmock/gmock.h>

#include <QRect>

#include "support/temp_folder.h"
#include "ui/viewer/viewer_layout.h"
#include "ui/viewer/viewer_saving.h"

namespace kalmira {
namespace {

using testing::HasSubstr;

TEST(ViewerCommands, HelpIsShorterWhereScreensAreSmall) {
  EXPECT_THAT(viewHelpText(0), HasSubstr("  End Line      - tap -->>  or key End  \r\n"));
  EXPECT_LT(viewHelpText(1).size(), viewHelpText(0).size());
  EXPECT_EQ(viewHelpText(3), viewHelpText(1));
}

TEST(ViewerLayout, NothingOverlapsOrLeavesTheWindowAndButtonsFitAFinger) {
  constexpr int kTouch = 34;
  for (const auto& [width, height] : {std::pair(240, 320), {320, 240}, {480, 640}, {640, 480}, {1280, 800}}) {
    SCOPED_TRACE(testing::Message() << width << " x " << height);
    const auto layout = layOutViewer(width, height, kTouch);
    std::vector<QRect> rects{layout.lines, layout.overview};
    rects.insert(rects.end(), layout.buttons.begin(), layout.buttons.end());
    for (const auto& rect : rects) EXPECT_GE(std::min(rect.width(), rect.height()), kTouch);
    for (const auto& box : {layout.caption, layout.readout, layout.plot}) rects.push_back(box);
    for (std::size_t i = 0; i < rects.size(); ++i) {
      EXPECT_TRUE(QRect(0, 0, width, height).contains(rects[i])) << i;
      for (std::size_t j = 0; j < i; ++j) EXPECT_FALSE(rects[i].intersects(rects[j])) << i << " on " << j;
    }
    EXPECT_GE(layout.plot.height(), height / 4);
    EXPECT_GE(layout.plot.width(), width / 2);
  }
}

TEST(ViewerSaving, DataFilesAreNeverWrittenOver) {
  const TempFolder folder;
  const auto data = folder.path() / "A.ROR";
  writeFile(data, "data");
  std::filesystem::create_symlink(data, folder.path() / "alias.csv");
  EXPECT_NE(saveProblem(data, data), "");
  EXPECT_NE(saveProblem(folder.path() / "other.nts", data), "");
  EXPECT_NE(saveProblem(folder.path() / "alias.csv", data), "");
  EXPECT_EQ(saveProblem(folder.path() / "A.csv", data), "");
  EXPECT_EQ(proposedName("/d/A.ROR", "12/N", "png"), "/d/A-12_N.png");
  EXPECT_EQ(proposedName("/d/A.ROR", "", "csv"), "/d/A.csv");
}

}  // namespace
}  // namespace kalmira
