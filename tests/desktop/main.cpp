#include <gtest/gtest.h>

#include <QApplication>
#include <cstdio>
#include <cstring>

#include "tests/core/temp_folder.h"
#include "tests/desktop/desktop.h"

int main(int argc, char** argv) {
  using namespace chanplan::testing;
  if (argc == 2 && std::strcmp(argv[1], "--other-program") == 0) return RunOtherProgram(argc, argv);
  testing::InitGoogleTest(&argc, argv);
  if (const QString missing = MissingProgram(); !missing.isEmpty()) {
    std::printf("skipped: this machine has no %s\n", qPrintable(missing));
    return 77;
  }
  // Nothing of the user who runs the tests is read or written.
  const TempFolder home;
  for (const char* variable : {"HOME", "XDG_CONFIG_HOME", "XDG_STATE_HOME"})
    qputenv(variable, home.Path().string().c_str());
  QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
  const QApplication application(argc, argv);
  QApplication::setStyle("Fusion");
  QApplication::setQuitOnLastWindowClosed(false);
  const Desktop desktop(QApplication::applicationFilePath());
  return RUN_ALL_TESTS();
}
