// A user before windows: key presses, and answers to what comes up.
#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPointer>
#include <QScopedValueRollback>
#include <QTest>
#include <QTimer>
#include <deque>
#include <functional>
#include <ostream>
#include <string_view>
#include <vector>

// Found by GoogleTest, which would else show bytes in hexadecimal.
inline void PrintTo(const QString& text, std::ostream* output) { *output << '"' << text.toStdString() << '"'; }
inline void PrintTo(const QRect& rect, std::ostream* output) {
  *output << rect.width() << 'x' << rect.height() << " at " << rect.x() << ',' << rect.y();
}

namespace chanplan::testing {

/// A message box as the user saw it.
struct Message {
  QString Title;
  QString Text;
  QMessageBox::Icon Icon = QMessageBox::NoIcon;
  QMessageBox::StandardButtons Buttons = {};
  bool operator==(const Message&) const = default;
};

inline void PrintTo(const Message& message, std::ostream* output) {
  *output << '[' << message.Title.toStdString() << "] " << message.Text.toStdString() << " (icon " << message.Icon
          << ", buttons " << message.Buttons.toInt() << ')';
}

/// Answers modal windows in the order in which the answers were given; one that nobody expects fails the test.
class Answers {
 public:
  std::vector<Message> Seen;  ///< the message boxes among them
  std::function<void(QWidget&)> Unexpected = [](QWidget& window) {
    const auto* box = qobject_cast<QMessageBox*>(&window);
    ADD_FAILURE() << "nobody expects " << (box != nullptr ? box->text() : window.windowTitle()).toStdString();
  };

  Answers() {
    timer.setInterval(1);
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, [this] { Look(); });
    timer.start();
  }

  void Give(QMessageBox::StandardButton button) {
    Give([button](QMessageBox& box) { QTest::mouseClick(box.button(button), Qt::LeftButton); });
  }
  void Give(std::function<void(QMessageBox&)> answer) {
    GiveToDialog([answer = std::move(answer)](QWidget& window) { answer(dynamic_cast<QMessageBox&>(window)); });
  }
  void GiveToDialog(std::function<void(QWidget&)> answer) { pending.push_back(std::move(answer)); }
  bool AllGiven() const { return pending.empty(); }
  /// From now on windows are left to the test.
  void Stop() { timer.disconnect(); }

 private:
  void Look() {
    timer.start();  // once more, as an answer may bring up another window
    QWidget* modal = QApplication::activeModalWidget();
    if (modal == nullptr || modal == beingAnswered || !modal->isVisible()) return;
    if (!modal->isActiveWindow()) return modal->activateWindow();
    const QScopedValueRollback guard(beingAnswered, modal);
    const QPointer<QWidget> window = modal;
    if (const auto* box = qobject_cast<QMessageBox*>(modal))
      Seen.push_back({box->windowTitle(), box->text(), box->icon(), box->standardButtons()});
    if (pending.empty()) {
      Unexpected(*modal);
    } else {
      const auto answer = std::move(pending.front());
      pending.pop_front();
      answer(*modal);
      EXPECT_TRUE(window == nullptr || window->isHidden()) << "the answer did not close the window";
    }
    if (window != nullptr) window->close();
  }

  QTimer timer;
  QWidget* beingAnswered = nullptr;
  std::deque<std::function<void(QWidget&)>> pending;
};

/// For what has to happen, however slow the machine: ms.
inline constexpr int LongestWait = 20000;

// The user's keyboard: keys go to the window that has the focus, and from there where Qt sends them.

/// The window that has the focus. No window manager is here to give it back after a message box, so this does.
inline QWindow* FocusWindow() {
  if (QGuiApplication::focusWindow() == nullptr)
    for (QWidget* const shown : QApplication::topLevelWidgets())
      if (shown->isVisible()) shown->activateWindow();
  EXPECT_TRUE(QTest::qWaitFor([] { return QGuiApplication::focusWindow() != nullptr; }, LongestWait));
  return QGuiApplication::focusWindow();
}

inline void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
  QTest::keyClick(FocusWindow(), key, modifiers);
}

/// Holds these keys down, until they are released by holding none.
inline void HoldKeys(Qt::KeyboardModifiers held) {
  if (held == Qt::NoModifier)
    QTest::keyRelease(FocusWindow(), Qt::Key_Control);
  else
    QTest::keyPress(FocusWindow(), Qt::Key_Control, held);
  EXPECT_EQ(QGuiApplication::keyboardModifiers(), held);
}

/// To the focus itself, as a key that is sent to a window runs no shortcut.
inline void PressShortcut(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::ControlModifier) {
  FocusWindow();
  ASSERT_NE(QApplication::focusWidget(), nullptr);
  QTest::keyClick(QApplication::focusWidget(), key, modifiers);
}

inline void PressTimes(int times, Qt::Key key) {
  for (int time = 0; time < times; ++time) Press(key);
}

inline void Type(std::string_view text) {
  for (const char character : text) QTest::keyClick(FocusWindow(), character);
}

/// Moves the mouse over a menu to an item, and clicks it. A menu takes the release of a mouse that it has not
/// seen moving for that of the click that brought it up, and closes. No other events run meanwhile.
inline void ClickItem(QMenu& menu, QAction& item) {
  const QPoint place = menu.actionGeometry(&item).center();
  constexpr int steps = 10;
  for (int step = 1; step <= steps; ++step) {
    const QPoint at = place * step / steps;
    QMouseEvent move(QEvent::MouseMove, at, menu.mapToGlobal(at), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(&menu, &move);
  }
  QTest::mouseClick(&menu, Qt::LeftButton, {}, place);
}

}  // namespace chanplan::testing
