// The editor against an empty window and against bare controls: time to the first painted window and
// resident memory, each in processes started in turn. Then, in one process, opening a full table and
// committing one edit.
#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <cstdio>
#include <vector>

#include "bench/first_paint.h"
#include "bench/start_editor.h"
#include "core/sig_file.h"

namespace chanplan {
namespace {

constexpr int Starts = 31;
constexpr int Rounds = 200;

double Quantile(std::vector<double> values, double part) {
  std::ranges::sort(values);
  return values[static_cast<std::size_t>(part * static_cast<double>(values.size() - 1) + 0.5)];
}

struct Start {
  double Milliseconds;
  double KiB;
};

Start MeasureStart(const QString& program, const QStringList& arguments = {}) {
  QProcess child;
  const double begin = NowMs();
  child.start(QCoreApplication::applicationDirPath() + "/" + program, arguments);
  child.waitForFinished();
  const QList<QByteArray> fields = child.readAllStandardOutput().trimmed().split(' ');
  if (fields.size() != 2) qFatal("no window was shown");
  return {fields[0].toDouble() - begin, fields[1].toDouble()};
}

void BenchStarts() {
  struct Ratios {
    std::vector<double> Time;
    std::vector<double> Memory;
    void Add(const Start& start, const Start& floor) {
      Time.push_back(start.Milliseconds / floor.Milliseconds);
      Memory.push_back(start.KiB / floor.KiB);
    }
  };
  std::vector<double> times;
  Ratios toEmpty;
  Ratios toBare;
  Ratios bareToEmpty;
  for (int round = 0; round < Starts; ++round) {
    const Start empty = MeasureStart("window_floor", {"--empty"});
    const Start bare = MeasureStart("window_floor", {"--bare"});
    const Start editor = MeasureStart("editor_start");
    times.push_back(editor.Milliseconds);
    toEmpty.Add(editor, empty);
    toBare.Add(editor, bare);
    bareToEmpty.Add(bare, empty);
  }
  std::printf("start to first window: median %.0f ms\n", Quantile(times, 0.5));
  const auto report = [](const char* what, const Ratios& ratios) {
    std::printf("%s: time %.2f, resident memory %.2f\n", what, Quantile(ratios.Time, 0.5),
                Quantile(ratios.Memory, 0.5));
  };
  report("times an empty window", toEmpty);
  report("times bare controls", toBare);
  report("bare controls, times an empty window", bareToEmpty);
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
  qputenv("XDG_CONFIG_HOME", settings.path().toUtf8());
  const QApplication application(argc, argv);
  BenchStarts();
  BenchWork();
}
