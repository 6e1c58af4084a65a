// Copies of what is not saved yet, for the next start after a crash or the end of a session.
#pragma once

#include <QLockFile>
#include <QString>
#include <QTimer>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "app/document_registry.h"
#include "app/recovery_copy.h"

namespace chanplan {

/// What programs that ended without asking have left behind. Nobody else finds it as long as this lives.
struct LeftTables {
  std::vector<UnsavedTable> Tables;
  int Waiting = 0;  ///< tables of such programs that cannot be taken now ...
  QString Reason;   ///< ... and why

  /// Makes an end of the copies.
  void Remove();

  std::vector<std::filesystem::path> Files;
  std::vector<std::unique_ptr<QLockFile>> Locks;
};

/// Keeps a copy of every changed document in the user's state folder, as soon as an edit is stored.
/// It goes when the document is saved or closed.
class RecoveryCopies : public QObject {
  Q_OBJECT

 public:
  explicit RecoveryCopies(const DocumentRegistry& documents);
  ~RecoveryCopies() override;

  /// Keeps the copies in line with what becomes of `document`.
  void Watch(const DocumentWindow& document);
  /// Brings the copies into line with the documents; false when one could not be written.
  bool Update();
  /// Takes what is left of programs that run no more.
  LeftTables TakeLeftTables();

 signals:
  /// Copies cannot be written. Told once, until one can be.
  void Failed(const QString& reason);

 private:
  bool Write(int slot, const DocumentWindow& document);
  void Remove(int slot);
  std::filesystem::path FileOf(int slot) const;
  /// Makes the folder and marks this program's copies as in use. Says why when it cannot.
  QString Claim();

  const DocumentRegistry& registry;
  std::filesystem::path folder;
  std::string session;  ///< what this program's copies are called by
  std::unique_ptr<QLockFile> claim;
  std::map<int, std::string> written;  ///< by slot
  bool failed = false;
  QTimer soon;
  QTimer again;  ///< a disk that is full may have room again
};

}  // namespace chanplan
