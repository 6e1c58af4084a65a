// The application with a simulated unit, a process of its own, at the other end of its port.
#pragma once

#include <algorithm>
#include <limits>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

#include "app/frm_in_progress.h"
#include "core/sig_file.h"
#include "tests/app/app_fixture.h"
#include "tests/console/program.h"
#include "tests/console/sig_text.h"
#include "tests/core/table_of.h"
#include "unit/serial_port.h"
#include "unit/system_timing.h"

namespace chanplan::testing {

/// A serial port that knows what was sent, when the last byte moved and which numbers it was opened by. Its line can
/// be noisy.
class WatchedPort : public SerialPort {
 public:
  using SerialPort::SerialPort;

  std::chrono::steady_clock::time_point LastByte = std::chrono::steady_clock::now();
  std::vector<int> Numbers;
  std::string Sent;
  int NoiseAt = -1;  ///< which byte behind a command arrives with its last bits turned over, counted from 0 ...
  int NoiseEvery = std::numeric_limits<int>::max();  ///< ... and so many bytes on again
  char NoiseBits = 1;

  void SetPortNumber(int number) override {
    Numbers.push_back(number);
    SerialPort::SetPortNumber(number);
  }

  void TransmitCommChar(std::intptr_t handle, char byte) override {
    LastByte = std::chrono::steady_clock::now();
    Sent += byte;
    received = 0;
    SerialPort::TransmitCommChar(handle, byte);
  }
  std::string ReadInput() override {
    std::string input = SerialPort::ReadInput();
    if (!input.empty()) LastByte = std::chrono::steady_clock::now();
    for (char& byte : input)
      if (const int place = received++ - NoiseAt; NoiseAt >= 0 && place >= 0 && place % NoiseEvery == 0)
        byte = static_cast<char>(byte ^ NoiseBits);
    return input;
  }

 private:
  int received = 0;  // since the last byte was sent
};

/// Stands still while the process does: a machine may hold a test up for longer than a unit has to answer.
class RunningTime {
 public:
  std::chrono::nanoseconds Now() {
    const std::lock_guard lock(mutex);
    return counted + SinceLastBeat();
  }

 private:
  using Clock = std::chrono::steady_clock;
  std::chrono::nanoseconds SinceLastBeat() const {
    return std::min<std::chrono::nanoseconds>(Clock::now() - lastBeat, 50ms);
  }
  void Beat(const std::stop_token& stop) {
    while (!stop.stop_requested()) {
      std::this_thread::sleep_for(5ms);
      const std::lock_guard lock(mutex);
      counted += SinceLastBeat();
      lastBeat = Clock::now();
    }
  }

  std::mutex mutex;
  std::chrono::nanoseconds counted{};
  Clock::time_point lastBeat = Clock::now();
  std::jthread heart{[this](const std::stop_token& stop) { Beat(stop); }};
};

class TransferTest : public AppTest {
 protected:
  ~TransferTest() override { during.stop(); }

  // The unit.
  void StartUnit(const std::vector<std::string>& rows = {}, std::vector<std::string> options = {}) {
    WriteFile(unitFolder / "unit.sig", SigText(rows));
    if (std::ranges::find(options, "--baud") == options.end()) options.insert(options.end(), {"--baud", "0"});
    options.insert(options.end(), {"--table", unitFolder / "unit.sig", "--save", unitFolder / "held.sig", "--trace"});
    unit.emplace(options, unitFolder / "link");
  }
  /// Its table as it was at the start, and as the last upload left it, if there was one.
  bool UnitGotATable() const { return std::filesystem::exists(unitFolder / "held.sig"); }
  SignalStandardTable UnitsTable() {
    unit->Stop();  // everything it got is dealt with then
    return LoadSigFile(unitFolder / (UnitGotATable() ? "held.sig" : "unit.sig")).Table;
  }
  QStringList UnitsNames() { return NamesOf(UnitsTable()); }

