// The about box.
#pragma once

#include <QDialog>

namespace chanplan {

class frmAbout : public QDialog {
  Q_OBJECT

 public:
  explicit frmAbout(QWidget* parent);
};

/// "32-bit Version 1.00" for version 1.0.
QString VersionLine(int major, int minor);

}  // namespace chanplan
