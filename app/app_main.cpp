#include "app/app_main.h"

#include <QDir>

#include "app/file_io.h"
#include "editor/messages.h"

namespace chanplan {

void AppMain::Main(const QStringList& paths) {
  QDir::setCurrent(ProgramFolder);
  QCoreApplication::setApplicationName(ApplicationName);
  Frame = std::make_unique<frmMain>(*this);
  Link.CommPort = static_cast<std::int16_t>(Settings.Number(CommPortSetting, 1));
  Link.BaudRate = Settings.BaudRate().toStdString();
  Frame->NewDocument();
  Recent.LoadRecentFiles();
  Frame->show();
  if (!Settings.Complaints.isEmpty())
    ShowMessage(*Frame, Settings.Complaints.join("\n\n"), ApplicationName, QMessageBox::Warning);
  for (const QString& path : paths) OpenTableFile(*Frame, path);
}

}  // namespace chanplan
