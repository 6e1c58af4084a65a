#include "console/qt_application.h"

#include <QGuiApplication>
#include <QLoggingCategory>

namespace chanplan {
namespace {

// The library keeps references to both.
char programName[] = "chanplan";
char platformOption[] = "-platform";
char printPlatform[] = PRINT_PLATFORM;
char* arguments[] = {programName, platformOption, printPlatform, nullptr};
int argumentCount = 3;

}  // namespace

std::unique_ptr<QCoreApplication> MakePortApplication() {
  return std::make_unique<QCoreApplication>(argumentCount, arguments);
}

std::unique_ptr<QCoreApplication> MakePrintApplication() {
  // Remarks about the desktop's variables, which other places than desktops lack.
  QLoggingCategory::defaultCategory()->setEnabled(QtWarningMsg, false);
  return std::make_unique<QGuiApplication>(argumentCount, arguments);
}

}  // namespace chanplan
