// Dialogs on a real X server with a window manager (script/in-x): with the frames that it draws, nothing goes off the
// screen. KALMIRA_TEXT, in pixels, is the size of the texts.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QFile>
#include <QFileDialog>
#include <QScreen>
#include <QToolButton>

#include "support/dialogs.h"
#include "support/temp_folder.h"
#include "ui/screen/file_dialog.h"
#include "ui/screen/message_dialog.h"
#include "ui/screen/touch_style.h"
#include "ui/screen/window_fit.h"

namespace kalmira {
namespace {

constexpr int kFrameComesMs = 200;

void expectOnScreen(QDialog& dialog) {
  const auto screen = dialog.screen()->availableGeometry();
  const auto fits = [&] { return screen.contains(dialog.frameGeometry()); };
  QTest::qWait(kFrameComesMs);
  EXPECT_TRUE(QTest::qWaitFor(fits, 2000))
      << dialog.frameGeometry().width() << " x " << dialog.frameGeometry().height() << " at "
      << dialog.frameGeometry().x() << ", " << dialog.frameGeometry().y();
  for (const auto* button : dialog.findChildren<QPushButton*>()) {
    const auto text = button->text().remove('&').toStdString();
    if (!button->isVisible() ||
        (text != "OK" && text != "Cancel" && text != "Yes" && text != "No" && text != "Save" && text != "Open")) {
      continue;
    }
    EXPECT_EQ(button->visibleRegion(), QRegion(button->rect())) << text;
    EXPECT_TRUE(screen.contains(QRect(button->mapToGlobal(QPoint(0, 0)), button->size()))) << text;
    EXPECT_GE(button->height(), touchHeight(button->screen())) << text;
  }
}

// Of file dialogs: none lies beneath the list of files.
void expectWholeIcons(const QDialog& dialog) {
  for (const auto* button : dialog.findChildren<QToolButton*>()) {
    if (!button->isVisible()) continue;
    EXPECT_EQ(button->visibleRegion(), QRegion(button->rect())) << button->objectName().toStdString();
  }
}

struct Frames : testing::Test {
  Frames() {
    QApplication::setStyle(makeTouchStyle());
    auto texts = window.font();
    const auto pixels = qEnvironmentVariableIntValue("KALMIRA_TEXT");
    texts.setPixelSize(pixels > 0 ? pixels : 12);
    window.setFont(texts);
    window.resize(window.screen()->availableSize());
    window.show();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    const auto onScreen = [this] { return window.screen()->availableGeometry().contains(window.frameGeometry()); };
    EXPECT_TRUE(QTest::qWaitFor(onScreen, 5000)) << "the window itself";
  }
  QWidget window;
  FrameWatch watch{window, [this] { keepOnScreen(window); }};
};

TEST_F(Frames, OfEveryTemplateStayOnTheScreen) {
  QFile names(":/dialogs/names.txt");
  ASSERT_TRUE(names.open(QIODevice::ReadOnly));
  int tried = 0;
  while (!names.atEnd()) {
    const auto name = QString::fromUtf8(names.readLine()).section(' ', 0, 0).trimmed();
    if (!name.startsWith("Get") && name != "Devices") continue;
    const auto dialog = makeDialog(name.toStdString(), &window);
    if (dialog == nullptr || dialog->windowTitle().isEmpty()) continue;
    SCOPED_TRACE(name.toStdString());
    const DialogActor actor(dialog->windowTitle(), [](QDialog& open) {
      expectOnScreen(open);
      open.accept();
    });
    EXPECT_TRUE(runDialog(*dialog));
    ++tried;
  }
  EXPECT_GT(tried, 20);
}

TEST_F(Frames, OfMessagesAndFileDialogsStayOnTheScreen) {
  const TempFolder folder;
  const auto look = [](QDialog& open) {
    expectOnScreen(open);
    expectWholeIcons(open);
    open.reject();
  };
  std::string text = "The data file is gone, deleted or moved, or its card is out:\r\n";
  for (int i = 0; i < 4; ++i) text += "/media/somebody/A card with a long name/Storage/DATAORLA/112209A.ROR\r\nMore. ";
  {
    const DialogActor actor("CRITICAL WARNING", look);
    tellMessage(&window, {.title = "CRITICAL WARNING", .text = text, .icon = Icon::stop});
  }
  const DataPlace place{.kind = Kind::orla, .root = folder.path()};
  {
    const DialogActor actor("Create Data File", look);
    EXPECT_EQ(runCreateFileDialog(&window, place, "112209A"), std::nullopt);
  }
  const DialogActor actor("Open Data File", look);
  EXPECT_EQ(runOpenFileDialog(&window, place), std::nullopt);
}

}  // namespace
}  // namespace kalmira
