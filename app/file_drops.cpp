#include "app/file_drops.h"

#include <QApplication>
#include <QDir>
#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>

#include "app/file_io.h"

namespace chanplan {
namespace {

QStringList LocalPaths(const QDropEvent& event) {
  QStringList paths;
  for (const QUrl& address : event.mimeData()->urls())
    if (const QString path = LocalPathOf(address); !path.isEmpty()) paths += QDir::toNativeSeparators(path);
  return paths;
}

bool IsTable(const QString& path) { return path.endsWith(".sig", Qt::CaseInsensitive); }

QString RefusalText(const QStringList& refused) {
  const QString first = QFileInfo(refused.front()).fileName();
  const auto others = refused.size() - 1;
  if (others == 0) return first + " was not opened: it is no Signal Standard file (*.sig).";
  return QString("%1 and %2 more were not opened: they are no Signal Standard files (*.sig).").arg(first).arg(others);
}

// The files stay where they are: a source that takes a drop for a move would delete them.
Qt::DropAction HarmlessAction(const QDropEvent& event) {
  for (const Qt::DropAction action : {Qt::CopyAction, Qt::LinkAction})
    if (event.possibleActions().testFlag(action)) return action;
  return Qt::IgnoreAction;
}

bool MayOpen(const QDropEvent& event) {
  return QApplication::activeModalWidget() == nullptr && HarmlessAction(event) != Qt::IgnoreAction &&
         !LocalPaths(event).isEmpty();
}

}  // namespace

// Boxes take texts that are dropped on them, and would take files for their names.
FileDrops::FileDrops(CommandFrame& mainFrame, RecentFileList& recentFiles) : frame(mainFrame), recent(recentFiles) {
  frame.setAcceptDrops(true);
  qApp->installEventFilter(this);
}

bool FileDrops::eventFilter(QObject* watched, QEvent* event) {
  const bool drag =
      event->type() == QEvent::DragEnter || event->type() == QEvent::DragMove || event->type() == QEvent::Drop;
  if (!drag || !watched->isWidgetType()) return false;
  auto& drop = *static_cast<QDropEvent*>(event);
  if (static_cast<QWidget*>(watched)->window() != &frame || !drop.mimeData()->hasUrls()) return false;
  drop.ignore();  // what is in the frame leaves files to the frame
  if (watched != &frame || !MayOpen(drop)) return true;
  drop.setDropAction(HarmlessAction(drop));
  drop.accept();
  if (event->type() == QEvent::Drop) Drop(drop);
  return true;
}

// Opening may ask questions, and the program that the files come from waits for the end of the drop.
void FileDrops::Drop(QDropEvent& event) {
  QStringList tables;
  QStringList others;
  for (const QString& path : LocalPaths(event)) (IsTable(path) ? tables : others) += path;
  if (tables.isEmpty()) event.setDropAction(Qt::IgnoreAction);
  QMetaObject::invokeMethod(
      this,
      [this, tables, others] {
        frame.activateWindow();
        OpenTableFiles(frame, recent, tables);
        if (!others.isEmpty()) frame.ShowRemark(RefusalText(others));
      },
      Qt::QueuedConnection);
}

}  // namespace chanplan
