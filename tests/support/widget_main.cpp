#include <gmock/gmock.h>

#include <QApplication>
#include <QLocale>

#include "resources.h"

// Qt is not built for the thread sanitizer: what its libraries do between themselves looks like races.
extern "C" const char* __tsan_default_suppressions() {  // NOLINT(bugprone-reserved-identifier,cert-dcl*)
  return "called_from_lib:libQt6Core.so\ncalled_from_lib:libQt6Gui.so\ncalled_from_lib:libQt6Widgets.so\n";
}

int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  // What the offscreen platform cannot do is not news.
  if (qEnvironmentVariableIsEmpty("QT_LOGGING_RULES"))
    qputenv("QT_LOGGING_RULES", "qt.qpa.*=false;default.warning=true");
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  // Numbers are the same in every language; windows are tried under one that writes them differently.
  QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
  initResources();
  return RUN_ALL_TESTS();
}
