// The editor against windows with less in them: time to the first painted window and resident memory,
// each in processes started in turn. Then, in one process, the processor time of an editor that nobody
// uses, opening a full table and committing one edit.
#include <QApplication>
#include <QEventLoop>
#include <QLineEdit>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <vector>

#include "bench/first_paint.h"
#include "bench/start_editor.h"
#include "core/sig_file.h"

namespace chanplan {
namespace {

constexpr int Starts = 31;
constexpr int IdleSeconds = 20;
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
  struct Kind {
    const char* Name;
    const char* Program;
    QStringList Arguments;
    std::vector<Start> Measured;
  };
  Kind kinds[] = {{"an empty window", "window_floor", {"--empty"}, {}},
                  {"one line of text", "window_floor", {"--text"}, {}},
                  {"bare controls", "window_floor", {"--bare"}, {}},
                  {"the editor", "editor_start", {}, {}}};
  for (int round = 0; round < Starts; ++round)
    for (Kind& kind : kinds) kind.Measured.push_back(MeasureStart(kind.Program, kind.Arguments));

  const auto median = [](const Kind& kind, const Kind& floor, double Start::*figure) {
    std::vector<double> ratios;
    for (std::size_t round = 0; round < Starts; ++round)
      ratios.push_back(kind.Measured[round].*figure / floor.Measured[round].*figure);
    return Quantile(ratios, 0.5);
  };
  const auto report = [&](const Kind& kind, const Kind& floor) {
    std::printf("%s, times %s: time to the first window %.2f, resident memory %.2f\n", kind.Name, floor.Name,
                median(kind, floor, &Start::Milliseconds), median(kind, floor, &Start::KiB));
  };
  const auto& [empty, text, bare, editor] = kinds;
  report(text, empty);
  report(bare, empty);
  report(editor, empty);
  report(editor, bare);
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

double ProcessorSeconds() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

void BenchIdle() {
  const auto app = StartEditor();
  QTest::qWait(1000);
  const double begin = ProcessorSeconds();
  QEventLoop idle;
  QTimer::singleShot(IdleSeconds * 1000, &idle, &QEventLoop::quit);
  idle.exec();
  std::printf("processor time of %d idle seconds: %.3f %% of a core\n", IdleSeconds,
              100 * (ProcessorSeconds() - begin) / IdleSeconds);
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
  const auto edit = [&](const char* what) {
    std::vector<double> editing;
    for (int round = 0; round < Rounds; ++round) {
      QTest::keyClick(&details, round % 2 == 0 ? Qt::Key_7 : Qt::Key_8);
      if (!box.isVisible()) qFatal("the edit box did not open");
      const double begin = NowMs();
      QTest::keyClick(&box, Qt::Key_Return);
      QCoreApplication::processEvents();
      editing.push_back(NowMs() - begin);
    }
    Report(what, editing);
  };
  edit("one committed edit at 199 rows");
  document.ToggleChart();
  QTest::qWait(100);
  edit("the same with the chart open");
  document.State().Changed = false;
}

}  // namespace
}  // namespace chanplan

int main(int argc, char* argv[]) {
  using namespace chanplan;
  const QTemporaryDir settings;
  for (const char* variable : {"XDG_CONFIG_HOME", "XDG_STATE_HOME"}) qputenv(variable, settings.path().toUtf8());
  const QApplication application(argc, argv);
  BenchStarts();
  BenchIdle();
  BenchWork();
}
