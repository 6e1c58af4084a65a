// The progress of a transfer, with a button to abort it.
#pragma once

#include <QDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>

#include "unit/transfer.h"

namespace chanplan {

/// Modeless, and never closed by the user: closing it asks whether to abort. The transfer goes on
/// under the question, and takes the question away when it ends first.
class frmInProgress : public QDialog, public TransferProgress {
  Q_OBJECT

 public:
  /// A confirmed abort sets `abortFlag`.
  frmInProgress(QWidget* frame, bool& abortFlag);

  void set_Label(const QString& text);
  void Set_on_top(bool onTop);
  /// A value outside of the range counts as the nearer bound.
  void set_prog_bar_value(int value);
  void set_prog_bar_range(int low, int high);

  /// Shows it in front of the frame, all of it on the screen.
  void ShowOverFrame();
  /// Takes it away, and an open question with it.
  void Finish();
  /// What a confirmed abort does.
  void Abort();

  void SetLabel(std::string_view text) override;
  void SetCaption(std::string_view text) override;
  void SetRange(int low, int high) override { set_prog_bar_range(low, high); }
  void SetValue(int value) override { set_prog_bar_value(value); }

  void reject() override { AskToAbort(); }

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void AskToAbort();

  bool& AbortRequested;
  QLabel* LblPrompt;
  QProgressBar* ProgressBar1;
  QPushButton* CmdAbort;
  QPointer<QMessageBox> question;
};

}  // namespace chanplan
