// The main frame: set-up, the warnings pane, documents, and closing.
#include "app/frm_main.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMenuBar>
#include <QPainter>
#include <QShortcut>
#include <QStyle>
#include <QVBoxLayout>
#include <QWindow>
#include <algorithm>

#include "app/file_io.h"
#include "app/icons.h"
#include "app/placement.h"
#include "editor/history_commands.h"
#include "editor/messages.h"
#include "editor/twips.h"

namespace chanplan {
namespace {

constexpr int ResizeInterval = 200;    // ms
constexpr int SplitterHeight = 3;      // pixels
constexpr int FirstPaneHeight = 1500;  // twips

// A text that is longer than its place ends in an ellipsis there.
class StatusPanel : public QLabel {
 public:
  QSize minimumSizeHint() const override { return {0, QLabel::minimumSizeHint().height()}; }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    QPainter painter(this);
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, width());
    style()->drawItemText(&painter, rect(), static_cast<int>(alignment()), palette(), isEnabled(), shown,
                          foregroundRole());
  }
};

// A document that is larger than the area is placed with its list, or its title bar, out of sight.
void KeepCornerInSight(QMdiSubWindow& document) { document.move(qMax(document.x(), 0), qMax(document.y(), 0)); }

// On a small screen, or one that enlarges everything, less than a document's least size may be seen
// of it. Its normal size stays.
void MaximiseWhereLittleIsInSight(QMdiSubWindow& document) {
  const QSize seen = (document.geometry() & document.mdiArea()->viewport()->rect()).size();
  const QSize least = document.minimumSize();
  if (seen.width() < least.width() || seen.height() < least.height()) document.showMaximized();
}

// The library's area takes its keys from every window that a document owns: Ctrl+Tab would go on to another
// document behind a message box, which then speaks of one that is not shown.
class DocumentArea : public QMdiArea {
 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    const auto* widget = qobject_cast<const QWidget*>(watched);
    if (widget != nullptr && widget->window() != window()) return false;
    if (widget != nullptr && event->type() == QEvent::ShortcutOverride && EndsTheChoice(*event)) {
      QKeyEvent letGo(QEvent::KeyRelease, Qt::Key_Control, Qt::ControlModifier);
      QMdiArea::eventFilter(watched, &letGo);
    }
    return QMdiArea::eventFilter(watched, event);
  }

 private:
  // While Ctrl is held after Ctrl+Tab the document is only framed. Another key is about that one, as letting go
  // of Ctrl would be; in a box that the key brings up, nobody would see Ctrl go.
  static bool EndsTheChoice(const QEvent& event) {
    const int key = static_cast<const QKeyEvent&>(event).key();
    return key != Qt::Key_Control && key != Qt::Key_Shift && key != Qt::Key_Tab && key != Qt::Key_Backtab;
  }
};

}  // namespace

frmMain::frmMain(AppState& application)
    : app(application),
      drops(*this, app.Recent),
      documents(new DocumentArea),
      ToolBar(new QToolBar("Toolbar")),
      sbStatusBar(statusBar()),
      sbStatusBarPanel1(new StatusPanel),
      sbStatusBarPanel2(new QLabel),
      bttnCompare(new QToolButton),
      WarningHolder(new QWidget),
      lblSplitter(new SplitterBar(WarningHolder)),
      lstWarnings(new WarningsPane(WarningHolder)),
      ResizeTimer(new QTimer(this)) {
  setObjectName("frmMain");
  setWindowTitle("Handheld Chanplan Editor");
  setWindowIcon(DrawnIcon("Program"));
  setContextMenuPolicy(Qt::NoContextMenu);
  BuildMenus();
  BuildToolBar();
  BuildStatusBar();
  BuildClientArea();
  connect(&app.Recent, &RecentFileList::Loaded, this, &frmMain::ShowRecentFiles);
  RestorePlacement(*this, app.Settings);
  LookForPorts();
}

// Documents talk to the frame until their very end, closed ones too.
frmMain::~frmMain() { qDeleteAll(documents->findChildren<DocumentWindow*>()); }

void frmMain::BuildStatusBar() {
  sbStatusBar->setObjectName("sbStatusBar");
  sbStatusBarPanel1->setObjectName("sbStatusBarPanel1");
  sbStatusBarPanel2->setObjectName("sbStatusBarPanel2");
  for (QLabel* panel : {sbStatusBarPanel1, sbStatusBarPanel2}) panel->setTextFormat(Qt::PlainText);
  sbStatusBar->addWidget(sbStatusBarPanel1, 1);
  bttnCompare->setObjectName("bttnCompare");
  bttnCompare->setText("Compare With");
  bttnCompare->setToolTip("Compare the unit's table with another one");
  bttnCompare->setAutoRaise(true);
  bttnCompare->setPopupMode(QToolButton::InstantPopup);
  bttnCompare->setMenu(new CompareMenu(
      *this, app.Recent, [this] { return ActiveDocument(); }, bttnCompare));
  bttnCompare->setFixedHeight(sbStatusBarPanel1->sizeHint().height());  // the bar stays as high as it is
  sbStatusBar->addPermanentWidget(bttnCompare);
  sbStatusBar->addPermanentWidget(sbStatusBarPanel2);
  bttnCompare->hide();
}

