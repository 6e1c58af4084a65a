// The main frame: its menus and toolbar buttons, as tables, and what happens when a menu drops down.
#include <QActionGroup>
#include <QMenuBar>
#include <QProxyStyle>
#include <QStyleOptionMenuItem>
#include <QTextDocument>
#include <array>

#include "app/frm_main.h"
#include "app/icons.h"
#include "editor/text_edge.h"

namespace chanplan {
namespace {

constexpr int MostRecentFileLetters = 80;

constexpr int LastRecentFile = 5;
constexpr int LastPort = 6;
constexpr int LastBaudRate = 4;
constexpr int IconSize = 24;

struct Button {
  const char* Key;
  const char* ToolTip;
  const char* MenuItem;  // whose command it runs, whether or not the item is enabled
};

constexpr Button Buttons[] = {
    {"New", "New file", "mnuFileNew"},
    {"Open", "Open", "mnuFileOpen"},
    {"Save", "Save", "mnuFileSave"},
    {"Print", "Print Signal Standard List", "mnuFilePrint"},
    {"Cut", "Cut", "mnuEditCut"},
    {"Copy", "Copy", "mnuEditCopy"},
    {"Paste", "Paste", "mnuEditPaste"},
    {"Add", "Add a new Signal Standard", "menuEditNewChanplan"},
    {"Upload", "Upload current table to unit", "mnuToolsUpload"},
    {"Query", "Down load Signal Standards from unit.", "mnuToolsQuery"},
};

// The library's own style marks no menu that the keyboard is at before it is open.
class MenuBarStyle : public QProxyStyle {
 public:
  void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                   const QWidget* widget) const override {
    const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (element != CE_MenuBarItem || item == nullptr || widget == nullptr || !widget->hasFocus())
      return QProxyStyle::drawControl(element, option, painter, widget);
    QStyleOptionMenuItem shown = *item;
    if (shown.state.testFlag(State_Selected)) shown.state |= State_Sunken;
    QProxyStyle::drawControl(element, &shown, painter, widget);
  }
};

}  // namespace

