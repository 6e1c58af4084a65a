// What the whole application shares, and its start-up.
#pragma once

#include <QPointer>
#include <QString>
#include <QStringList>
#include <deque>
#include <functional>
#include <memory>

#include "app/app_settings.h"
#include "app/transfers.h"
#include "editor/document_window.h"
#include "editor/frame_operations.h"
#include "editor/shared_tables.h"
#include "unit/unit_link.h"

namespace chanplan {

class frmMain;

/// Makes an empty document. What it is given outlives the document.
using DocumentFactory = std::function<std::unique_ptr<DocumentWindow>(FrameOperations&, DocumentState&, SharedTables&)>;

/// The application: its state and its frame. `main` owns the one instance. Documents are numbered
/// from 1; a number that its document no longer needs is given away again.
class AppMain {
 public:
  AppMain(std::unique_ptr<PortObject> serialPort, LinkTiming timing, DocumentFactory factory);
  ~AppMain();

  /// Starts up: reads the settings, shows the frame with one empty document and opens the tables at
  /// `paths`. Needs a QApplication, which runs afterwards. `paths` are absolute, as the program's
  /// folder becomes the current one.
  void Main(const QStringList& paths = {});

  bool AnyDocumentOpen() const;
  /// The number of the next document, whose state is then in use. It may be number 1 of an untouched
  /// first document, unless a new one is asked for.
  int GetFreeDocumentSlot(bool newSlotRequested);
  /// The document of `slot`, null when none is open under this number.
  DocumentWindow* Document(int slot) const { return Documents[static_cast<std::size_t>(slot) - 1]; }
  /// Takes a number and makes the document of this number, unless it is the untouched first one that
  /// is used again. Its caption is `name` followed by its number. The frame owns it; it is not shown yet.
  DocumentWindow& CreateDocument(bool newSlotRequested, const QString& name = "Untitled ");
  /// A new empty document, shown.
  void NewDocument();

  /// Shows the recent files in the frame's menu.
  void LoadRecentFiles();
  void AddRecentFile(const QString& path) { Settings.AddRecentFile(path); }

  QString ProgramFolder;  ///< where the program looks for its factory table and its help
  AppSettings Settings;
  SharedTables Shared;
  TransferState Transfers;
  std::unique_ptr<PortObject> MSComm1;  ///< the frame's serial port, the link's `CommControl`
  UnitLink Link;
  std::deque<QPointer<DocumentWindow>> Documents;
  std::deque<DocumentState> DocumentStates;  ///< as long as `Documents`; documents keep references
  std::unique_ptr<frmMain> Frame;

 private:
  DocumentFactory createDocument;
};

}  // namespace chanplan