  // The application.
  std::unique_ptr<PortObject> MakePort() override {
    auto made = std::make_unique<WatchedPort>(unitFolder / "link");
    port = made.get();
    return made;
  }
  /// A clock that does not wait in vain: where no byte has moved for `patience`, and the unit had its time to answer,
  /// it runs faster.
  LinkTiming MakeTiming() override {
    const LinkTiming real = SystemTiming();
    return {[this] { return ran.Now() + skipped; },
            [this, real](std::chrono::nanoseconds longest) {
              real.LetEventsRun(longest);
              if (longest.count() > 0 && UnitIsSilent()) skipped += 100ms;
            }};
  }
  /// A busy machine may leave the unit no time: it has to have looked for bytes as often as it does in `patience`.
  bool UnitIsSilent() {
    constexpr auto interval = 50ms;  // at which the unit looks
    const auto silence = std::chrono::steady_clock::now() - port->LastByte;
    if (silence < interval) return false;
    const long waits = unit ? unit->Waits() : RunningSimulator::Ended;
    if (std::exchange(silentSince, port->LastByte) != port->LastByte) waitsBefore = waits;
    return silence > patience && (waits == RunningSimulator::Ended || waits - waitsBefore >= patience / interval);
  }
  void ExpectPortFree() {
    EXPECT_FALSE(port->IsOpen());
    EXPECT_TRUE(unit->LetsGo()) << "a unit that hangs up takes its device along";
  }
  void ExpectAnotherProgramReachesTheUnit() {
    ExpectPortFree();
    const ProgramRun run = Chanplan().Run({"identify", unit->Link()});
    EXPECT_EQ(run.ExitStatus, 0) << run.Errors;
  }

  // What the user sees and does.
  frmInProgress* Progress() { return Frame().findChild<frmInProgress*>("frmInProgress"); }
  QString Label() { return Progress()->findChild<QLabel*>("LblPrompt")->text(); }
  int BarValue() { return Progress()->findChild<QProgressBar*>("ProgressBar1")->value(); }
  QString Status() { return Get<QLabel>("sbStatusBarPanel1").text(); }
  QString ActiveCaption() { return Frame().ActiveDocument()->windowTitle(); }
  QStringList ActiveNames() { return NamesOf(Frame().ActiveDocument()->Table()); }
  static QStringList NamesOf(const SignalStandardTable& table) {
    QStringList names;
    for (const std::string& name : RowNames(table)) names += QString::fromStdString(name);
    return names;
  }
  QString TableFile(const char* name, const std::vector<std::string>& rows) {
    WriteFile(folder / name, SigText(rows));
    return InFolder(name);
  }

  enum class Choice { Overwrite, Append, AppendAndReplace, Cancel };
  /// `boxes` are checked, those that are about no choice are not otherwise.
  void AnswerOptions(Choice choice, const QStringList& boxes = {}) {
    Answer([choice, boxes](QWidget& dialog) {
      EXPECT_EQ(dialog.objectName(), "frmUploadOptns");
      const auto click = [&dialog](const char* name) {
        auto* button = dialog.findChild<QAbstractButton*>(name);
        QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(8, button->height() / 2));
      };
      click(choice == Choice::Overwrite ? "optnReplace" : "optnAppend");
      if (choice == Choice::AppendAndReplace) click("chkReplace");
      for (const char* box : {"chkKeepCopy", "chkReadBack"})
        if (dialog.findChild<QAbstractButton*>(box)->isChecked() != boxes.contains(box)) click(box);
      click(choice == Choice::Cancel ? "bttnCancel" : "bttnUpload");
    });
  }
  void Download() { Choose("mnuToolsQuery"); }
  void Upload(Choice choice) {
    AnswerOptions(choice);
    Choose("mnuToolsUpload");
  }

  /// Runs `action` once, in the middle of the transfer, as soon as `when` holds.
  void During(std::function<bool()> when, std::function<void()> action) {
    during.disconnect();
    QObject::connect(&during, &QTimer::timeout, [this, when = std::move(when), action = std::move(action)] {
      if (Progress() == nullptr || !Progress()->isVisible() || !when()) return;
      during.stop();
      ++interruptions;
      action();
    });
    during.start(1);
  }
  bool IsConnecting() { return Label() == "Connecting to Handheld Product..."; }
  bool IsDownloading() { return Label() == "Downloading Signal Standards..." && BarValue() > 0; }
  bool IsUploading() { return Label() == "Uploading Signal Standards..." && BarValue() > 0; }
  void PressAbort() {
    EXPECT_TRUE(QTest::qWaitForWindowExposed(Progress(), LongestWait));
    Progress()->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(Progress(), LongestWait));
    QTest::mouseClick(Progress()->findChild<QPushButton*>("CmdAbort"), Qt::LeftButton);
  }
  QMessageBox* Question() { return Progress()->findChild<QMessageBox*>(); }

  TempFolder unitFolder;
  std::optional<RunningSimulator> unit;
  WatchedPort* port = nullptr;
  std::chrono::milliseconds patience = 1s;
  std::chrono::steady_clock::time_point silentSince;
  long waitsBefore = 0;  // of the unit, when the silence began
  RunningTime ran;
  std::chrono::nanoseconds skipped{};
  QTimer during;
  int interruptions = 0;
};

inline const QString CanceledText = "Process canceled by user.";
inline QString CompletedText(int records) {
  return "Process complete.  Transfered " + QString::number(records) + " signal standards (including sub-bands).";
}

}  // namespace chanplan::testing
