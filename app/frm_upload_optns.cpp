#include "app/frm_upload_optns.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

namespace chanplan {

frmUploadOptns::frmUploadOptns(QWidget* parent, TransferFlags& transferFlags)
    : QDialog(parent),
      flags(transferFlags),
      optnAppend(new QRadioButton("&Append to it")),
      optnReplace(new QRadioButton("&Overwrite it")),
      chkReplace(new QCheckBox("Replace matching signal standards")),
      chkKeepCopy(new QCheckBox("&Keep a copy of the unit's table")),
      chkReadBack(new QCheckBox("Read &back and compare")) {
  setObjectName("frmUploadOptns");
  setWindowTitle("Upload Signal Standards");
  auto* prompt = new QLabel("What do you want to do with the existing Signal Standard Table?");
  prompt->setObjectName("lblPrompt");
  optnAppend->setObjectName("optnAppend");
  optnReplace->setObjectName("optnReplace");
  chkReplace->setObjectName("chkReplace");
  chkKeepCopy->setObjectName("chkKeepCopy");
  chkKeepCopy->setToolTip("Reads the unit's table first, into a dated file in your documents folder");
  chkKeepCopy->setChecked(flags.UploadKeepCopy);
  chkReadBack->setObjectName("chkReadBack");
  chkReadBack->setToolTip("Reads the unit's table afterwards, and shows what is not as it was sent");
  chkReadBack->setChecked(flags.UploadReadBack);
  auto* upload = new QPushButton("&Upload");
  upload->setObjectName("bttnUpload");
  upload->setDefault(true);
  auto* cancel = new QPushButton("&Cancel");
  cancel->setObjectName("bttnCancel");

  auto* column = new QVBoxLayout(this);
  column->setSizeConstraint(QLayout::SetFixedSize);
  auto* indented = new QHBoxLayout;
  indented->addSpacing(style()->pixelMetric(QStyle::PM_ExclusiveIndicatorWidth) +
                       style()->pixelMetric(QStyle::PM_RadioButtonLabelSpacing));
  indented->addWidget(chkReplace);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(upload);
  buttons->addWidget(cancel);
  column->addWidget(prompt);
  column->addWidget(optnAppend);
  column->addLayout(indented);
  column->addWidget(optnReplace);
  column->addSpacing(style()->pixelMetric(QStyle::PM_LayoutVerticalSpacing));
  column->addWidget(chkKeepCopy);
  column->addWidget(chkReadBack);
  column->addSpacing(style()->pixelMetric(QStyle::PM_LayoutVerticalSpacing));
  column->addLayout(buttons);

  connect(optnAppend, &QRadioButton::toggled, chkReplace, &QCheckBox::setEnabled);
  connect(upload, &QPushButton::clicked, this, &QDialog::accept);
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
  optnAppend->setChecked(true);  // the choice that keeps what the unit has
  optnAppend->setFocus();
}

void frmUploadOptns::accept() {
  flags.AbortRequested = false;
  flags.UploadAppend = optnAppend->isChecked();
  flags.UploadReplaceMatching = chkReplace->isChecked();
  flags.UploadKeepCopy = chkKeepCopy->isChecked();
  flags.UploadReadBack = chkReadBack->isChecked();
  QDialog::accept();
}

void frmUploadOptns::reject() {
  flags.AbortRequested = true;
  QDialog::reject();
}

}  // namespace chanplan