void frmMain::BuildMenus() {
  auto* style = new MenuBarStyle;
  style->setParent(menuBar());
  menuBar()->setStyle(style);
  enum Kind { Menu, SubMenu, EndOfSubMenu, Item, DocumentItem, Checked, Unchecked, Hidden, Separator, HiddenSeparator };
  struct Entry {
    Kind EntryKind;
    const char* Name;
    const char* Caption = "";
    void (frmMain::*Run)() = nullptr;  // when clicked; of a menu: before it drops down
    int Key = 0;
  };
  constexpr auto control = [](Qt::Key key) { return (Qt::CTRL | key).toCombined(); };
  static constexpr Entry entries[] = {
      {Menu, "mnuFile", "&File", &frmMain::EnableDocumentItems},
      {Item, "mnuFileNew", "&New", &frmMain::mnuFileNew_Click, control(Qt::Key_N)},
      {Item, "mnuFileOpen", "&Open", &frmMain::mnuFileOpen_Click, control(Qt::Key_O)},
      {DocumentItem, "mnuFileClose", "&Close", &frmMain::mnuFileClose_Click},
      {Separator, "mnuFileBar1"},
      {DocumentItem, "mnuFileSave", "&Save", &frmMain::mnuFileSave_Click, control(Qt::Key_S)},
      {DocumentItem, "mnuFileSaveAs", "Save &As...", &frmMain::mnuFileSaveAs_Click},
      {Separator, "mnuFileBar2"},
      {Item, "mnuFileReport", "&Report ", &frmMain::mnuFileReport_Click},
      {Item, "mnuFilePrint", "&Print ...", &frmMain::mnuFilePrint_Click},
      {Separator, "mnuFileBar3"},
      {Item, "menuFileDefault", "Load &Default Table", &frmMain::menuFileDefault_Click},
      {Item, "mnuFileProperties", "Table Propert&ies", &frmMain::mnuFileProperties_Click},
      {HiddenSeparator, "mnuRecentFile0"},
      {Hidden, "mnuRecentFile1"},
      {Hidden, "mnuRecentFile2"},
      {Hidden, "mnuRecentFile3"},
      {Hidden, "mnuRecentFile4"},
      {Hidden, "mnuRecentFile5"},
      {Separator, "mnuFileBar6"},
      {Item, "mnuFileExit", "E&xit", &frmMain::mnuFileExit_Click},

      {Menu, "mnuEdit", "&Edit", &frmMain::EnableDocumentItems},
      {DocumentItem, "mnuEditCut", "Cu&t", &frmMain::mnuEditCut_Click, control(Qt::Key_X)},
      {DocumentItem, "mnuEditCopy", "&Copy", &frmMain::mnuEditCopy_Click, control(Qt::Key_C)},
      {DocumentItem, "mnuEditPaste", "&Paste", &frmMain::mnuEditPaste_Click, control(Qt::Key_V)},
      {Separator, "mnuEditBar2"},
      {DocumentItem, "menuEditNewChanplan", "&New Signal Standard", &frmMain::menuEditNewChanplan_Click,
       control(Qt::Key_W)},

      {Menu, "mnuView", "&View", &frmMain::mnuView_DropDown},
      {Checked, "mnuOptionToolbar", "&Toolbar", &frmMain::mnuOptionToolbar_Click},
      {Checked, "mnuOptionStatusBar", "Status &Bar", &frmMain::mnuOptionStatusBar_Click},
      {Unchecked, "mnuViewWarnings", "&Warnings", &frmMain::mnuViewWarnings_Click},

      {Menu, "menuOptions", "&Options", &frmMain::menuOptions_DropDown},
      {SubMenu, "menuOptionsComPort", "COM Port"},
      {Unchecked, "menuOptionsCom1", "COM 1"},
      {Unchecked, "menuOptionsCom2", "COM 2"},
      {Unchecked, "menuOptionsCom3", "COM 3"},
      {Unchecked, "menuOptionsCom4", "COM 4 "},
      {Unchecked, "menuOptionsCom5", "COM 5"},
      {Unchecked, "menuOptionsCom6", "COM 6"},
      {EndOfSubMenu, ""},
      {Separator, "menuOptionsSep"},
      {SubMenu, "menuOptionsBaudRate", "Baud Rate"},
      {Unchecked, "menuOptionsBaud0", "9600 bps"},
      {Unchecked, "menuOptionsBaud1", "19200 bps"},
      {Unchecked, "menuOptionsBaud2", "38400 bps"},
      {Unchecked, "menuOptionsBaud3", "57600 bps"},
      {Unchecked, "menuOptionsBaud4", "115200 bps"},
      {EndOfSubMenu, ""},

      {Menu, "mnuTools", "&Tools", &frmMain::EnableDocumentItems},
      {DocumentItem, "mnuToolsUpload", "&Upload Signal Standard Definitions", &frmMain::mnuToolsUpload_Click},
      {Item, "mnuToolsQuery", "&Download Signal Standard Definitions", &frmMain::mnuToolsQuery_Click},

      {Menu, "mnuWindow", "&Window", &frmMain::mnuWindow_DropDown},
      {Item, "mnuWindowNewWindow", "&New Window", &frmMain::mnuWindowNewWindow_Click},
      {Separator, "mnuWindowBar1"},
      {Item, "mnuWindowCascade", "&Cascade", &frmMain::mnuWindowCascade_Click},
      {Item, "mnuWindowTileHorizontal", "Tile &Horizontal", &frmMain::mnuWindowTileHorizontal_Click},
      {Item, "mnuWindowTileVertical", "Tile &Vertical", &frmMain::mnuWindowTileVertical_Click},
      {Item, "mnuWindowArrangeIcons", "&Arrange Icons", &frmMain::mnuWindowArrangeIcons_Click},

      {Menu, "mnuHelp", "&Help"},
      {Item, "mnuHelpContents", "&Contents", &frmMain::mnuHelpContents_Click},
      {Item, "mnuHelpSearch", "&Search For Help On...", &frmMain::mnuHelpSearch_Click},
      {Separator, "mnuHelpBar1"},
      {Item, "mnuHelpAbout", "&About...", &frmMain::mnuHelpAbout_Click},
  };

  QMenu* menu = nullptr;
  QMenu* open = nullptr;  // the menu or sub-menu that entries go into
  for (const Entry& entry : entries) {
    if (entry.EntryKind == EndOfSubMenu) {
      open = menu;
    } else if (entry.EntryKind == Menu || entry.EntryKind == SubMenu) {
      open = entry.EntryKind == Menu ? menuBar()->addMenu(entry.Caption) : menu->addMenu(entry.Caption);
      if (entry.EntryKind == Menu) menu = open;
      open->setObjectName(entry.Name);
      if (entry.Run != nullptr) connect(open, &QMenu::aboutToShow, this, entry.Run);
    } else {
      auto* action = new QAction(entry.Caption, this);
      action->setObjectName(entry.Name);
      action->setSeparator(entry.EntryKind == Separator || entry.EntryKind == HiddenSeparator);
      action->setVisible(entry.EntryKind != Hidden && entry.EntryKind != HiddenSeparator);
      action->setCheckable(entry.EntryKind == Checked || entry.EntryKind == Unchecked);
      action->setChecked(entry.EntryKind == Checked);
      if (entry.EntryKind == DocumentItem) documentItems += action;
      if (entry.Key != 0) action->setShortcut(QKeySequence(entry.Key));
      if (entry.Run != nullptr) connect(action, &QAction::triggered, this, entry.Run);
      open->addAction(action);
    }
  }
  ConnectArray("mnuRecentFile", 1, LastRecentFile, &frmMain::mnuRecentFile_Click);
  ConnectArray("menuOptionsCom", 1, LastPort, &frmMain::menuOptionsCom_Click);
  ConnectArray("menuOptionsBaud", 0, LastBaudRate, &frmMain::menuOptionsBaud_Click);
  MakeOneChoice("menuOptionsCom", 1, LastPort);
  MakeOneChoice("menuOptionsBaud", 0, LastBaudRate);
}

