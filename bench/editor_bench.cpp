// The editor against an empty window: time to the first painted window and resident memory, each in
// processes started in turn. Then, in one process, opening a full table and committing one edit.
#include <unistd.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QMainWindow>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <vector>

#include "app/app_main.h"
#include "app/frm_main.h"
#include "core/sig_file.h"
#include "editor/frm_document.h"
#include "unit/qt_serial_port.h"

namespace chanplan {
namespace {

constexpr int Starts = 15;
constexpr int Rounds = 200;

double NowMs() {
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

double ResidentKiB() {
  std::ifstream status("/proc/self/statm");
  long pages = 0;
  long resident = 0;
  status >> pages >> resident;
  return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1024;
}

double Quantile(std::vector<double> values, double part) {
  std::ranges::sort(values);
  return values[static_cast<std::size_t>(part * static_cast<double>(values.size() - 1) + 0.5)];
}

// Tells when a window was painted first, and how much memory that took.
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

std::unique_ptr<AppMain> StartEditor() {
  auto app = std::make_unique<AppMain>(std::make_unique<QtSerialPort>(), SystemTiming(),
                                       [](FrameOperations& frame, DocumentState& state, SharedTables& shared) {
                                         return std::make_unique<frmDocument>(frame, state, shared);
                                       });
  app->Main();
  return app;
}

int RunChild(bool editor) {
  FirstPaint firstPaint;
  if (editor) {
    const auto app = StartEditor();
    app->Frame->installEventFilter(&firstPaint);
    return QApplication::exec();
  }
  QMainWindow window;
  window.installEventFilter(&firstPaint);
  window.show();
  return QApplication::exec();
}

struct Start {
  double Milliseconds;
  double KiB;
};

Start MeasureStart(const char* kind) {
  QProcess child;
  const double begin = NowMs();
  child.start(QCoreApplication::applicationFilePath(), {kind});
  child.waitForFinished();
  const QList<QByteArray> fields = child.readAllStandardOutput().trimmed().split(' ');
  return {fields.value(0).toDouble() - begin, fields.value(1).toDouble()};
}

void BenchStarts() {
  std::vector<double> timeRatios;
  std::vector<double> memoryRatios;
  std::vector<double> times;
  for (int start = 0; start < Starts; ++start) {
    const Start empty = MeasureStart("--empty");
    const Start editor = MeasureStart("--editor");
    times.push_back(editor.Milliseconds);
    timeRatios.push_back(editor.Milliseconds / empty.Milliseconds);
    memoryRatios.push_back(editor.KiB / empty.KiB);
  }
  std::printf("start to first window: %.0f ms, times an empty window: %.2f\n", Quantile(times, 0.5),
              Quantile(timeRatios, 0.5));
  std::printf("resident memory, times an empty window: %.2f\n", Quantile(memoryRatios, 0.5));
}

SignalStandardTable FullTable() {
  SignalStandardTable table;
  for (int index = 0; index < MaxRecords - 1; ++index)  // 200 would be answered by a message
    table.Append({"2", 0, "Standard " + std::to_string(index), 890.2, 935.2, index, index + 124, 0.2, 0.2, 1});
  return table;
}

void Report(const char* what, const std::vector<double>& milliseconds) {
  std::printf("%s: median %.2f ms, 99th percentile %.2f ms\n", what, Quantile(milliseconds, 0.5),
              Quantile(milliseconds, 0.99));
}

void BenchWork() {
  const QTemporaryDir folder;
  const QString file = folder.filePath("full.sig");
  SaveSigFile(file.toStdString(), FullTable());
  const auto app = StartEditor();
  DocumentWindow& document = *app->Frame->ActiveDocument();
  QTest::qWait(100);

  std::vector<double> opening;
  for (int round = 0; round < Rounds; ++round) {
    const double begin = NowMs();
    document.LoadSigStandards(file);
    app->Frame->repaint();
    QCoreApplication::processEvents();
    opening.push_back(NowMs() - begin);
  }
  Report("opening 199 rows to the painted grids", opening);

  Grid& details = *document.findChild<Grid*>("GridDetails");
  QLineEdit& box = *document.findChild<QLineEdit*>("txtEntry");
  app->Frame->activateWindow();
  if (!QTest::qWaitForWindowActive(app->Frame.get())) qFatal("the frame cannot be activated");
  details.setFocus();
  details.setCurrentCell(4, 1);
  std::vector<double> editing;
  for (int round = 0; round < Rounds; ++round) {
    QTest::keyClick(&details, round % 2 == 0 ? Qt::Key_7 : Qt::Key_8);
    if (!box.isVisible()) qFatal("the edit box did not open");
    const double begin = NowMs();
    QTest::keyClick(&box, Qt::Key_Return);
    QCoreApplication::processEvents();
    editing.push_back(NowMs() - begin);
  }
  Report("one committed edit at 199 rows", editing);
  document.State().Changed = false;
}

}  // namespace
}  // namespace chanplan

int main(int argc, char* argv[]) {
  using namespace chanplan;
  const QTemporaryDir settings;
  if (argc < 2) qputenv("XDG_CONFIG_HOME", settings.path().toUtf8());
  const QApplication application(argc, argv);
  if (argc > 1) return RunChild(argv[1] == std::string("--editor"));
  BenchStarts();
  BenchWork();
}