void frmMain::BuildClientArea() {
  auto* client = new QWidget;
  dropLine = new QRubberBand(QRubberBand::Line, client);
  dropLine->setObjectName("dropLine");
  documents->setObjectName("documents");
  documents->setAccessibleName("Documents");
  documents->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  documents->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  documents->setActivationOrder(QMdiArea::ActivationHistoryOrder);  // closing one goes back to the one before it
  connect(documents, &QMdiArea::subWindowActivated, this, [this](const QMdiSubWindow* activated) {
    // While another program has the screen no document is active, but none is left either.
    if (activated == nullptr) return;
    for (const QPointer<DocumentWindow>& document : app.Registry.Documents)
      if (document != nullptr && document != activated && !document->State().Released) document->CommitEdit();
    DocumentsChanged();
  });

  WarningHolder->setObjectName("WarningHolder");
  WarningHolder->setFixedHeight(TwipsToPixelsY(FirstPaneHeight, *this));
  WarningHolder->installEventFilter(this);
  lblSplitter->setObjectName("lblSplitter");
  lstWarnings->setObjectName("lstWarnings");
  connect(lblSplitter, &SplitterBar::Dragged, this, &frmMain::ShowDropLine);
  connect(lblSplitter, &SplitterBar::Released, dropLine, &QWidget::hide);
  connect(lblSplitter, &SplitterBar::Dropped, this, &frmMain::DropSplitter);
  connect(lblSplitter, &SplitterBar::Nudged, this,
          [this](int pixelsUp) { SetPaneHeight(WarningHolder->height() + pixelsUp); });
  connect(lstWarnings, &WarningsPane::CountChanged, sbStatusBarPanel2, &QLabel::setText);
  connect(lstWarnings, &WarningsPane::EntryClicked, this, [this](const QString& name, int line) {
    DocumentWindow* document = ActiveDocument();
    if (document == nullptr) return;
    document->FindSSEntry(name);
    document->ShowWarning(line, name);
  });
  connect(lstWarnings, &WarningsPane::LineLeft, this, [this] {
    if (DocumentWindow* document = ActiveDocument()) document->setFocus();
  });
  connect(lstWarnings, &WarningsPane::MenuOpens, this,
          [this](QMenu& menu) { AddHistoryItems(menu, ActiveDocument()); });
  AddHistoryKeys(*lstWarnings, [this] { return ActiveDocument(); });
  ResizeTimer->setObjectName("ResizeTimer");
  ResizeTimer->setInterval(ResizeInterval);
  connect(ResizeTimer, &QTimer::timeout, this, [this] {
    ResizeTimer->stop();
    LayOutPane();
  });

  // Focus stays within a document; this key takes it to the warnings and back.
  connect(new QShortcut(Qt::Key_F6, this), &QShortcut::activated, this, [this] {
    DocumentWindow* document = ActiveDocument();
    if (document != nullptr && WarningHolder->isAncestorOf(focusWidget()))
      document->setFocus();
    else if (WarningHolder->isVisible())
      lstWarnings->setFocus();
  });

  connect(new QShortcut(Qt::Key_F8, this), &QShortcut::activated, this, [this] {
    if (DocumentWindow* document = ActiveDocument()) document->ToggleChart();
  });
  // The menu of the document's title bar, as other programs have it.
  connect(new QShortcut(QKeySequence(Qt::ALT | Qt::Key_Minus), this), &QShortcut::activated, this, [this] {
    if (DocumentWindow* document = ActiveDocument()) document->showSystemMenu();
  });
  connect(new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_F), this), &QShortcut::activated, this, [this] {
    if (DocumentWindow* document = ActiveDocument()) document->Find();
  });

  auto* column = new QVBoxLayout(client);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addWidget(documents, 1);
  column->addWidget(WarningHolder);
  setCentralWidget(client);
}

void frmMain::Warnings(const QString& WarningText, qint16 SelIndex) { lstWarnings->Fill(WarningText, SelIndex); }

