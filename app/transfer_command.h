// The commands that move a table between a document and the unit.
#pragma once

#include <QMessageBox>
#include <QObject>
#include <QPointer>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "app/command_frame.h"
#include "app/frm_in_progress.h"
#include "app/transfer_flags.h"
#include "core/table_merge.h"
#include "editor/busy_pointer.h"
#include "editor/shared_tables.h"
#include "unit/transfer.h"
#include "unit/unit_link.h"

namespace chanplan {

/// A command that runs, from connecting to the unit to the closed port: one at a time. Events are
/// handled meanwhile; its documents stay open until its end. Escape ends its waits for a silent unit.
class TransferCommand : public QObject {
 public:
  TransferCommand(CommandFrame& mainFrame, UnitLink& unitLink, TransferFlags& transferFlags, SharedTables& shared);
  ~TransferCommand() override;

  /// Brings the unit's table into a document of its own.
  void Download();
  /// Puts the table of `document` into the unit, or adds it to the unit's table, as the user chooses.
  void Upload(DocumentWindow& document);

  /// Moves the table of `document` from or to the unit, shows how far it is and how it ended. False
  /// only when the unit did not answer.
  bool Proc_Query(DocumentWindow& document, bool Download = false);
  /// The two directions of `Proc_Query`. `message` is the table of `document` as it goes out.
  TransferOutcome Receive(DocumentWindow& document);
  TransferOutcome Send(DocumentWindow& document, std::string_view message);
  /// Merges the table of `source` into that of `base`. False, and nothing is changed, when rows would be left out
  /// that the user does not give up.
  bool MergeTables(DocumentWindow& base, DocumentWindow& source);

  /// What a confirmed abort does.
  void Abort();
  /// Whether `window` is one of its documents.
  bool Holds(const QObject* window) const { return window == moved || window == added; }

  /// The port that the user chooses meanwhile: one command keeps to one unit.
  std::int16_t PortForTheNext;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  bool Connect();
  std::optional<TransferOutcome> ReceiveInNewDocument(bool newSlotRequested);
  bool Append();
  bool ReadAndKeep();
  bool Keep();
  void ReadBack(std::string_view message, int records);
  void ShowDifferences(const SignalStandardTable& sent);
  TransferOutcome Fetch();
  std::optional<std::string> Encode(DocumentWindow& document);
  bool Confirm(const QString& text);
  bool ConfirmLeftOut(const MergeOutcome& merged);
  bool ConfirmLosses(const SignalStandardTable& table);
  TransferProgress& Begin();
  QString EndText(const TransferOutcome& outcome, int records) const;
  void ShowEnd(const QString& text);
  LinkResult AwaitConfirmation(const TransferOutcome& outcome, const QString& end);
  void Tell(const TransferOutcome& outcome);
  void Say(const QString& text, QMessageBox::Icon icon);
  QString WithKept(const QString& text, const char* between) const;

  CommandFrame& frame;
  UnitLink& link;
  TransferFlags& flags;
  SharedTables& sharedTables;
  BusyPointer busy;
  frmInProgress* progress;         // the frame's one; null until it is first needed
  QPointer<DocumentWindow> moved;  // whose table goes to the unit or comes from it
  QPointer<DocumentWindow> added;  // what an upload adds to the unit's table in `moved`
  UnitTable held;                  // what was read last
  QString kept;                    // what became of the unit's table, where a copy was wanted
};

}  // namespace chanplan
