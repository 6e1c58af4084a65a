#include "tests/desktop/desktop.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QStandardPaths>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace chanplan::testing {
namespace {

constexpr char OtherTitle[] = "Another program";
// Keys that the application has no use for, one after the other: a late one is not taken for the next.
constexpr std::array Marks = {std::pair{Qt::Key_F9, "F9"}, std::pair{Qt::Key_F11, "F11"},
                              std::pair{Qt::Key_F12, "F12"}};

Desktop* theDesktop = nullptr;

}  // namespace

QString MissingProgram() {
  for (const char* program : {"openbox", "xdotool"})
    if (QStandardPaths::findExecutable(program).isEmpty()) return program;
  return {};
}

int RunOtherProgram(int argc, char** argv) {
  const QApplication application(argc, argv);
  // As somebody does there who marks a text.
  QObject::connect(&application, &QGuiApplication::applicationStateChanged, [](Qt::ApplicationState state) {
    if (state == Qt::ApplicationActive)
      QGuiApplication::clipboard()->setText(SelectedInTheOtherProgram, QClipboard::Selection);
  });
  QWidget window;
  window.setWindowTitle(OtherTitle);
  window.resize(200, 100);
  window.show();
  std::printf("%llu\n", static_cast<unsigned long long>(window.winId()));
  std::fflush(stdout);
  return QApplication::exec();
}

Desktop& TheDesktop() { return *theDesktop; }

Desktop::Desktop(const QString& ownProgram) {
  theDesktop = this;
  QApplication::instance()->installEventFilter(this);
  // Without habits of its own: it would look at each click first, and lose some of two in a row.
  QFile settings(QDir::tempPath() + "/chanplan-window-manager-" + QString::number(QCoreApplication::applicationPid()));
  if (!settings.open(QIODevice::WriteOnly)) qFatal("no settings for the window manager");
  settings.write(
      "<?xml version=\"1.0\"?><openbox_config xmlns=\"http://openbox.org/3.4/rc\">"
      "<keyboard/><mouse/></openbox_config>\n");
  settings.close();
  windowManager.start("openbox", {"--sm-disable", "--config-file", settings.fileName()});
  if (!QTest::qWaitFor([] { return !Run({"get_desktop"}).isEmpty(); }, LongestWait)) qFatal("no window manager");
  otherProgram.start(ownProgram, {"--other-program"});
  if (!QTest::qWaitFor([this] { return otherProgram.canReadLine(); }, LongestWait)) qFatal("no other program");
  otherWindow = QString::fromLatin1(otherProgram.readLine()).trimmed();
  // Its window comes up when it likes, and must not take the keys of a test that has begun.
  Run({"windowactivate", "--sync", otherWindow});
  hands.start("xdotool", {"-"});
  hands.waitForStarted();
}

Desktop::~Desktop() {
  hands.closeWriteChannel();
  for (QProcess* process : {&hands, &otherProgram, &windowManager}) {
    process->terminate();
    if (!process->waitForFinished(5000)) process->kill();
  }
  QFile::remove(windowManager.arguments().back());
}

QString Desktop::Run(const QStringList& arguments) {
  QProcess process;
  process.start("xdotool", arguments);
  EXPECT_TRUE(QTest::qWaitFor([&] { return process.state() == QProcess::NotRunning; }, LongestWait));
  return QString::fromLatin1(process.readAllStandardOutput()).trimmed();
}

void Desktop::Settle(QWidget& window) {
  ComeBack(window);
  EXPECT_TRUE(QTest::qWaitFor(
      [&] {
        const QPoint inside(40 + clicks++ % 8, 5);
        const QPoint place = window.mapToGlobal(inside) * window.devicePixelRatioF();
        Do(QString("mousemove %1 %2").arg(place.x()).arg(place.y()));
        WaitUntilKeysAreHandled();
        return pointer.toPoint() == inside;
      },
      LongestWait));
}

