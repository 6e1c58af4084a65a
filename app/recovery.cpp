#include "app/recovery.h"

#include <QCoreApplication>
#include <QDir>
#include <QSysInfo>
#include <QThreadPool>
#include <QUuid>
#include <set>

#include "core/folder_content.h"
#include "core/state_folder.h"

namespace chanplan {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view CopyEnding = ".copy";

QString PathText(const fs::path& path) { return QString::fromStdU16String(path.u16string()); }

std::unique_ptr<QLockFile> LockOf(const fs::path& folder, const std::string& session) {
  auto lock = std::make_unique<QLockFile>(PathText(folder / (session + ".lock")));
  lock->setStaleLockTime(0);  // a program may run for weeks; it is over when its process is
  return lock;
}

// By a program that runs. A lock that a dead one left cannot be taken over either where no file can be made.
bool IsHeld(const QLockFile& lock) {
  qint64 process = 0;
  QString machine, program;
  return lock.error() == QLockFile::LockFailedError &&
         (!lock.getLockInfo(&process, &machine, &program) || machine != QSysInfo::machineHostName() ||
          ProcessLives(process));
}

// Copies are called by their program and their slot: SESSION-SLOT.copy
std::string SessionOf(const fs::path& copy) {
  const std::string name = copy.stem().string();
  return name.substr(0, name.rfind('-'));
}

}  // namespace

void LeftTables::Remove() {
  std::error_code ignored;
  for (const fs::path& file : Files) fs::remove(file, ignored);
  Files.clear();
  Locks.clear();
}

RecoveryCopies::RecoveryCopies(const DocumentRegistry& documents)
    : registry(documents),
      folder(StateFolder()),
      session(std::to_string(QCoreApplication::applicationPid()) + "-" +
              QUuid::createUuid().toString(QUuid::Id128).toStdString()) {
  if (!folder.empty()) folder /= "recovery";
  // Once control is back: an edit that is stored in several steps is written once.
  soon.setSingleShot(true);
  soon.setInterval(0);
  connect(&soon, &QTimer::timeout, this, &RecoveryCopies::Update);
  again.setSingleShot(true);
  again.setInterval(5000);
  connect(&again, &QTimer::timeout, this, &RecoveryCopies::Update);
}

RecoveryCopies::~RecoveryCopies() { Update(); }

void RecoveryCopies::Watch(const DocumentWindow& document) {
  connect(&document, &DocumentWindow::TableChanged, &soon, qOverload<>(&QTimer::start));
  connect(&document, &QObject::destroyed, &soon, qOverload<>(&QTimer::start));
}

bool RecoveryCopies::Update() {
  // Whoever tidies the folder away takes the copies along.
  if (std::error_code ignored; claim != nullptr && !fs::is_directory(folder, ignored)) {
    claim.reset();
    written.clear();
  }
  bool done = true;
  for (int slot = 1; slot <= static_cast<int>(registry.Documents.size()); ++slot) {
    const DocumentState& state = registry.DocumentStates[static_cast<std::size_t>(slot) - 1];
    if (state.Released || !state.Changed)
      Remove(slot);
    else if (const DocumentWindow* document = registry.Document(slot))
      done = Write(slot, *document) && done;
  }
  return done;
}

bool RecoveryCopies::Write(int slot, const DocumentWindow& document) {
  std::string text = CopyText({document.windowTitle(), document.UnitTableTag, document.KnownFile, document.Table()});
  if (const auto former = written.find(slot); former != written.end() && former->second == text) return true;
  QString failure = Claim();
  if (failure.isEmpty())
    if (const std::error_code error = ReplaceFileUnflushed(FileOf(slot), text))
      failure = QString::fromStdString(error.message());
  if (!failure.isEmpty() && !failed) emit Failed(failure);
  failed = !failure.isEmpty();
  if (failed) {
    again.start();
    return false;
  }
  written[slot] = std::move(text);
  // The copy outlives this program from here on, and a loss of power once the disk has it; nobody waits for that.
  QThreadPool::globalInstance()->start([file = FileOf(slot)] { FlushFile(file); });
  return true;
}

void RecoveryCopies::Remove(int slot) {
  if (written.erase(slot) == 0) return;
  std::error_code ignored;
  fs::remove(FileOf(slot), ignored);
}

fs::path RecoveryCopies::FileOf(int slot) const {
  return folder / (session + "-" + std::to_string(slot) + std::string(CopyEnding));
}

QString RecoveryCopies::Claim() {
  if (claim != nullptr) return {};
  if (folder.empty()) return "there is no home folder";
  std::error_code error;
  if (fs::create_directories(folder, error); error) return QString::fromLocal8Bit(error.message().c_str());
  QFile::setPermissions(PathText(folder), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  std::unique_ptr<QLockFile> lock = LockOf(folder, session);
  if (!lock->tryLock(0))
    return lock->error() == QLockFile::PermissionError ? "no permission to write into " + PathText(folder)
                                                       : "no file could be made in " + PathText(folder);
  claim = std::move(lock);
  return {};
}

LeftTables RecoveryCopies::TakeLeftTables() {
  std::map<std::string, std::set<fs::path>> sessions;
  for (const fs::path& file : ContentOf(folder))
    if (file.extension() == CopyEnding && SessionOf(file) != session) sessions[SessionOf(file)].insert(file);
  LeftTables left;
  for (const auto& [name, files] : sessions) {
    std::unique_ptr<QLockFile> lock = LockOf(folder, name);
    if (!lock->tryLock(0)) {
      if (IsHeld(*lock)) continue;
      if (const QString reason = Claim(); !reason.isEmpty()) {
        left.Waiting += static_cast<int>(files.size());
        left.Reason = reason;
      }
      continue;  // where this program gets a lock of its own, another one is just taking them
    }
    left.Locks.push_back(std::move(lock));
    for (const fs::path& file : files) {
      QFile copy(PathText(file));
      if (!copy.open(QIODevice::ReadOnly)) continue;
      std::optional<UnsavedTable> unsaved = ReadCopyText(copy.readAll().toStdString());
      if (!unsaved) continue;
      left.Tables.push_back(std::move(*unsaved));
      left.Files.push_back(file);
    }
  }
  return left;
}

}  // namespace chanplan
