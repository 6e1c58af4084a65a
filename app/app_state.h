// What the whole application shares.
#pragma once

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <functional>
#include <memory>

#include "app/app_settings.h"
#include "app/document_registry.h"
#include "app/recent_files.h"
#include "app/recovery.h"
#include "app/transfer_flags.h"
#include "editor/document_window.h"
#include "editor/frame_operations.h"
#include "editor/shared_tables.h"
#include "unit/unit_link.h"

namespace chanplan {

/// Makes an empty document. What it is given outlives the document.
using DocumentFactory = std::function<std::unique_ptr<DocumentWindow>(FrameOperations&, DocumentState&, SharedTables&)>;

/// Everything but the windows. The start-up owns the one instance.
struct AppState {
  AppState(std::unique_ptr<PortObject> serialPort, LinkTiming timing, DocumentFactory factory)
      : MSComm1(std::move(serialPort)), Link(*MSComm1, std::move(timing)), MakeDocument(std::move(factory)) {}

  /// Path of the file `name` that the program comes with: beside the program, or in the data folder of what is
  /// installed. Where it is in neither, beside the program.
  QString OwnFile(const QString& name) const {
    const QString installed = QDir::cleanPath(ProgramFolder + "/../share/chanplan-editor/" + name);
    const QString own = ProgramFolder + "/" + name;
    return !QFileInfo(own).isFile() && QFileInfo(installed).isFile() ? installed : own;
  }

  QString ProgramFolder = QCoreApplication::applicationDirPath();  ///< the current one while it runs
  AppSettings Settings;
  RecentFileList Recent{Settings};
  SharedTables Shared;
  TransferFlags Transfers;
  std::unique_ptr<PortObject> MSComm1;  ///< the frame's serial port, the link's `CommControl`
  UnitLink Link;
  DocumentFactory MakeDocument;
  DocumentRegistry Registry;
  RecoveryCopies Recovery{Registry};
};

}  // namespace chanplan
