// When a program's first window is painted, told to the benchmark that started the program.
#pragma once

#include <unistd.h>

#include <QEvent>
#include <QTimer>
#include <QWidget>
#include <chrono>
#include <cstdio>
#include <fstream>

namespace chanplan {

/// Milliseconds on the clock that all processes share.
inline double NowMs() {
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

inline double ResidentKiB() {
  std::ifstream status("/proc/self/statm");
  long pages = 0;
  long resident = 0;
  status >> pages >> resident;
  return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1024;
}

/// Installed on a window: prints the time and the resident memory in KiB once the window and all that
/// is in it was painted first, and ends the process.
class FirstPaint : public QObject {
 public:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() != QEvent::Paint || !static_cast<QWidget*>(watched)->isWindow()) return false;
    watched->removeEventFilter(this);
    QTimer::singleShot(0, [] {
      std::printf("%.3f %.0f\n", NowMs(), ResidentKiB());
      std::fflush(stdout);
      _exit(0);
    });
    return false;
  }
};

}  // namespace chanplan
