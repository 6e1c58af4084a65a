// The main frame: the program's one top-level window.
#pragma once

#include <QLabel>
#include <QMdiArea>
#include <QPointer>
#include <QRubberBand>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <memory>
#include <optional>

#include "app/access_keys.h"
#include "app/app_state.h"
#include "app/arrange_windows.h"
#include "app/command_frame.h"
#include "app/compare_menu.h"
#include "app/file_drops.h"
#include "app/help_viewer.h"
#include "app/splitter_bar.h"
#include "app/transfer_command.h"
#include "app/warnings_pane.h"

namespace chanplan {

/// Holds the documents, turns commands into calls on the active one, and lists its warnings. It has
/// no table data of its own. Menu items and controls are found by their object names.
class frmMain : public CommandFrame {
  Q_OBJECT

 public:
  explicit frmMain(AppState& application);
  ~frmMain() override;

  void mnuEditCopy_Click() override;
  void mnuEditCut_Click() override;
  void mnuEditPaste_Click() override;
  void Warnings(const QString& WarningText, qint16 SelIndex) override;
  void ShowStatus(const QString& text) override;
  void ShowRemark(const QString& text) override;
  bool ShowsCharts() override { return app.Settings.Number(ShowChartSetting, 0) != 0; }
  void RememberCharts(bool shown) override { app.Settings.SetNumber(ShowChartSetting, shown ? 1 : 0); }
  QString PromptSaveFileName(const QString& proposedName, const QString& fileType) override;
  QString ApplicationTitle() const override { return ApplicationName; }

  DocumentWindow* ActiveDocument() const override;
  DocumentWindow& CreateDocument(bool newSlotRequested, const QString& name = "Untitled ") override;
  void ShowDocument(DocumentWindow& document) override;
  /// A new empty document, shown.
  void NewDocument();

  /// Sets the pane's height as the splitter was dropped at `y`, counted from below the menu bar or
  /// from the list's upper edge. Other sources than the splitter change nothing.
  void DropOnFrame(const QString& sourceName, int y);
  void DropOnWarnings(const QString& sourceName, int y);

  /// Runs the command of the toolbar button `key`.
  void ToolBar_ButtonClick(const QString& key);

  /// Whether a transfer command runs.
  bool Transferring() const { return transfer.has_value(); }

  /// The help file, one of the program's own; empty when the program has none.
  QString HelpFile = "Chanplan.hlp";

 signals:
  /// The frame has closed and its settings are stored: the program is over.
  void Ended();

 protected:
  void showEvent(QShowEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  bool focusNextPrevChild(bool next) override;

 private:
  // Set-up (frm_main.cpp, frm_main_menus.cpp)
  void BuildMenus();
  void BuildToolBar();
  void BuildStatusBar();
  void BuildClientArea();
  QAction* Action(const QString& name) const;
  /// Connects the items `name``first` to `name``last` of a menu array.
  void MakeOneChoice(const char* name, int first, int last);
  void ConnectArray(const char* name, int first, int last, void (frmMain::*click)(int index));

  // The pane
  void LayOutPane();
  int AllowedPaneHeight(int proposed) const;
  void SetPaneHeight(int proposed);
  void ShowDropLine(const QPoint& globalPosition);
  void DropSplitter(const QPoint& globalPosition);

  /// Shows the title with the sign of a maximised document that has unsaved changes.
  void ShowTitle();
  void AddDocument(std::unique_ptr<DocumentWindow> document);
  void DocumentsChanged();
  void WithdrawRemark();
  /// Offers to compare a table that came from a unit and is in no file yet.
  void OfferComparison();

  // What menus show
  void ShowRecentFiles(const QStringList& files);
  void EnableDocumentItems();
  void mnuView_DropDown();
  void menuOptions_DropDown();
  void LookForPorts();
  void mnuWindow_DropDown();

  // Commands (frm_main_commands.cpp)
  void mnuFileNew_Click();
  void mnuFileOpen_Click();
  void mnuFileClose_Click();
  void mnuFileSave_Click();
  void mnuFileSaveAs_Click();
  void mnuFileReport_Click();
  void mnuFilePrint_Click();
  void menuFileDefault_Click();
  void mnuFileProperties_Click();
  void mnuRecentFile_Click(int index);
  void mnuFileExit_Click();
  void menuEditNewChanplan_Click();
  void mnuOptionToolbar_Click();
  void mnuOptionStatusBar_Click();
  void mnuViewWarnings_Click();
  void menuOptionsCom_Click(int index);
  void menuOptionsBaud_Click(int index);
  void mnuToolsUpload_Click();
  void mnuToolsQuery_Click();
  void mnuWindowNewWindow_Click();
  void mnuWindowCascade_Click();
  void mnuWindowTileHorizontal_Click();
  void mnuWindowTileVertical_Click();
  void mnuWindowArrangeIcons_Click();
  void mnuHelpContents_Click();
  void mnuHelpSearch_Click();
  void mnuHelpAbout_Click();
  /// The help viewer on the screen; null, once it was said why, when there is none.
  HelpViewer* ShowHelp();

  /// What the Options menu shows and sets: a command that runs keeps to the port it began with.
  std::int16_t& ChosenPort() { return transfer ? transfer->PortForTheNext : app.Link.CommPort; }

  AppState& app;
  FileDrops drops;
  AccessKeys accessKeys;
  QMdiArea* documents;
  QToolBar* ToolBar;
  QStatusBar* sbStatusBar;
  QLabel* sbStatusBarPanel1;
  QLabel* sbStatusBarPanel2;
  QToolButton* bttnCompare;
  QWidget* WarningHolder;
  SplitterBar* lblSplitter;
  QRubberBand* dropLine = nullptr;  // shows where the splitter would drop
  WarningsPane* lstWarnings;
  QTimer* ResizeTimer;
  QList<QAction*> documentItems;   // enabled while a document is open
  QList<QAction*> windowList;      // the Window menu's list of documents
  QAction* portProblem = nullptr;  // says why the COM Port menu is empty, while it is
  QPointer<HelpViewer> help;
  QPointer<QObject> warningsShownOf;          // a document
  bool remarkIsShown = false;                 // in the status bar ...
  const QObject* remarkedDocument = nullptr;  // ... while this is the active one; it may be gone
  std::optional<TransferCommand> transfer;    // the one that runs
};

}  // namespace chanplan
