// The desktop around the application, and a user's hands on it: keys and mouse as the screen's
// server passes them on, a window manager, and another program.
#pragma once

#include <QPoint>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QWidget>

#include "tests/editor/user.h"

namespace chanplan::testing {

/// A program that the desktop needs and this machine has not; empty when it has all.
QString MissingProgram();

/// What is selected in the other program once somebody has gone there: blanks come along easily.
constexpr char SelectedInTheOtherProgram[] = " 34 ";

/// What the other program does: it shows a window and waits to be ended.
int RunOtherProgram(int argc, char** argv);

/// Lives as long as the tests: starts the window manager and the other program.
class Desktop : public QObject {
  Q_OBJECT

 public:
  explicit Desktop(const QString& ownProgram);
  ~Desktop() override;

  /// Presses keys one after the other, such as "Tab" or "ctrl+shift+z". Returns when the application
  /// has had them.
  void Press(const QStringList& keys);
  void Type(const QString& text);
  /// Keys stay down until they are let go.
  void Hold(const QString& key);
  void LetGo(const QString& key);
  void Click(QWidget& widget, const QPoint& at, int button = 1);
  void DoubleClick(QWidget& widget, const QPoint& at);

  /// For keys to a program that is not this one, which nobody can wait for here.
  void PressElsewhere(const QStringList& keys);
  void TypeElsewhere(const QString& text);
  /// The window of that title, brought to the front; false when none comes up.
  bool GoToWindow(const QString& title);

  /// Returns once a new `window` stands where it believes to stand: window managers move windows.
  void Settle(QWidget& window);

  /// The last things that hands did, for whoever looks into a failure.
  QString LastDeeds() const { return deeds.join("; "); }

  void GoToTheOtherProgram();
  void ComeBack(QWidget& window);

 signals:
  /// The keys up to here have been handled.
  void Marked();
  /// So has a click, or a turn of the wheel.
  void Clicked();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Do(const QString& commands);
  void WaitUntilKeysAreHandled();
  void ClickTimes(QWidget& widget, const QPoint& at, int button, int times);
  static QString Run(const QStringList& arguments);

  QProcess windowManager;
  QProcess otherProgram;
  QProcess hands;
  QString otherWindow;
  QStringList deeds;
  QPointF pointer;       // of the mouse, in the window that it was moved in last
  std::size_t mark = 0;  // the key that is waited for
  int clicks = 0;
};

/// The one desktop of this program.
Desktop& TheDesktop();

}  // namespace chanplan::testing
