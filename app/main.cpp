#include <QApplication>
#include <cstdio>

#include "app/app_main.h"
#include "app/command_line.h"
#include "app/frm_main.h"
#include "editor/frm_document.h"
#include "settings/user_settings.h"
#include "unit/qt_serial_port.h"

int main(int argc, char* argv[]) {
  using namespace chanplan;
  const QApplication application(argc, argv);
  QGuiApplication::setDesktopFileName("chanplan-editor");  // so that the desktop finds the icon
  const CommandLine line = ReadCommandLine(QApplication::arguments().mid(1));
  if (!line.Answer.isEmpty()) {
    std::fputs(qPrintable(line.Answer), line.Wrong ? stderr : stdout);
    return line.Wrong ? 2 : 0;
  }
  AppMain app(std::make_unique<QtSerialPort>(CommDevice), SystemTiming(), frmDocument::Make);
  app.Main(line.Files);
  QObject::connect(app.Frame.get(), &frmMain::Ended, &application, [] { QApplication::exit(); });
  return QApplication::exec();
}