// A line: what is quoted may have more, which would push everything else out of the frame.
void frmMain::ShowStatus(const QString& text) {
  remarkIsShown = false;
  sbStatusBarPanel1->setText(QString(text).replace('\n', ' ').remove('\r'));
  sbStatusBarPanel1->setToolTip(sbStatusBarPanel1->text());  // the bar may have no room for all of it
}

void frmMain::ShowRemark(const QString& text) {
  ShowStatus(text);
  remarkIsShown = true;
  remarkedDocument = ActiveDocument();
}

void frmMain::WithdrawRemark() {
  if (remarkIsShown) ShowStatus("");
}

QString frmMain::PromptSaveFileName(const QString& proposedName, const QString& fileType) {
  return chanplan::PromptSaveFileName(*this, app.Recent, proposedName, fileType);
}

DocumentWindow* frmMain::ActiveDocument() const { return DocumentWindow::ActiveIn(*documents); }

DocumentWindow& frmMain::CreateDocument(bool newSlotRequested, const QString& name) {
  const bool firstIsInUse = transfer && transfer->Holds(app.Registry.Document(1));
  const int slot = app.Registry.GetFreeDocumentSlot(newSlotRequested || firstIsInUse);
  const auto index = static_cast<std::size_t>(slot) - 1;
  QPointer<DocumentWindow>& registered = app.Registry.Documents[index];
  if (registered == nullptr) {
    std::unique_ptr<DocumentWindow> made = app.MakeDocument(*this, app.Registry.DocumentStates[index], app.Shared);
    registered = made.get();
    AddDocument(std::move(made));
  }
  registered->setWindowTitle(name + QString::number(slot));
  return *registered;
}

void frmMain::NewDocument() { ShowDocument(CreateDocument(true)); }

void frmMain::AddDocument(std::unique_ptr<DocumentWindow> document) {
  // Its menu's key for closing is the frame's key for a new standard.
  for (QAction* action : document->systemMenu()->actions())
    if (action->shortcuts().contains(QKeySequence(Qt::CTRL | Qt::Key_W))) action->setShortcut(Qt::CTRL | Qt::Key_F4);
  AddCompareMenu(*this, app.Recent, *document);
  connect(document.get(), &QObject::destroyed, this, &frmMain::DocumentsChanged);
  connect(document.get(), &DocumentWindow::TableChanged, this, &frmMain::OfferComparison);
  connect(document.get(), &DocumentWindow::TableChanged, this, &frmMain::WithdrawRemark);
  connect(document.get(), &DocumentWindow::ChangedSignChanged, this, &frmMain::ShowTitle);
  connect(document.get(), &QWidget::windowTitleChanged, this, &frmMain::OfferComparison);
  document->setWindowIcon(DrawnIcon("New"));
  document->installEventFilter(this);
  KeepCornerInSight(*documents->addSubWindow(document.release()));
}

// The library would take "[*]" in the file's name for the place of its sign.
void frmMain::ShowTitle() {
  const DocumentWindow* active = ActiveDocument();
  if (windowHandle() == nullptr || active == nullptr) return;
  QString title = windowTitle();
  const bool named = active->isMaximized() && title.endsWith(active->windowTitle() + "]");
  if (named && active->State().Changed) title.insert(title.size() - 1, '*');
  windowHandle()->setTitle(title);
}

void frmMain::changeEvent(QEvent* event) {
  QMainWindow::changeEvent(event);
  // The library shows the title anew with the latter, which it sends whenever a document is maximised.
  if (event->type() == QEvent::WindowTitleChange || event->type() == QEvent::ModifiedChange) ShowTitle();
}

void frmMain::showEvent(QShowEvent* event) {
  QMainWindow::showEvent(event);
  ShowTitle();
  if (event->spontaneous()) return;  // the user is back from another desktop or from an icon
  for (QMdiSubWindow* document : documents->subWindowList()) {
    KeepCornerInSight(*document);
    MaximiseWhereLittleIsInSight(*document);
  }
}

void frmMain::ShowDocument(DocumentWindow& document) {
  const bool opened = document.isHidden();
  if (document.isMinimized())
    document.showNormal();
  else
    document.show();
  if (opened && isVisible()) MaximiseWhereLittleIsInSight(document);
  documents->setActiveSubWindow(&document);
  DocumentsChanged();
}

// Another document may be the active one now, or none. Activating the same one again, as when the
// user comes back from another program, leaves the pane alone.
void frmMain::DocumentsChanged() {
  EnableDocumentItems();
  OfferComparison();
  DocumentWindow* active = ActiveDocument();
  if (active != remarkedDocument) WithdrawRemark();
  const QString text = active != nullptr ? active->WarningsText() : QString();
  if (active == warningsShownOf && text == lstWarnings->Text()) return;
  warningsShownOf = active;
  Warnings(text, -1);
}

