// The editor up to its first painted window, with nothing loaded that the editor does not load.
#include <QApplication>

#include "bench/first_paint.h"
#include "bench/start_editor.h"

int main(int argc, char* argv[]) {
  const QApplication application(argc, argv);
  chanplan::FirstPaint firstPaint;
  const auto app = chanplan::StartEditor();
  app->Frame->installEventFilter(&firstPaint);
  return QApplication::exec();
}
