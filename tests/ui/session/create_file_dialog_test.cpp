#include "ui/screen/file_dialog.h"

#include <gtest/gtest.h>

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QSettings>
#include <QTest>

#include "support/dialog_actor.h"
#include "support/temp_folder.h"
#include "ui/screen/touch_button.h"

namespace kalmira {
namespace {

class CreateFileDialog : public ::testing::Test {
 protected:
  CreateFileDialog() {
    // Qt's dialog remembers how it was left; not in the settings of whoever runs the tests.
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                       QString::fromStdString(folder.path() / "conf"));
    window.resize(240, 320);
    window.show();
    std::filesystem::create_directories(data);
  }
  std::optional<std::filesystem::path> run(const std::function<void(QDialog&, QLineEdit&)>& act,
                                           const std::string& proposal = "111510A") {
    const DialogActor actor(window, "Create Data File", [&act](QDialog& dialog) {
      act(dialog, *dialog.findChild<QLineEdit*>("fileNameEdit"));
    });
    return runCreateFileDialog(&window, place, proposal);
  }
  std::optional<std::filesystem::path> typed(const QString& name) {
    return run([&name](QDialog&, QLineEdit& field) {
      field.setText(name);
      QTest::keyClick(&field, Qt::Key_Return);
    });
  }

  TempFolder folder;
  DataPlace place{.kind = Kind::orla, .root = folder.path()};
  std::filesystem::path data = dataFolderOf(place);
  QWidget window;
};

TEST_F(CreateFileDialog, ProposalIsTakenByEnterOrReplacedByTyping) {
  EXPECT_EQ(run([](QDialog&, QLineEdit& field) {
              EXPECT_EQ(field.text(), "111510A");
              QTest::keyClick(&field, Qt::Key_Return);
            }),
            data / "111510A.ROR");
  EXPECT_EQ(run([](QDialog& dialog, QLineEdit&) {
              QTest::keyClicks(dialog.focusWidget(), "Acker");
              QTest::mouseClick(dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Save),
                                Qt::LeftButton);
            }),
            data / "Acker.ROR");
}

TEST_F(CreateFileDialog, TypedNamesBecomePaths) {
  EXPECT_EQ(typed("A.B.ROR"), data / "A.B.ROR");
  EXPECT_EQ(typed("other.txt"), data / "other.txt");
  EXPECT_EQ(typed(QString::fromUtf8("Gr\xC3\xB6\xC3\x9F"
                                    "e\xE6\xB8\xAC")),
            data /
                "Gr\xC3\xB6\xC3\x9F"
                "e\xE6\xB8\xAC.ROR");
  EXPECT_EQ(typed(QString::fromStdString(folder.path() / "elsewhere")), folder.path() / "elsewhere.ROR");
}

TEST_F(CreateFileDialog, ExistingNameIsHandedBackWithoutAQuestion) {
  writeFile(data / "111510Z.ROR", "survey");
  EXPECT_EQ(run(
                [](QDialog&, QLineEdit& field) {
                  EXPECT_EQ(field.text(), "111510Z.ROR");
                  QTest::keyClick(&field, Qt::Key_Return);
                },
                "Storage\\DATAORLA\\111510Z.ROR"),
            data / "111510Z.ROR");
  EXPECT_EQ(readFile(data / "111510Z.ROR"), "survey");
}

TEST_F(CreateFileDialog, CancelledByKeyOrFromOutsideIsNothing) {
  EXPECT_FALSE(run([](QDialog&, QLineEdit& field) { QTest::keyClick(&field, Qt::Key_Escape); }));
  EXPECT_FALSE(run([](QDialog& dialog, QLineEdit&) { dialog.reject(); }));
}

TEST_F(CreateFileDialog, AFolderThatIsGoneOrClosedDoesNoHarm) {
  std::filesystem::permissions(data, std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
  EXPECT_EQ(typed("a"), data / "a.ROR");
  std::filesystem::remove_all(folder.path() / "Storage");
  EXPECT_FALSE(run([](QDialog& dialog, QLineEdit&) { dialog.reject(); }));
  const auto chosen = typed("b");
  ASSERT_TRUE(chosen);
  EXPECT_EQ(chosen->filename(), "b.ROR");
}

TEST_F(CreateFileDialog, FitsASmallWindowAndFingers) {
  writeFile(data / "111510A.ROR", "");
  writeFile(data / "note.txt", "");
  run([](QDialog& dialog, QLineEdit& field) {
    EXPECT_LE(dialog.width(), 240);
    EXPECT_LE(dialog.height(), 320);
    EXPECT_GE(field.width(), 200);
    EXPECT_GE(field.height(), touchHeight(nullptr));
    for (auto* button : dialog.findChild<QDialogButtonBox*>()->buttons()) {
      EXPECT_GE(button->height(), touchHeight(nullptr));
      EXPECT_FALSE(button->visibleRegion().isEmpty());
    }
    auto& list = *dialog.findChild<QListView*>("listView");
    EXPECT_TRUE(QTest::qWaitFor([&list] { return list.model()->rowCount(list.rootIndex()) > 0; }));
    EXPECT_EQ(list.model()->rowCount(list.rootIndex()), 1) << "only files of the kind";
    EXPECT_GE(list.sizeHintForRow(0), touchHeight(nullptr));
    dialog.reject();
  });
}

}  // namespace
}  // namespace kalmira
