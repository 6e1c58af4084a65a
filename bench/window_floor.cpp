// What the editor's start is measured against: `--empty` shows a window with nothing in it, `--text`
// one with a line of text, `--bare` one with the editor's visible controls and nothing behind them.
#include <QApplication>
#include <QLabel>
#include <QListWidget>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QScreen>
#include <QStatusBar>
#include <QTableWidget>
#include <QToolBar>
#include <QVBoxLayout>
#include <string>

#include "bench/first_paint.h"

namespace {

QWidget* Tables() {
  QWidget* area = new QWidget;
  auto* row = new QHBoxLayout(area);
  auto* column = new QVBoxLayout;
  auto* details = new QTableWidget(11, 2);
  for (int line = 0; line < details->rowCount(); ++line)
    details->setItem(line, 0, new QTableWidgetItem("Downlink Start Frequency (MHz)"));
  row->addWidget(new QTableWidget(0, 2));
  row->addLayout(column);
  column->addWidget(details);
  column->addWidget(new QTableWidget(0, 5));
  return area;
}

void AddControls(QMainWindow& window) {
  for (const char* title : {"&File", "&Edit", "&View", "&Options", "&Tools", "&Window", "&Help"})
    for (QMenu* menu = window.menuBar()->addMenu(title); menu->actions().size() < 8;) menu->addAction("Item");
  QPixmap square(24, 24);
  square.fill(Qt::gray);
  QToolBar* buttons = window.addToolBar("Toolbar");
  while (buttons->actions().size() < 10) buttons->addAction(square, "Button");
  window.statusBar()->showMessage("0 warnings.");

  QWidget* client = new QWidget;
  auto* column = new QVBoxLayout(client);
  auto* documents = new QMdiArea;
  auto* warnings = new QListWidget;
  warnings->setFixedHeight(100);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(documents);
  column->addWidget(warnings);
  window.setCentralWidget(client);
  QMdiSubWindow* document = documents->addSubWindow(Tables());
  document->setWindowTitle("Untitled 1");
  document->resize(633, 373);
  window.resize(window.screen()->size() * 0.6);
}

}  // namespace

int main(int argc, char* argv[]) {
  const QApplication application(argc, argv);
  chanplan::FirstPaint firstPaint;
  QMainWindow window;
  window.installEventFilter(&firstPaint);
  const std::string content = argc > 1 ? argv[1] : "--empty";
  if (content == "--text") window.setCentralWidget(new QLabel("Untitled 1"));
  if (content == "--bare") AddControls(window);
  window.show();
  return QApplication::exec();
}
