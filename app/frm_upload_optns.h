// What an upload does with the table that the unit has.
#pragma once

#include <QCheckBox>
#include <QDialog>
#include <QRadioButton>

#include "app/transfers.h"

namespace chanplan {

/// Sets the flags of `transfers`: `AbortRequested` when the user cancels, otherwise the choices.
class frmUploadOptns : public QDialog {
  Q_OBJECT

 public:
  frmUploadOptns(QWidget* parent, TransferState& transferState);

  void accept() override;
  void reject() override;

 private:
  TransferState& transfers;
  QRadioButton* optnAppend;
  QRadioButton* optnReplace;
  QCheckBox* chkReplace;
};

}  // namespace chanplan
