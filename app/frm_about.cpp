#include "app/frm_about.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QVersionNumber>

#include "app/icons.h"

namespace chanplan {
namespace {

constexpr int LogoSize = 64;
constexpr int Spacing = 12;

struct Line {
  const char* Name;
  QString Text;
};

}  // namespace

QString VersionLine(int major, int minor) {
  return QString("32-bit Version %1.%2").arg(major).arg(minor, 2, 10, QChar('0'));
}

frmAbout::frmAbout(QWidget* parent) : QDialog(parent) {
  setObjectName("frmAbout");
  setWindowTitle("About ");
  auto* grid = new QGridLayout(this);
  grid->setSizeConstraint(QLayout::SetFixedSize);
  grid->setSpacing(Spacing);
  grid->setContentsMargins(2 * Spacing, 2 * Spacing, 2 * Spacing, Spacing);

  const QVersionNumber version = QVersionNumber::fromString(CHANPLAN_VERSION);
  const Line lines[] = {
      {"Label1", "Chanplan Editor"},
      {"Label2", VersionLine(version.majorVersion(), version.minorVersion())},
      {"Label3", "Copyright © 2026 The Chanplan Editor developers"},
      {"Label7", "Free software under the MIT License. It comes without warranty of any kind."},
  };
  int row = 0;
  for (const Line& line : lines) {
    auto* label = new QLabel(line.Text, this);
    label->setObjectName(line.Name);
    grid->addWidget(label, row++, 1);
  }
  auto* logo = new QLabel(this);
  logo->setObjectName("Image1");
  logo->setPixmap(DrawnIcon("Program").pixmap(QSize(LogoSize, LogoSize), devicePixelRatio()));
  grid->addWidget(logo, 0, 0, row, 1, Qt::AlignTop);

  auto* ok = new QPushButton("OK", this);
  ok->setObjectName("bttnOK");
  ok->setAutoDefault(false);  // Esc is the one key that closes the box
  connect(ok, &QPushButton::clicked, this, &QDialog::accept);
  grid->addWidget(ok, row, 1, Qt::AlignRight);

  adjustSize();
  const QRect area = screen()->geometry();
  move(area.left() + (area.width() - width()) / 2, area.top() + (area.height() - height()) / 2);
}

}  // namespace chanplan
