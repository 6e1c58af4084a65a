// Many transfers in a row with random tables and random faults: the editor never ends up with a
// wrong table, a stuck port or a transfer that does not end, and neither does the unit.
#include "core/table_difference.h"
#include "core/validation.h"
#include "tests/app/transfer_fixture.h"
#include "tests/core/random_table.h"
#include "unit/wire_encoding.h"

using namespace chanplan;
using namespace chanplan::testing;

namespace {

constexpr int TransfersPerSeed = 50;

// Half of the units are sound.
constexpr const char* Faults[] = {"none",           "none",
                                  "none",           "none",
                                  "none",           "none",
                                  "none",           "silent",
                                  "garbage",        "silent-after-identify",
                                  "truncate-reply", "hang-up",
                                  "wrong-count",    "drop-every-nth-byte"};

class TransferSoak : public TransferTest, public ::testing::WithParamInterface<unsigned> {
 protected:
  TransferSoak() {
    answers.Unexpected = [](QWidget& modal) {
      if (auto* box = qobject_cast<QMessageBox*>(&modal))
        QTest::mouseClick(static_cast<QWidget*>(box->button(QMessageBox::Ok)), Qt::LeftButton);
      else
        for (const char* button : {"optnReplace", "bttnUpload"}) modal.findChild<QAbstractButton*>(button)->click();
    };
  }

  SignalStandardTable Table() {
    SignalStandardTable table = RandomTable(random, {.FitsTheWire = true, .NamedRows = true, .MaxRows = 40});
    AlignSubbands(table);
    return table;
  }
  static SignalStandardTable AsTheUnitHoldsIt(const SignalStandardTable& table) {
    SignalStandardTable held;
    const std::string bytes = EncodeTable(table, 1);
    for (std::size_t start = WireHeaderSize; start < bytes.size(); start += WireRecordSize)
      held.Append(DecodeRecord(std::string_view(bytes).substr(start, WireRecordSize)));
    return held;
  }
  // As the unit sends it: sub-bands take their standard's name.
  static SignalStandardTable AsTheEditorReadsIt(SignalStandardTable table) {
    table = AsTheUnitHoldsIt(table);
    int expected = 0;
    for (int index = 0; index < table.Count; ++index) {
      if (table.Row(index).Subbands > 0)
        expected = table.Row(index).Subbands;
      else if (expected-- > 0)
        table.Row(index).Name = table.Row(index - 1).Name;
    }
    return table;
  }

  void StartUnitWith(const SignalStandardTable& table, const std::string& fault) {
    unit.reset();
    std::filesystem::remove(unitFolder / "held.sig");
    ASSERT_FALSE(SaveSigFile(unitFolder / "sent.sig", table));
    unit.emplace(std::vector<std::string>{"--baud", "0", "--fault", fault, "--table", unitFolder / "sent.sig", "--save",
                                          unitFolder / "held.sig"},
                 unitFolder / "link");
  }

  void UploadOnce(const std::string& fault) {
    StartUnitWith(Table(), fault);
    ASSERT_FALSE(SaveSigFile(folder / "mine.sig", Table()));
    DocumentWindow& document = Frame().CreateDocument(true);
    ASSERT_TRUE(document.LoadSigStandards(InFolder("mine.sig")));
    Frame().ShowDocument(document);
    const SignalStandardTable before = document.Table();
    Press("Upload");
    EXPECT_EQ(RowDifferences(before, document.Table()), std::vector<std::string>());
    unit->Stop();
    const bool arrives = fault == "none" || fault == "garbage" || fault == "truncate-reply" || fault == "wrong-count";
    if (fault == "drop-every-nth-byte") return;  // the line has no checksum: what the unit makes of it is its own
    ASSERT_EQ(UnitGotATable(), arrives);
    if (arrives) {
      ++moved;
      const SignalStandardTable held = LoadSigFile(unitFolder / "held.sig").Table;
      EXPECT_EQ(RowDifferences(AsTheUnitHoldsIt(before), held), std::vector<std::string>());
    }
  }

  void DownloadOnce(const std::string& fault) {
    const SignalStandardTable table = Table();
    StartUnitWith(table, fault);
    const QPointer<DocumentWindow> former = Frame().ActiveDocument();
    Press("Query");
    if (fault == "garbage") return;  // noise may look like a table
    if (Frame().ActiveDocument() == former) {
      EXPECT_TRUE(fault == "silent" || fault == "drop-every-nth-byte") << "no document was made";
      return;
    }
    const SignalStandardTable received = Frame().ActiveDocument()->Table();
    if (fault == "none") {
      ++moved;
      EXPECT_EQ(RowDifferences(AsTheEditorReadsIt(table), received), std::vector<std::string>());
    } else if (fault != "drop-every-nth-byte") {
      EXPECT_EQ(received.Count, 0);
    }
  }

  std::mt19937 random{GetParam()};
  int moved = 0;
};

}  // namespace

TEST_P(TransferSoak, EndsWithTheRightTablesAndAFreePort) {
  StartUnitWith({}, "none");
  Start();
  for (int transfer = 0; transfer < TransfersPerSeed && !HasFailure(); ++transfer) {
    const std::string fault = Faults[Between(random, 0, std::ssize(Faults) - 1)];
    SCOPED_TRACE("transfer " + std::to_string(transfer) + ", fault " + fault);
    if (transfer % 2 == 0)
      UploadOnce(fault);
    else
      DownloadOnce(fault);
    ExpectPortFree();
    EXPECT_FALSE(Frame().Transferring());
    EXPECT_TRUE(Progress() == nullptr || Progress()->isHidden());
    for (std::size_t index = 0; index < app->Registry.Documents.size(); ++index) {
      app->Registry.DocumentStates[index].Changed = false;
      if (app->Registry.Documents[index] != nullptr) app->Registry.Documents[index]->close();
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
  EXPECT_GT(moved, TransfersPerSeed / 4) << "sound units are met often enough";
}

INSTANTIATE_TEST_SUITE_P(Seeds, TransferSoak, ::testing::Range(1u, 5u));
