// A document that does nothing but write down what it is asked to do.
#pragma once

#include <QCloseEvent>
#include <QStringList>
#include <functional>

#include "editor/document_window.h"
#include "editor/frame_operations.h"

namespace chanplan::testing {

class StandInDocument : public DocumentWindow {
 public:
  StandInDocument(FrameOperations& frameUsed, DocumentState& documentState) : frame(frameUsed), state(documentState) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWidget(new QWidget);
  }

  mutable QStringList Calls;
  std::vector<int> ShownWarnings;                      ///< lines that were gone to
  QString Text;                                        ///< of its warnings
  std::function<bool()> Closes = [] { return true; };  ///< whether it lets itself be closed
  QString Undone;                                      ///< the step that can be taken back
  bool Saves = true;                                   ///< whether saving succeeds
  SignalStandardTable Rows;

  DocumentState& State() const override { return state; }
  QString WarningsText() const override { return Text; }
  bool LoadSigStandards(const QString& path) override {
    Calls += "LoadSigStandards " + path;
    setWindowTitle(path);
    return true;
  }
  bool SaveChanplans(const QString& path) override {
    Calls += "SaveChanplans " + path;
    if (Saves) setWindowTitle(path);
    return Saves;
  }
  void CommitEdit() override { Calls += "CommitEdit"; }
  QString TableProperties() const override {
    Calls += "TableProperties";
    return "Record count:     \t8 of 200\r\nSignal Standards: \t3";
  }
  bool SigReport(const QString& ReportName) override {
    Calls += "SigReport " + ReportName;
    return Saves;
  }
  void PrintSigs() override { Calls += "PrintSigs"; }
  void ProcPrint() override { Calls += "ProcPrint"; }
  void CopyCut(bool Cut) override { Calls += Cut ? "CopyCut true" : "CopyCut false"; }
  void Paste() override { Calls += "Paste"; }
  void InsertBlank() override { Calls += "InsertBlank"; }
  void Undo() override { Calls += "Undo"; }
  void Redo() override { Calls += "Redo"; }
  QString UndoName() const override { return Undone; }
  QString RedoName() const override { return {}; }
  void FindSSEntry(const QString& name) override { Calls += "FindSSEntry " + name; }
  void ShowWarning(int line, const QString&) override { ShownWarnings.push_back(line); }
  void ToggleChart() override { Calls += "ToggleChart"; }
  void ShowField(int row, Field) override { Calls += "ShowField " + QString::number(row); }
  void Find() override { Calls += "Find"; }
  const SignalStandardTable& Table() const override { return Rows; }
  void ShowUnitTable(const SignalStandardTable& received) override {
    Calls += "ShowUnitTable";
    Rows = received;
  }
  void MarkUnsaved() override { state.Changed = true; }
  void GetTable() const override {}
  void SetTable() override { Calls += "SetTable"; }

 protected:
  void closeEvent(QCloseEvent* event) override {
    if (!Closes()) return event->ignore();
    frame.Warnings("", -1);
    state.Released = true;
    DocumentWindow::closeEvent(event);
  }

 private:
  FrameOperations& frame;
  DocumentState& state;
};

}  // namespace chanplan::testing
