// A user who does anything at all, in any order: what is seen and what is stored stay together.
#include <QComboBox>
#include <QListWidget>
#include <QTableWidget>
#include <iterator>
#include <random>

#include "tests/app/app_fixture.h"

using namespace chanplan;
using namespace chanplan::testing;

namespace {

constexpr int StepCount = 600;
constexpr int MostDocuments = 6;

class RandomUser : public AppTest, public ::testing::WithParamInterface<unsigned> {
 protected:
  RandomUser() : random(GetParam()) {
    answers.Unexpected = [this](QWidget& dialog) { AnswerAnything(dialog); };
  }

  int Pick(int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); }
  template <typename Values>
  auto OneOf(const Values& values) {
    return values[Pick(static_cast<int>(std::size(values)))];
  }

  // A dialog that is still there afterwards is cancelled.
  void AnswerAnything(QWidget& dialog) {
    QLineEdit* name = dialog.findChild<QLineEdit*>("fileNameEdit");
    if (const QMessageBox* box = qobject_cast<QMessageBox*>(&dialog)) {
      QTest::mouseClick(OneOf(box->buttons()), Qt::LeftButton);
    } else if (name != nullptr && Pick(2) == 0) {
      static const char* const names[] = {"a.sig", "b.sig", "garbage.sig"};
      name->setText(InFolder(OneOf(names)));
      QTest::keyClick(name, Qt::Key_Return);
    }
  }

  void Act() {
    const struct {
      int Share;  // in percent
      void (RandomUser::*Do)();
    } actions[] = {{15, &RandomUser::RunACommand},    {30, &RandomUser::PressAKey},
                   {25, &RandomUser::TypeACharacter}, {20, &RandomUser::ClickACell},
                   {5, &RandomUser::ClickAWarning},   {5, &RandomUser::ActivateADocument}};
    int chosen = Pick(100);
    for (const auto& action : actions)
      if ((chosen -= action.Share) < 0) return (this->*action.Do)();
  }

  // What the user may do.

  void RunACommand() {
    static const char* const commands[] = {
        "mnuFileNew",      "mnuFileOpen",         "mnuFileClose",     "mnuFileSave",     "mnuFileSaveAs",
        "menuFileDefault", "mnuFileProperties",   "mnuRecentFile1",   "mnuEditCut",      "mnuEditCopy",
        "mnuEditPaste",    "menuEditNewChanplan", "mnuWindowCascade", "mnuViewWarnings", "mnuWindowTileHorizontal",
        "mnuHelpAbout",    "mnuToolsUpload",      "mnuToolsQuery",    "mnuFilePrint"};
    if (QAction& item = Item(OneOf(commands)); item.isEnabled() && item.isVisible()) item.trigger();
  }
  void PressAKey() {
    static constexpr Qt::Key keys[] = {Qt::Key_Up,     Qt::Key_Down,   Qt::Key_Left, Qt::Key_Right,
                                       Qt::Key_Return, Qt::Key_Escape, Qt::Key_Tab,  Qt::Key_F2,
                                       Qt::Key_F6,     Qt::Key_Delete, Qt::Key_End,  Qt::Key_Backspace};
    if (Pick(6) == 0) return Key(OneOf(std::array{Qt::Key_Z, Qt::Key_Z, Qt::Key_Y}), Qt::ControlModifier);
    Key(OneOf(keys), OneOf(std::array{Qt::NoModifier, Qt::NoModifier, Qt::NoModifier, Qt::ShiftModifier}));
  }
  void TypeACharacter() {
    if (QWidget* focus = QApplication::focusWidget()) QTest::keyClick(focus, OneOf(std::string("0123456789.AB -")));
  }
  void ClickACell() {
    static const char* const names[] = {"GridList", "GridDetails", "GridBands"};
    if (Frame().ActiveDocument() == nullptr) return;
    QTableWidget* grid = Frame().ActiveDocument()->findChild<QTableWidget*>(OneOf(names));
    if (grid->rowCount() == 0 || !grid->isVisible()) return;
    const QModelIndex cell = grid->model()->index(Pick(grid->rowCount()), Pick(grid->columnCount()));
    const QPoint place = grid->visualRect(cell).center();
    if (!grid->viewport()->rect().contains(place)) return;
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, Pick(5) == 0 ? Qt::ShiftModifier : Qt::NoModifier, place);
    if (Pick(3) == 0) QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, place);
  }
  void ClickAWarning() {
    QListWidget& list = Get<QListWidget>("lstWarnings");
    if (list.count() > 0) list.setCurrentRow(Pick(list.count()));
  }
  void ActivateADocument() {
    const QList<DocumentWindow*> open = OpenDocuments();
    if (!open.isEmpty()) Frame().ShowDocument(*OneOf(open));
    if (open.size() > MostDocuments) open[0]->close();
  }

  QList<DocumentWindow*> OpenDocuments() {
    QList<DocumentWindow*> open;
    for (const auto& document : app->Registry.Documents)
      if (document != nullptr && !document->State().Released) open += document;
    return open;
  }

  // What must hold whatever the user did.

  void ExpectOneEditorAtMost() {
    int editors = 0;
    for (const DocumentWindow* document : OpenDocuments())
      for (const char* name : {"txtEntry", "cmboSelected", "cmboModType"})
        if (document->findChild<QWidget*>(name)->isVisible()) {
          ++editors;
          EXPECT_EQ(document, Frame().ActiveDocument());
        }
    EXPECT_LE(editors, 1);
  }
  void ExpectTheActiveDocumentsWarnings() {
    const QListWidget& list = Get<QListWidget>("lstWarnings");
    QStringList lines;
    for (int row = 0; row < list.count(); ++row) lines += list.item(row)->text();
    const DocumentWindow* document = Frame().ActiveDocument();
    EXPECT_EQ(lines.join("\r\n"), document != nullptr ? document->WarningsText() : QString());
  }
  // Also stores what is being edited.
  void ExpectTheListOfTheTable() {
    DocumentWindow* document = Frame().ActiveDocument();
    if (document == nullptr) return;
    document->CommitEdit();
    const SignalStandardTable& table = document->Table();
    ASSERT_LE(table.Count, MaxRecords);
    const QTableWidget* list = document->findChild<QTableWidget*>("GridList");
    std::vector<int> indices;
    for (int row = 0; row < list->rowCount(); ++row) indices.push_back(list->item(row, 2)->text().toInt());
    EXPECT_EQ(indices, StandardIndices(table));
    if (list->rowCount() > 0) {
      const QTableWidget* details = document->findChild<QTableWidget*>("GridDetails");
      EXPECT_EQ(details->item(0, 1)->text(), list->item(list->currentRow(), 1)->text());
    }
  }

  std::minstd_rand random;
};

}  // namespace

TEST_P(RandomUser, NeverTearsThingsApart) {
  WriteFile(folder / "garbage.sig", "header\r\ngarbage\r\n");
  Table("Matrivim.dgc", {"Factory", "Default"});
  Start({Table("a.sig", {"A", "B", "C"}), Table("b.sig", {"A", "A"})});

  for (int step = 0; step < StepCount && !HasFailure(); ++step) {
    SCOPED_TRACE("step " + std::to_string(step));
    if (!Frame().isActiveWindow()) Activate();  // no window manager does it after a dialog
    Act();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
    ExpectOneEditorAtMost();
    ExpectTheActiveDocumentsWarnings();
    if (step % 10 == 0) ExpectTheListOfTheTable();
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomUser, ::testing::Range(1U, 7U));