void frmMain::OfferComparison() {
  const DocumentWindow* active = ActiveDocument();
  bttnCompare->setVisible(active != nullptr && active->windowTitle().startsWith("Untitled(Query)") &&
                          active->Table().Count > 0);
}

void frmMain::LayOutPane() {
  lblSplitter->setGeometry(-width(), 0, 3 * width(), SplitterHeight);
  lstWarnings->setGeometry(0, SplitterHeight, WarningHolder->width(), WarningHolder->height() - SplitterHeight);
  ResizeTimer->start();
}

void frmMain::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  if (!event->oldSize().isValid() || event->size().height() < event->oldSize().height())
    SetPaneHeight(WarningHolder->height());
  LayOutPane();
}

// Of the documents the active one alone: by itself Tab would go to the one that was opened first, and activate it.
bool frmMain::focusNextPrevChild(bool next) {
  QList<QWidget*> stops = {ActiveDocument(), lblSplitter, lstWarnings, bttnCompare};
  stops.removeIf([](const QWidget* stop) { return stop == nullptr || !stop->isVisible(); });
  if (stops.isEmpty()) return false;
  const auto here =
      std::ranges::find_if(stops, [this](const QWidget* stop) { return stop->isAncestorOf(focusWidget()); });
  const qsizetype steps = next ? 1 : stops.size() - 1;
  stops[(here - stops.begin() + steps) % stops.size()]->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
  return true;
}

bool frmMain::eventFilter(QObject* watched, QEvent* event) {
  if (watched == WarningHolder && event->type() == QEvent::Resize) LayOutPane();
  if (event->type() == QEvent::Close && transfer && transfer->Holds(watched)) {
    transfer->Abort();
    event->ignore();
    return true;
  }
  return QMainWindow::eventFilter(watched, event);
}

void frmMain::DropSplitter(const QPoint& globalPosition) {
  const QPoint onList = lstWarnings->mapFromGlobal(globalPosition);
  if (lstWarnings->rect().contains(onList))
    DropOnWarnings(lblSplitter->objectName(), onList.y());
  else
    DropOnFrame(lblSplitter->objectName(), mapFromGlobal(globalPosition).y() - menuBar()->height());
}

void frmMain::DropOnFrame(const QString& sourceName, int y) {
  if (sourceName != lblSplitter->objectName()) return;
  const int toolBarHeight = ToolBar->isHidden() ? 0 : ToolBar->height();
  SetPaneHeight(toolBarHeight + documents->height() + WarningHolder->height() - y);
}

void frmMain::DropOnWarnings(const QString& sourceName, int y) {
  if (sourceName == lblSplitter->objectName()) SetPaneHeight(WarningHolder->height() - y);
}

// Where the pane's upper edge would come to lie.
void frmMain::ShowDropLine(const QPoint& globalPosition) {
  QWidget& client = *centralWidget();
  const int height = AllowedPaneHeight(client.height() - client.mapFromGlobal(globalPosition).y());
  dropLine->setGeometry(0, client.height() - height, client.width(), SplitterHeight);
  dropLine->show();
}

int frmMain::AllowedPaneHeight(int proposed) const {
  const double highest = frameGeometry().height() / 3.0;
  const int lowest = 2 * sbStatusBar->height();
  return proposed > highest ? qRound(highest) : qMax(proposed, lowest);
}

void frmMain::SetPaneHeight(int proposed) { WarningHolder->setFixedHeight(AllowedPaneHeight(proposed)); }

void frmMain::closeEvent(QCloseEvent* event) {
  if (transfer) {
    transfer->Abort();
    return event->ignore();
  }
  if (QApplication::activeModalWidget() != nullptr) return event->ignore();  // it is to be answered first
  const auto opened = app.Registry.Documents;
  for (const QPointer<DocumentWindow>& document : opened) {
    if (document == nullptr || document->State().Released) continue;
    if (document->State().Changed) documents->setActiveSubWindow(document);
    document->close();
    if (document != nullptr && !document->State().Released) break;
  }
  if (app.Registry.AnyDocumentOpen()) return event->ignore();
  SavePlacement(*this, app.Settings);
  app.Settings.SetNumber(CommPortSetting, app.Link.CommPort);
  app.Settings.SetBaudRate(QString::fromStdString(app.Link.BaudRate));
  if (!app.Settings.Write()) {
    ShowMessage(
        *this,
        "Your settings cannot be written to " + app.Settings.Place() + ". The next start will not know about this one.",
        ApplicationTitle(), QMessageBox::Warning);
  }
  ResizeTimer->stop();
  QMainWindow::closeEvent(event);
  emit Ended();
}

}  // namespace chanplan
