#include "editor/history_commands.h"

#include <QShortcut>

namespace chanplan {
namespace {

struct HistoryCommand {
  const char* Name;
  const char* Caption;
  QKeyCombination Keys[2];  // the first one is shown
  int KeyCount;
  void (DocumentWindow::*Run)();
  QString (DocumentWindow::*StepName)() const;
};

constexpr HistoryCommand Commands[] = {
    {"mnuContextUndo", "&Undo", {Qt::CTRL | Qt::Key_Z}, 1, &DocumentWindow::Undo, &DocumentWindow::UndoName},
    {"mnuContextRedo",
     "&Redo",
     {Qt::CTRL | Qt::SHIFT | Qt::Key_Z, Qt::CTRL | Qt::Key_Y},
     2,
     &DocumentWindow::Redo,
     &DocumentWindow::RedoName},
};

}  // namespace

void AddHistoryKeys(QWidget& place, const std::function<DocumentWindow*()>& document) {
  for (const HistoryCommand& command : Commands) {
    for (int key = 0; key < command.KeyCount; ++key) {
      auto* shortcut = new QShortcut(command.Keys[key], &place);
      shortcut->setContext(Qt::WidgetWithChildrenShortcut);
      QObject::connect(shortcut, &QShortcut::activated, &place, [document, &command] {
        if (DocumentWindow* changed = document()) (changed->*command.Run)();
      });
    }
  }
}

void AddHistoryItems(QMenu& menu, DocumentWindow* document) {
  for (const HistoryCommand& command : Commands) {
    const QString step = document != nullptr ? (document->*command.StepName)() : QString();
    QAction* item = menu.addAction(step.isEmpty() ? command.Caption : command.Caption + (' ' + step));
    item->setObjectName(command.Name);
    item->setShortcut(command.Keys[0]);
    item->setShortcutVisibleInContextMenu(true);
    item->setEnabled(!step.isEmpty());
    if (document != nullptr) QObject::connect(item, &QAction::triggered, document, command.Run);
  }
}

}  // namespace chanplan
