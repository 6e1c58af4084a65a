#include <QApplication>
#include <QFileInfo>

#include "app/app_main.h"
#include "app/frm_main.h"
#include "editor/frm_document.h"
#include "settings/user_settings.h"
#include "unit/qt_serial_port.h"

int main(int argc, char* argv[]) {
  using namespace chanplan;
  const QApplication application(argc, argv);
  QGuiApplication::setDesktopFileName("chanplan-editor");  // so that the desktop finds the icon
  QStringList paths;
  for (const QString& argument : QApplication::arguments().mid(1)) paths += QFileInfo(argument).absoluteFilePath();
  AppMain app(std::make_unique<QtSerialPort>(CommDevice), SystemTiming(), frmDocument::Make);
  app.Main(paths);
  QObject::connect(app.Frame.get(), &frmMain::Ended, &application, [] { QApplication::exit(); });
  return QApplication::exec();
}