bool Desktop::eventFilter(QObject* watched, QEvent* event) {
  if (watched->isWindowType()) {
    if (event->type() == QEvent::MouseMove) pointer = static_cast<QMouseEvent*>(event)->position();
    // Queued: the window has it then.
    if (event->type() == QEvent::MouseButtonRelease || event->type() == QEvent::Wheel)
      QMetaObject::invokeMethod(this, &Desktop::Clicked, Qt::QueuedConnection);
  }
  // A click would hit what comes up under a pointer that rests.
  if (event->type() == QEvent::ToolTip) return true;
  const bool key = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease ||
                   event->type() == QEvent::ShortcutOverride;
  if (!key) return QObject::eventFilter(watched, event);
  const int code = static_cast<QKeyEvent*>(event)->key();
  if (event->type() == QEvent::KeyRelease && watched->isWindowType() && code == Marks[mark].first) emit Marked();
  return std::ranges::find(Marks, code, [](const auto& known) -> int { return known.first; }) != Marks.end();
}

void Desktop::Do(const QString& commands) {
  constexpr int kept = 40;
  deeds += commands;
  if (deeds.size() > kept) deeds.removeFirst();
  hands.write(commands.toLatin1() + "\n");
}

// Whatever was done before it has been handled when a last key has arrived. A window that closes may
// take one along.
void Desktop::WaitUntilKeysAreHandled() {
  mark = (mark + 1) % Marks.size();
  QEventLoop loop;
  connect(this, &Desktop::Marked, &loop, [&loop] { loop.exit(1); });
  for (int tries = 0; tries < 20; ++tries) {
    hands.write(QByteArray("key --delay 0 ") + Marks[mark].second + "\n");
    QTimer::singleShot(LongestWait / 20, &loop, [&loop] { loop.exit(0); });
    if (loop.exec() == 1) return;
  }
  ADD_FAILURE() << "keys do not arrive";
}

void Desktop::Press(const QStringList& keys) {
  Do("key --delay 0 " + keys.join(' '));
  WaitUntilKeysAreHandled();
}

void Desktop::Type(const QString& text) {
  QStringList keys;
  for (const QChar character : text) keys += QString("U%1").arg(character.unicode(), 4, 16, QChar('0'));
  Press(keys);
}

void Desktop::Hold(const QString& key) {
  Do("keydown " + key);
  WaitUntilKeysAreHandled();
}

void Desktop::LetGo(const QString& key) {
  Do("keyup " + key);
  WaitUntilKeysAreHandled();
}

// A few pixels beside the place of the click before, so that two clicks are not a double click. The
// window manager looks at clicks first, so that keys may overtake them.
void Desktop::ClickTimes(QWidget& widget, const QPoint& at, int button, int times) {
  const QPoint place = (widget.mapToGlobal(at) + QPoint(clicks++ % 2 == 0 ? 0 : 12, 0)) * widget.devicePixelRatioF();
  Do(QString("mousemove %1 %2 click --repeat %3 --delay 1 %4").arg(place.x()).arg(place.y()).arg(times).arg(button));
  QEventLoop loop;
  int arrived = 0;
  connect(this, &Desktop::Clicked, &loop, [&] {
    if (++arrived == times) loop.quit();
  });
  QTimer::singleShot(LongestWait, &loop, &QEventLoop::quit);
  loop.exec();
  EXPECT_EQ(arrived, times) << "clicks do not arrive";
  WaitUntilKeysAreHandled();
}

void Desktop::Click(QWidget& widget, const QPoint& at, int button) { ClickTimes(widget, at, button, 1); }

void Desktop::DoubleClick(QWidget& widget, const QPoint& at) { ClickTimes(widget, at, 1, 2); }

void Desktop::PressElsewhere(const QStringList& keys) { Run(QStringList{"key", "--delay", "15"} + keys); }

void Desktop::TypeElsewhere(const QString& text) { Run({"type", "--delay", "15", text}); }

bool Desktop::GoToWindow(const QString& title) {
  QString window;
  const bool found = QTest::qWaitFor(
      [&] {
        window = Run({"search", "--onlyvisible", "--name", title}).section('\n', 0, 0);
        return !window.isEmpty();
      },
      LongestWait);
  if (found) Run({"windowactivate", "--sync", window});
  return found;
}

void Desktop::GoToTheOtherProgram() {
  Run({"windowactivate", otherWindow});
  EXPECT_TRUE(
      QTest::qWaitFor([] { return QGuiApplication::applicationState() != Qt::ApplicationActive; }, LongestWait));
}

void Desktop::ComeBack(QWidget& window) {
  Run({"windowactivate", QString::number(window.winId())});
  EXPECT_TRUE(QTest::qWaitFor(
      [&] { return window.isActiveWindow() && QGuiApplication::applicationState() == Qt::ApplicationActive; },
      LongestWait));
}

}  // namespace chanplan::testing
