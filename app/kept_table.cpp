#include "app/kept_table.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include "core/sig_file.h"
#include "editor/text_edge.h"

namespace chanplan {
namespace {

// Another program may make a file of this name at any moment: the name is this one's once the file was made here.
QString MakeNewFile(QFile& file, const QString& name) {
  for (int number = 1;; ++number) {
    file.setFileName(name + (number == 1 ? QString() : QString(" (%1)").arg(number)) + ".sig");
    if (file.open(QIODevice::NewOnly)) return {};
    if (!QFileInfo::exists(file.fileName()) && !QFileInfo(file).isSymLink()) return file.errorString();
  }
}

}  // namespace

KeptTable KeepTable(const SignalStandardTable& table, const QDateTime& now) {
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
  QDir().mkpath(folder);  // a new user may have none
  QFile file;
  const QString failure = MakeNewFile(file, folder + "/Unit " + now.toString("yyyy-MM-dd HH.mm"));
  const KeptTable kept{QDir::toNativeSeparators(file.fileName()), failure};
  if (!failure.isEmpty()) return kept;
  file.close();
  const std::error_code error = SaveSigFile(PathOf(file.fileName()), table);
  if (!error) return kept;
  file.remove();
  return {kept.Path, QString::fromStdString(error.message())};
}

}  // namespace chanplan
