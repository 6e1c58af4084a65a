// What an upload does with the table that the unit has.
#pragma once

#include <QCheckBox>
#include <QDialog>
#include <QRadioButton>

#include "app/transfer_flags.h"

namespace chanplan {

/// Sets the flags: `AbortRequested` when the user cancels, otherwise the choices.
class frmUploadOptns : public QDialog {
  Q_OBJECT

 public:
  frmUploadOptns(QWidget* parent, TransferFlags& transferFlags);

  void accept() override;
  void reject() override;

 private:
  TransferFlags& flags;
  QRadioButton* optnAppend;
  QRadioButton* optnReplace;
  QCheckBox* chkReplace;
  QCheckBox* chkKeepCopy;
  QCheckBox* chkReadBack;
};

}  // namespace chanplan