void frmMain::ConnectArray(const char* name, int first, int last, void (frmMain::*click)(int index)) {
  for (int index = first; index <= last; ++index)
    connect(Action(name + QString::number(index)), &QAction::triggered, this,
            [this, index, click] { (this->*click)(index); });
}

// One of the items of a menu array is chosen.
void frmMain::MakeOneChoice(const char* name, int first, int last) {
  auto* choice = new QActionGroup(this);
  for (int index = first; index <= last; ++index) choice->addAction(Action(name + QString::number(index)));
}

QAction* frmMain::Action(const QString& name) const { return findChild<QAction*>(name, Qt::FindDirectChildrenOnly); }

void frmMain::BuildToolBar() {
  ToolBar->setObjectName("ToolBar");
  ToolBar->setMovable(false);
  ToolBar->setIconSize(QSize(IconSize, IconSize));
  for (const Button& button : Buttons) {
    QAction* action = ToolBar->addAction(DrawnIcon(button.Key), button.ToolTip);
    action->setObjectName(QString("ToolBar") + button.Key);
    connect(action, &QAction::triggered, this, [this, &button] { ToolBar_ButtonClick(button.Key); });
  }
  addToolBar(ToolBar);
}

void frmMain::ToolBar_ButtonClick(const QString& key) {
  for (const Button& button : Buttons)
    if (key == button.Key) emit Action(button.MenuItem)->triggered();
}

