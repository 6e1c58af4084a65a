#include <QApplication>
#include <cstdio>

#include "app/app_main.h"
#include "app/command_line.h"
#include "app/end_signals.h"
#include "app/frm_main.h"
#include "editor/frm_document.h"
#include "settings/user_settings.h"
#include "unit/serial_port.h"
#include "unit/system_timing.h"

namespace {

int Print(const chanplan::CommandLine& line) {
  std::fputs(qPrintable(line.Answer), line.Wrong ? stderr : stdout);
  return line.Wrong || std::fflush(stdout) != 0 ? 2 : 0;
}

}  // namespace

int main(int argc, char* argv[]) {
  using namespace chanplan;
  // Questions are answered where there is no screen, too.
  if (const CommandLine asked = ReadCommandLine(QStringList(argv + 1, argv + argc));
      !asked.Answer.isEmpty() && !asked.Wrong)
    return Print(asked);
  QApplication application(argc, argv);
  QGuiApplication::setDesktopFileName("chanplan-editor");  // so that the desktop finds the icon
  // The platform library has taken out the options that are its own.
  const CommandLine line = ReadCommandLine(QApplication::arguments().mid(1));
  if (!line.Answer.isEmpty()) return Print(line);
  AppMain app(std::make_unique<SerialPort>(CommDevice), SystemTiming(), frmDocument::Make);
  app.Main(line.Files);
  WhenAskedToEnd(application, [&app] { return app.PrepareToEnd(); });
  QObject::connect(app.Frame.get(), &frmMain::Ended, &application, [] { QApplication::exit(); });
  return QApplication::exec();
}
