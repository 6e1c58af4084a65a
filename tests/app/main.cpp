#include <gtest/gtest.h>

#include <QApplication>
#include <QStandardPaths>

#include "tests/core/temp_folder.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("TMPDIR", "/tmp");  // of longer paths menus show the end only
  // Nothing of the user who runs the tests is read or written.
  const chanplan::testing::TempFolder home;
  for (const char* variable : {"HOME", "XDG_CONFIG_HOME", "XDG_STATE_HOME"})
    qputenv(variable, home.Path().string().c_str());
  qputenv("CUPS_SERVER", "/nonexistent/socket");  // nor are the user's printers seen
  QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
  const QApplication application(argc, argv);
  QApplication::setStyle("Fusion");
  QApplication::setQuitOnLastWindowClosed(false);
  return RUN_ALL_TESTS();
}