void frmMain::EnableDocumentItems() {
  for (QAction* item : documentItems) item->setEnabled(app.Registry.AnyDocumentOpen());
}

void frmMain::mnuView_DropDown() {
  Action("mnuOptionToolbar")->setChecked(!ToolBar->isHidden());
  Action("mnuOptionStatusBar")->setChecked(!sbStatusBar->isHidden());
  Action("mnuViewWarnings")->setChecked(!WarningHolder->isHidden());
}

// Why a port cannot be opened is told where there is none to choose: of ports that exist before others.
void frmMain::LookForPorts() {
  std::optional<PortError> problem;
  QString place;
  bool found = false;
  for (int port = 1; port <= LastPort; ++port) {
    const bool opens = app.Link.ProbeCommPort(port);
    found = found || opens;
    Action("menuOptionsCom" + QString::number(port))->setVisible(opens);
    const std::optional<PortError> failure = app.Link.PortFailure();
    if (opens || !failure || (problem && (!problem->DeviceIsMissing || failure->DeviceIsMissing))) continue;
    problem = failure;
    place = QString("COM %1: ").arg(port);
  }
  delete portProblem;
  portProblem = nullptr;
  if (found || !problem) return;
  const QString text = place + TextOf(problem->what());
  portProblem = menuBar()->findChild<QMenu*>("menuOptionsComPort")->addAction(QString(text).replace('&', "&&"));
  portProblem->setEnabled(false);
}

// A port that a transfer uses is not to be opened by anyone else, nor are the others by its link.
void frmMain::menuOptions_DropDown() {
  if (!transfer) LookForPorts();
  const int chosen = ChosenPort();
  for (int port = 1; port <= LastPort; ++port)
    Action("menuOptionsCom" + QString::number(port))->setChecked(chosen == port);
  for (int baud = 0; baud <= LastBaudRate; ++baud) {
    QAction* item = Action("menuOptionsBaud" + QString::number(baud));
    item->setChecked(item->text() == QString::fromStdString(app.Link.BaudRate) + " bps");
  }
}

void frmMain::mnuWindow_DropDown() {
  qDeleteAll(windowList);
  windowList.clear();
  auto* menu = menuBar()->findChild<QMenu*>("mnuWindow");
  menu->setToolTipsVisible(true);
  windowList += menu->addSeparator();
  for (const QPointer<DocumentWindow>& document : app.Registry.Documents) {
    if (document == nullptr || document->State().Released) continue;
    const qsizetype number = windowList.size();
    const QString mnemonic = number <= 9 ? "&" : "";  // a second digit would stand for another document
    // The end of a path tells documents apart.
    const QString caption = menu->fontMetrics().elidedText(document->windowTitle(), Qt::ElideLeft, width() / 2);
    QAction* item = menu->addAction(mnemonic + QString::number(number) + " " + QString(caption).replace('&', "&&"),
                                    document, [this, shown = document.data()] { ShowDocument(*shown); });
    if (caption != document->windowTitle()) item->setToolTip(Qt::convertFromPlainText(document->windowTitle()));
    item->setCheckable(true);
    item->setChecked(document == ActiveDocument());
    windowList += item;
  }
}

void frmMain::ShowRecentFiles(const QStringList& files) {
  Action("mnuRecentFile0")->setVisible(!files.isEmpty());
  for (int index = 1; index <= qMin(LastRecentFile, static_cast<int>(files.size())); ++index) {
    QAction* item = Action("mnuRecentFile" + QString::number(index));
    // A menu as wide as the screen hides what it is about; a TAB would stand before a key's name.
    const QString shown = fontMetrics().elidedText(QString(files[index - 1]).replace('\t', ' '), Qt::ElideMiddle,
                                                   fontMetrics().averageCharWidth() * MostRecentFileLetters);
    item->setText(QString(shown).replace('&', "&&"));
    item->setVisible(true);
  }
}

}  // namespace chanplan
