#include "app/help_viewer.h"

#include <QCryptographicHash>
#include <QFile>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QResource>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextTable>
#include <QVBoxLayout>
#include <algorithm>

#include "app/help_digest.h"

namespace chanplan {
namespace {

constexpr char Root[] = "/chanplan-help";
constexpr char Start[] = "qrc:/chanplan-help/user-guide.md";
constexpr int ChapterLevel = 2;  // below the title

// Pictures no wider than a text's lines.
class Guide : public QTextBrowser {
 public:
  using QTextBrowser::QTextBrowser;

  QVariant loadResource(int type, const QUrl& name) override {
    constexpr int widest = 560;
    const QVariant resource = QTextBrowser::loadResource(type, name);
    if (type != QTextDocument::ImageResource) return resource;
    QImage image = QImage::fromData(resource.toByteArray());
    const int width = std::min(widest, image.width());
    image = image.scaledToWidth(static_cast<int>(width * devicePixelRatioF()), Qt::SmoothTransformation);
    image.setDevicePixelRatio(devicePixelRatioF());
    return image;
  }
};

void GiveTablesRoom(QTextDocument& document) {
  for (QTextFrame* frame : document.rootFrame()->childFrames()) {
    auto* table = qobject_cast<QTextTable*>(frame);
    if (table == nullptr) continue;
    QTextTableFormat format = table->format();
    format.setCellPadding(4);
    format.setBorderCollapse(true);
    table->setFormat(format);
  }
}

}  // namespace

HelpResource::HelpResource(const QString& path, QString& failure) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly))
    failure = path + ": " + file.errorString();
  else if (QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256).toHex() != HelpDigest ||
           !QResource::registerResource(path, Root))
    failure = path + " is no help file of this program";
  else
    opened = path;
}

HelpResource::~HelpResource() {
  if (!opened.isEmpty()) QResource::unregisterResource(opened, Root);
}

HelpViewer::HelpViewer(QWidget* owner, std::unique_ptr<HelpResource> file)
    : QWidget(owner, Qt::Window),
      resource(std::move(file)),
      sought(new QLineEdit(this)),
      outcome(new QLabel(this)),
      chapters(new QListWidget(this)),
      guide(new Guide(this)) {
  setObjectName("frmHelp");
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowTitle("Chanplan Editor Help");
  guide->setObjectName("txtHelpGuide");
  guide->setAccessibleName("User guide");
  guide->setOpenExternalLinks(true);
  chapters->setObjectName("lstHelpChapters");
  chapters->setAccessibleName("Chapters");
  sought->setObjectName("txtHelpSearch");
  sought->setPlaceholderText("Search for");
  sought->setAccessibleName("Search for");
  sought->setClearButtonEnabled(true);
  outcome->setObjectName("lblHelpOutcome");

  auto* side = new QVBoxLayout;
  side->addWidget(sought);
  side->addWidget(outcome);
  side->addWidget(chapters);
  auto* row = new QHBoxLayout(this);
  row->addLayout(side, 1);
  row->addWidget(guide, 3);

  connect(chapters, &QListWidget::currentRowChanged, this, &HelpViewer::GoToChapter);
  connect(sought, &QLineEdit::returnPressed, this, &HelpViewer::FindNext);
  connect(sought, &QLineEdit::textEdited, outcome, &QLabel::clear);
  guide->setSource(QUrl(Start), QTextDocument::MarkdownResource);
  GiveTablesRoom(*guide->document());
  FillChapters();
  const QSize wanted(fontMetrics().averageCharWidth() * 150, fontMetrics().height() * 38);
  resize(wanted.boundedTo(screen()->availableSize() * 9 / 10));
}

void HelpViewer::FillChapters() {
  for (QTextBlock block = guide->document()->begin(); block.isValid(); block = block.next()) {
    if (block.blockFormat().headingLevel() != ChapterLevel) continue;
    auto* item = new QListWidgetItem(block.text(), chapters);
    item->setData(Qt::UserRole, block.position());
  }
}

void HelpViewer::GoToChapter(int chapter) {
  if (chapter < 0) return;
  QTextCursor cursor(guide->document());
  cursor.setPosition(chapters->item(chapter)->data(Qt::UserRole).toInt());
  // From the end upwards, a place comes to stand at the top.
  guide->moveCursor(QTextCursor::End);
  guide->setTextCursor(cursor);
  QScrollBar& bar = *guide->verticalScrollBar();
  bar.setValue(bar.value() + guide->cursorRect().top());
}

void HelpViewer::FindNext() {
  if (sought->text().isEmpty()) return;
  if (!guide->find(sought->text())) {
    const QTextCursor former = guide->textCursor();
    guide->moveCursor(QTextCursor::Start);
    if (!guide->find(sought->text())) {
      guide->setTextCursor(former);
      return outcome->setText("Not found");
    }
  }
  outcome->clear();
}

void HelpViewer::ShowContents() {
  chapters->setCurrentRow(-1);
  guide->moveCursor(QTextCursor::Start);
  guide->verticalScrollBar()->setValue(0);  // above the first line's margin
  guide->setFocus();
}

void HelpViewer::ShowSearch() {
  sought->selectAll();
  sought->setFocus();
}

void HelpViewer::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape)
    close();
  else if (event->key() == Qt::Key_F3)
    FindNext();
  else
    QWidget::keyPressEvent(event);
}

}  // namespace chanplan
