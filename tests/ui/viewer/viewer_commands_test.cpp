#include "viewer/viewer_commands.h"

#include <gmock/gmock.h>

#include "support/temp_folder.h"
#include "ui/viewer/viewer_layout.h"
#include "ui/viewer/viewer_saving.h"

namespace kalmira {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

TEST(ViewerCommands, KeysOfEveryCommand) {
  const struct {
    std::vector<int> keyCodes;
    int command;  // -1: none
  } cases[] = {{{36}, 0},
               {{33}, 1},
               {{37, 38}, 2},
               {{39, 40}, 3},
               {{34}, 4},
               {{35}, 5},
               {{'F', 'f'}, 6},
               {{'S', 's'}, 7},
               {{'X', 'x', 'e'}, 8},
               {{'L', 'l'}, 10},
               {{'P', 'p'}, 11},
               {{'C'}, 12},
               {{0, 9, 13, 'Q', '0', 63}, -1}};
  for (const auto& test : cases) {
    for (const int keyCode : test.keyCodes) {
      const auto command = viewCommandOfKey(keyCode);
      EXPECT_EQ(command ? static_cast<int>(*command) : -1, test.command) << keyCode;
    }
  }
}

TEST(ViewerCommands, HelpIsShorterWhereScreensAreSmall) {
  EXPECT_THAT(viewHelpText(0),
              StartsWith("Select Survey Line in combo box (L)ine.\r\n  \r\nTo move profile"));
  EXPECT_THAT(viewHelpText(0), HasSubstr("  End Line      - tap -->>  or key End  \r\n"));
  EXPECT_EQ(viewHelpText(1),
            "Select Line in box (L)ine.\r\n  \r\nTo move along line:\r\n to Start- tap <<-- /Home\r\n"
            " to End  - tap -->> /End \r\n 80 left  - tap <--- /PgUp\r\n 80 right- tap ---> /PgDn\r\n"
            "  \r\nTo move vertical bar:\r\n 1 left   - tap |<-- /Left \r\n 1 right - tap -->| /Right");
  EXPECT_EQ(viewHelpText(3), viewHelpText(1));
}

TEST(ViewerLayout, NothingOverlapsOrLeavesTheWindowAndButtonsFitAFinger) {
  constexpr int kTouch = 34;
  for (const auto& [width, height] : {std::pair(240, 320), {320, 240}, {480, 640}, {640, 480}, {1280, 800}}) {
    SCOPED_TRACE(testing::Message() << width << " x " << height);
    const auto layout = layOutViewer(width, height, kTouch);
    std::vector<QRect> boxes(layout.buttons.begin(), layout.buttons.end());
    boxes.push_back(layout.lines);
    boxes.push_back(layout.overview);
    for (const auto& box : boxes) {
      EXPECT_GE(box.height(), kTouch);
      EXPECT_GE(box.width(), kTouch);
    }
    for (const auto& box : {layout.caption, layout.readout, layout.plot}) boxes.push_back(box);
    for (std::size_t i = 0; i < boxes.size(); ++i) {
      const auto& box = boxes[i];
      EXPECT_TRUE(QRect(0, 0, width, height).contains(box)) << i;
      for (std::size_t j = 0; j < i; ++j) EXPECT_FALSE(box.intersects(boxes[j])) << i << " on " << j;
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
