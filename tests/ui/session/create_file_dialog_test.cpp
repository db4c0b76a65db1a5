#include "ui/screen/file_dialog.h"

#include <gtest/gtest.h>

#include <QDialogButtonBox>
#include <QListView>
#include <QSettings>

#include "support/dialogs.h"
#include "support/temp_folder.h"

namespace kalmira {
namespace {

struct CreateFileDialog : DialogTest {
  CreateFileDialog() {
    // Qt's dialog remembers how it was left; not in the settings of whoever runs the tests.
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, QString::fromStdString(folder.path() / "conf"));
    std::filesystem::create_directories(data);
  }
  std::optional<std::filesystem::path> run(const DialogActor::Act& act, const std::string& proposal = "111510A") {
    const DialogActor actor("Create Data File", act);
    return runCreateFileDialog(&window, place, proposal);
  }
  // Over the proposal, or taken as it is.
  std::optional<std::filesystem::path> entered(const std::string& name, const std::string& proposal = "x") {
    return run(
        [&name](QDialog& dialog) {
          if (!name.empty()) part<QLineEdit>(dialog, "fileNameEdit").setText(QString::fromStdString(name));
          press(dialog, Qt::Key_Return);
        },
        proposal);
  }

  TempFolder folder;
  DataPlace place{.kind = Kind::orla, .root = folder.path()};
  std::filesystem::path data = dataFolderOf(place);
};

TEST_F(CreateFileDialog, NamesBecomePathsAndExistingOnesAreHandedBackWithoutAQuestion) {
  writeFile(data / "111510Z.ROR", "survey");
  const std::string umlauts = "Gr\xC3\xB6\xC3\x9F\x65\xE6\xB8\xAC";
  const struct {
    std::string typed, proposal;
    std::filesystem::path path;
  } cases[]{{"", "111510A", data / "111510A.ROR"},
            {"A.B.ROR", "x", data / "A.B.ROR"},
            {"other.txt", "x", data / "other.txt"},
            {umlauts, "x", data / (umlauts + ".ROR")},
            {folder.path() / "elsewhere", "x", folder.path() / "elsewhere.ROR"},
            {"", "Storage\\DATAORLA\\111510Z.ROR", data / "111510Z.ROR"}};
  for (const auto& each : cases) EXPECT_EQ(entered(each.typed, each.proposal), each.path);
  EXPECT_EQ(readFile(data / "111510Z.ROR"), "survey");
  EXPECT_EQ(run([](QDialog& dialog) {
              QTest::keyClicks(dialog.focusWidget(), "Acker");  // the proposal is selected
              QTest::mouseClick(dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Save), Qt::LeftButton);
            }),
            data / "Acker.ROR");
  EXPECT_FALSE(run([](QDialog& dialog) { press(dialog, Qt::Key_Escape); }));
  EXPECT_FALSE(run([](QDialog& dialog) { dialog.reject(); }));
}

TEST_F(CreateFileDialog, AFolderThatIsGoneOrClosedDoesNoHarm) {
  std::filesystem::permissions(data, std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
  EXPECT_EQ(entered("a"), data / "a.ROR");
  std::filesystem::remove_all(folder.path() / "Storage");
  const auto chosen = entered("b");
  ASSERT_TRUE(chosen);
  EXPECT_EQ(chosen->filename(), "b.ROR");
}

TEST_F(CreateFileDialog, FitsASmallWindowAndFingers) {
  writeFile(data / "111510A.ROR", "");
  writeFile(data / "note.txt", "");
  run([](QDialog& dialog) {
    const auto& field = part<QLineEdit>(dialog, "fileNameEdit");
    EXPECT_LE(dialog.width(), 240);
    EXPECT_LE(dialog.height(), 320);
    EXPECT_GE(field.width(), 200);
    EXPECT_GE(field.height(), touchHeight(nullptr));
    for (auto* button : dialog.findChild<QDialogButtonBox*>()->buttons()) {
      EXPECT_GE(button->height(), touchHeight(nullptr));
      EXPECT_FALSE(button->visibleRegion().isEmpty());
    }
    auto& files = part<QListView>(dialog, "listView");
    EXPECT_TRUE(QTest::qWaitFor([&files] { return files.model()->rowCount(files.rootIndex()) > 0; }));
    EXPECT_EQ(files.model()->rowCount(files.rootIndex()), 1) << "only files of the kind";
    EXPECT_GE(files.sizeHintForRow(0), touchHeight(nullptr));
    dialog.reject();
  });
}

}  // namespace
}  // namespace kalmira
