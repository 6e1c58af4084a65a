// From loading to the question whether to save.
#include <QCloseEvent>
#include <QLocale>

#include "tests/editor/document_fixture.h"

namespace chanplan::testing {
namespace {

constexpr const char* Header =
    "State\tSubbands\tName\tUplink Start Freq.\tDownlink Stop Freq.\tStart Channel\tStop Channel\tBandwidth\tSpacing\t"
    "Step\r\n";

class DocumentLifecycle : public DocumentTest {
 protected:
  ~DocumentLifecycle() override { QLocale::setDefault(formerLocale); }

  static Message Question(const QString& caption) {
    return {"The Application", "The contents in [" + caption + "] has changed.\nDo you want to save the changes?",
            QMessageBox::Warning, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel};
  }

  // Whether the window is gone, once Qt has come to delete it.
  static bool Gone(const Document& document) {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return document.Window.isNull();
  }

  QLocale formerLocale;
};

// --- Loading

struct UnreadableCase {
  const char* Name;
  std::string Bytes;
};

TEST_F(DocumentLifecycle, UnreadableFileLeavesAnEmptyTable) {
  const std::vector<UnreadableCase> cases = {
      {"empty.sig", ""},
      {"blank-line.sig", std::string(Header) + "\r\n"},
      {"nine-fields.sig", std::string(Header) + "2\t0\tA\t1\t2\t3\t4\t5\t6\r\n"},
      {"out-of-range.sig", std::string(Header) + "2\t0\tA\t1\t2\t2147483648\t4\t5\t6\t7\r\n"},
  };
  for (const UnreadableCase& given : cases) {
    const Document document = Open(Group("A", 1));
    document.Click(document.Bands, 0, UplinkColumn);
    WriteFile(folder / given.Name, given.Bytes);
    answers.Seen.clear();
    answers.Give(QMessageBox::Ok);
    EXPECT_FALSE(document.Window->LoadSigStandards(PathText(given.Name)));
    EXPECT_EQ(answers.Seen, (std::vector{Message{"The Application", "Error loading " + PathText(given.Name),
                                                 QMessageBox::Critical, QMessageBox::Ok}}));
    EXPECT_EQ(TableIn(document).Count, 0);
    EXPECT_EQ(document.List->rowCount(), 0);
    EXPECT_EQ(document.Detail(NameRow), "");
    EXPECT_EQ(document.Bands->rowCount(), 0);
    EXPECT_EQ(document.Window->windowTitle(), PathText("table.sig"));
  }
}

TEST_F(DocumentLifecycle, MissingFileCannotBeLoaded) {
  const Document document = OpenEmpty();
  answers.Give(QMessageBox::Ok);
  EXPECT_FALSE(document.Window->LoadSigStandards(PathText("nowhere.sig")));
  EXPECT_EQ(answers.Seen.back().Text, "Error loading " + PathText("nowhere.sig"));
  EXPECT_EQ(document.Window->windowTitle(), "Untitled 1");
}

TEST_F(DocumentLifecycle, HeaderAloneIsAnEmptyTable) {
  const Document document = OpenFile(Header);
  EXPECT_EQ(document.List->rowCount(), 0);
  EXPECT_EQ(document.Window->windowTitle(), PathText("table.sig"));
}

TEST_F(DocumentLifecycle, FileOf200RowsMayHaveBeenTruncated) {
  for (const int rows : {200, 250}) {
    std::string bytes = Header;
    for (int row = 0; row < rows; ++row) bytes += "2\t0\tA\t1\t2\t3\t4\t5\t6\t7\r\n";
    answers.Seen.clear();
    answers.Give(QMessageBox::Ok);
    const Document document = OpenFile(bytes);
    EXPECT_EQ(answers.Seen,
              (std::vector{Message{"File Error", "There are too many records in the file, truncating at 200.",
                                   QMessageBox::Critical, QMessageBox::Ok}}));
    EXPECT_EQ(document.List->rowCount(), 200);
    EXPECT_EQ(document.Window->windowTitle(), PathText("table.sig"));
  }
}

TEST_F(DocumentLifecycle, LoadingValidatesAndTellsOfDuplicatesOnceTheListIsFilled) {
  const QString duplicate = "Warning:\tA\tDuplicate Signal Standard name.\r\n";
  const Document document = Open(Group("A", 1) + Group("A", 0));
  EXPECT_EQ(frame.Warned, (std::vector{QString(), duplicate}));
  EXPECT_EQ(document.Window->WarningsText(), duplicate);
}

TEST_F(DocumentLifecycle, LoadingSelectsTheFirstStandard) {
  const Document document = Open(Standards(3));
  document.Click(document.List, 2);
  WriteFile(folder / "second.sig", WriteSigTable(TableOf(Group("X", 1) + Standards(3))));
  EXPECT_TRUE(document.Window->LoadSigStandards(PathText("second.sig")));
  EXPECT_EQ(document.List->currentRow(), 0);
  EXPECT_EQ(document.Detail(NameRow), "X");
  EXPECT_EQ(document.Bands->rowCount(), 1);
}

TEST_F(DocumentLifecycle, FactoryTableIsReadOnlyByItsCaption) {
  for (const char* name : {"Matrivim.dgc", "copy of MATRIVIM.DGC.bak"}) {
    const Document document = Open(Standards(1), name);
    EXPECT_EQ(document.Window->windowTitle(), "Factory Default (Read-Only)") << name;
  }
}

TEST_F(DocumentLifecycle, PathsKeepTheirCharacters) {
  const Document document = Open(Standards(1), "T\xC3\xA4tigkeit \xE2\x82\xAC.sig");
  EXPECT_EQ(document.Window->windowTitle(), PathText("T\xC3\xA4tigkeit \xE2\x82\xAC.sig"));
  EXPECT_TRUE(document.Window->SaveChanplans(document.Window->windowTitle()));
  EXPECT_EQ(document.List->rowCount(), 1);
}

// --- Saving

TEST_F(DocumentLifecycle, SavingWritesTheTableAndTakesThePathAsCaption) {
  const Document document =
      Open({{"131", 1, "A", 890.20001, 935.2, 1, 124, 0.2, 0.00625, 1}, Band(1, 2, 3, 4)}, "Matrivim.dgc");
  EXPECT_TRUE(document.Window->SaveChanplans(PathText("mine.sig")));
  EXPECT_EQ(document.Window->windowTitle(), PathText("mine.sig"));
  EXPECT_EQ(ReadFile(folder / "mine.sig"), std::string(Header) +
                                               "131\t1\tA\t890.20001\t935.2\t1\t124\t0.2\t0.00625\t1\r\n"
                                               "0\t0\tA(A)\t1\t2\t3\t4\t0.2\t0.00625\t1\r\n");
}

TEST_F(DocumentLifecycle, SavingWritesTheOpenEdit) {
  const Document document = Open(Standards(1));
  document.Overwrite(StopRow, "9");
  EXPECT_TRUE(document.Window->SaveChanplans(PathText("saved.sig")));
  EXPECT_FALSE(document.Box->isVisible());
  EXPECT_EQ(LoadSigFile(folder / "saved.sig").Table.Row(0).StopChannel, 9);
}

TEST_F(DocumentLifecycle, FailedSaveSaysWhyAndKeepsTheCaption) {
  const Document document = Open(Standards(1));
  const QString former = document.Window->windowTitle();
  for (const char* name : {".", "nowhere/saved.sig"}) {
    const QString path = PathText(name);
    const QString reason = QString::fromStdString(SaveSigFile(folder / name, {}).message());  // each system's own words
    answers.Seen.clear();
    answers.Give(QMessageBox::Ok);
    EXPECT_FALSE(document.Window->SaveChanplans(path));
    EXPECT_EQ(answers.Seen,
              (std::vector{Message{"Error Saving File", reason, QMessageBox::Critical, QMessageBox::Ok}}));
    EXPECT_EQ(document.Window->windowTitle(), former);
  }
}

struct LocaleCase {
  const char* Locale;
  const char* Uplink;
};

TEST_F(DocumentLifecycle, FileHasTheDecimalSeparatorOfTheUser) {
  // A separator that 8-bit text has no character for would make the numbers unreadable.
  for (const LocaleCase& given : {LocaleCase{"C", "890.25"}, {"de_DE", "890,25"}, {"ar_EG", "890.25"}}) {
    QLocale::setDefault(QLocale(given.Locale));
    const Document document = Open({{"2", 0, "A", 890.25, 2, 3, 4, 5, 6, 7}});
    EXPECT_EQ(document.Detail(UplinkRow), "890.2500");
    EXPECT_TRUE(document.Window->SaveChanplans(PathText("saved.sig")));
    EXPECT_EQ(ReadFile(folder / "saved.sig"),
              std::string(Header) + "2\t0\tA\t" + given.Uplink + "\t2\t3\t4\t5\t6\t7\r\n");
  }
}

TEST_F(DocumentLifecycle, DecimalsAreTypedWithAPointWhateverTheLocale) {
  QLocale::setDefault(QLocale("de_DE"));
  const Document document = Open(Group("A", 1));
  document.Overwrite(UplinkRow, "890,.25");
  Press(Qt::Key_Return);
  document.Overwrite(document.Bands, 0, UplinkColumn, "890.25");
  Press(Qt::Key_Return);
  EXPECT_EQ(TableIn(document).Row(0).UplinkStartFreq, 890.25);
  EXPECT_EQ(TableIn(document).Row(1).UplinkStartFreq, 890.25);
}

// --- A file that somebody else changes meanwhile

class ChangedMeanwhile : public DocumentTest {
 protected:
  // A document with one standard more than its file, which then holds others.
  Document OpenAndChange() {
    Document document = Open(Standards(2));
    document.Window->InsertBlank();
    EXPECT_FALSE(SaveSigFile(folder / "table.sig", TableOfNames({"S1", "Theirs"})));
    return document;
  }
  std::vector<std::string> NamesInFile(const char* name = "table.sig") {
    return RowNames(LoadSigFile(folder / name).Table);
  }
  using Names = std::vector<std::string>;
};

TEST_F(ChangedMeanwhile, FileIsOverwrittenOnlyWhenTheUserSaysSo) {
  const Document document = OpenAndChange();
  answers.Give(QMessageBox::Cancel);
  EXPECT_FALSE(document.Window->SaveChanplans(PathText("table.sig")));
  ASSERT_EQ(answers.Seen.size(), 1u);
  EXPECT_TRUE(answers.Seen[0].Text.contains("has been changed by another program or in another window"));
  EXPECT_EQ(NamesInFile(), (Names{"S1", "Theirs"}));
  answers.Give([](QMessageBox& box) {
    QStringList texts;
    for (const QAbstractButton* button : box.buttons()) texts += button->text();
    texts.sort();
    EXPECT_EQ(texts, QStringList({"&Keep Both...", "&Overwrite", "&Reload", "Cancel"}));
    QTest::mouseClick(box.button(QMessageBox::Save), Qt::LeftButton);
  });
  EXPECT_TRUE(document.Window->SaveChanplans(PathText("table.sig")));
  EXPECT_EQ(NamesInFile(), (Names{"S1", "S2", "[New Standard]"}));
  EXPECT_TRUE(document.Window->SaveChanplans(PathText("table.sig"))) << "without another question";
}

TEST_F(ChangedMeanwhile, ReloadShowsTheDifference) {
  const Document document = OpenAndChange();
  answers.Give(QMessageBox::Reset);
  answers.Give(QMessageBox::Ok);
  EXPECT_TRUE(document.Window->SaveChanplans(PathText("table.sig")));
  EXPECT_EQ(NamesIn(document), (Names{"S1", "Theirs"}));
  ASSERT_EQ(answers.Seen.size(), 2u);
  EXPECT_EQ(answers.Seen[1].Text,
            "The table was reloaded. From what was here (-) to what is in the file (+):\n\n"
            "- S2\n- [New Standard]\n+ Theirs");
  EXPECT_FALSE(document.State->Changed);
}

TEST_F(ChangedMeanwhile, TableStaysWhenTheFileCannotBeReloaded) {
  const Document document = OpenAndChange();
  WriteFile(folder / "table.sig", "header\r\ngarbage\r\n");
  answers.Give(QMessageBox::Reset);
  answers.Give(QMessageBox::Ok);
  EXPECT_FALSE(document.Window->SaveChanplans(PathText("table.sig")));
  EXPECT_EQ(NamesIn(document), (Names{"S1", "S2", "[New Standard]"}));
}

TEST_F(ChangedMeanwhile, BothAreKeptUnderTwoNames) {
  const Document document = OpenAndChange();
  frame.SaveAnswer = PathText("mine.sig");
  answers.Give(QMessageBox::SaveAll);
  EXPECT_TRUE(document.Window->SaveChanplans(PathText("table.sig")));
  EXPECT_EQ(frame.Prompts, std::vector{(SavePrompt{PathText("table (2).sig"), ".sig"})});
  EXPECT_EQ(document.Window->windowTitle(), PathText("mine.sig"));
  EXPECT_EQ(NamesInFile(), (Names{"S1", "Theirs"}));
  EXPECT_EQ(NamesInFile("mine.sig"), (Names{"S1", "S2", "[New Standard]"}));
}

TEST_F(ChangedMeanwhile, WhatIsReloadedAtACloseIsLookedAtFirst) {
  const Document document = OpenAndChange();
  answers.Give(QMessageBox::Yes);
  answers.Give(QMessageBox::Reset);
  answers.Give(QMessageBox::Ok);
  EXPECT_FALSE(document.Window->close());
  EXPECT_FALSE(document.State->Changed);
  EXPECT_TRUE(document.Window->close());
}

TEST_F(ChangedMeanwhile, FileThatIsGoneIsSavedAgain) {
  const Document document = OpenAndChange();
  std::filesystem::remove(folder / "table.sig");
  EXPECT_TRUE(document.Window->SaveChanplans(PathText("table.sig")));
  EXPECT_EQ(NamesInFile(), (Names{"S1", "S2", "[New Standard]"}));
}

TEST_F(DocumentLifecycle, PropertiesAndTableLeaveAnOpenEditAlone) {
  const Document document = Open(Standards(1));
  const QString former = document.Window->TableProperties();
  document.Overwrite(SubbandsRow, "2");
  EXPECT_EQ(document.Window->TableProperties(), former);
  EXPECT_EQ(document.Window->Table().Count, 1);
  EXPECT_TRUE(document.Box->isVisible());
  document.Window->CommitEdit();
  EXPECT_NE(document.Window->TableProperties(), former);
  EXPECT_EQ(document.Window->Table().Count, 3);
}

// --- Closing

TEST_F(DocumentLifecycle, UnchangedDocumentClosesWithoutAQuestion) {
  const Document document = Open(Standards(1));
  EXPECT_TRUE(document.Window->close());
  EXPECT_TRUE(document.State->Released);
  EXPECT_TRUE(Gone(document));
}

TEST_F(DocumentLifecycle, ClosingClearsTheWarnings) {
  const Document document = Open(Standards(1));
  EXPECT_NE(frame.Warned.back(), "");
  EXPECT_TRUE(document.Window->close());
  EXPECT_EQ(frame.Warned.back(), "");
}

TEST_F(DocumentLifecycle, NamesInQuestionsAreNoMarkup) {
  const Document document = OpenEmpty("Untitled <b>&amp;</b>");
  document.State->Changed = true;
  answers.Give([](QMessageBox& box) {
    EXPECT_EQ(box.textFormat(), Qt::PlainText);
    box.button(QMessageBox::Cancel)->click();
  });
  EXPECT_FALSE(document.Window->close());
  EXPECT_EQ(answers.Seen, std::vector{Question("Untitled <b>&amp;</b>")});
}

TEST_F(DocumentLifecycle, CloseIsRefusedWhileAnyMessageBoxOfItIsUp) {
  shared.StandardClipboard = Standards(10);
  shared.StandardClipboardFull = true;
  const Document document = Open(Standards(195));
  answers.Give([&](QMessageBox& box) {
    EXPECT_FALSE(document.Window->close());
    EXPECT_FALSE(document.State->Released);
    box.button(QMessageBox::Ok)->click();
  });
  document.Window->Paste();
  EXPECT_EQ(document.List->rowCount(), 200);
}

TEST_F(DocumentLifecycle, CancelKeepsTheWindow) {
  const Document document = Open(Standards(1));
  document.Window->InsertBlank();
  answers.Give(QMessageBox::Cancel);
  EXPECT_FALSE(document.Window->close());
  EXPECT_EQ(answers.Seen, std::vector{Question(PathText("table.sig"))});
  EXPECT_FALSE(Gone(document));
  EXPECT_TRUE(document.Window->isVisible());
  EXPECT_TRUE(document.State->Changed);
  EXPECT_FALSE(document.State->Released);
}

TEST_F(DocumentLifecycle, EscapeFromTheQuestionKeepsTheWindow) {
  const Document document = Open(Standards(1));
  document.State->Changed = true;
  answers.Give([](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Escape); });
  EXPECT_FALSE(document.Window->close());
  EXPECT_FALSE(document.State->Released);
}

TEST_F(DocumentLifecycle, NoClosesWithoutSaving) {
  const Document document = Open(Standards(1));
  const std::string former = ReadFile(folder / "table.sig");
  document.Window->InsertBlank();
  answers.Give(QMessageBox::No);
  EXPECT_TRUE(document.Window->close());
  EXPECT_TRUE(document.State->Released);
  EXPECT_TRUE(Gone(document));
  EXPECT_EQ(ReadFile(folder / "table.sig"), former);
  EXPECT_TRUE(frame.Prompts.empty());
}

TEST_F(DocumentLifecycle, YesSavesToTheDocumentsOwnFile) {
  const Document document = Open(Standards(1));
  document.Window->InsertBlank();
  answers.Give(QMessageBox::Yes);
  EXPECT_TRUE(document.Window->close());
  EXPECT_TRUE(Gone(document));
  EXPECT_EQ(RowNames(LoadSigFile(folder / "table.sig").Table), (std::vector<std::string>{"S1", "[New Standard]"}));
  EXPECT_TRUE(frame.Prompts.empty());
}

struct PromptCase {
  const char* Caption;
  SavePrompt Expected;
};

TEST_F(DocumentLifecycle, YesAsksForANameWhereThereIsNone) {
  for (const PromptCase& given : {PromptCase{"Untitled 1", {"untitled.lst", ".sig"}},
                                  {"Untitled(Query) ", {"untitled.lst", ".sig"}},
                                  {"Untitled", {"untitled.lst", ".sig"}},
                                  {"Factory Default (Read-Only)", {"", ".sig"}}}) {
    const Document document = OpenEmpty(given.Caption);
    document.Window->InsertBlank();
    frame.Prompts.clear();
    frame.SaveAnswer = PathText("chosen.sig");
    answers.Seen.clear();
    answers.Give(QMessageBox::Yes);
    EXPECT_TRUE(document.Window->close());
    EXPECT_EQ(answers.Seen, std::vector{Question(given.Caption)});
    EXPECT_EQ(frame.Prompts, std::vector{given.Expected});
    EXPECT_TRUE(Gone(document));
    EXPECT_EQ(LoadSigFile(folder / "chosen.sig").Table.Row(0).Name, "[New Standard]");
  }
}

TEST_F(DocumentLifecycle, CancelledFileDialogKeepsTheWindowAndItsChanges) {
  const Document document = OpenEmpty();
  document.Window->InsertBlank();
  answers.Give(QMessageBox::Yes);
  EXPECT_FALSE(document.Window->close());
  EXPECT_FALSE(Gone(document));
  EXPECT_TRUE(document.State->Changed);
  EXPECT_FALSE(document.State->Released);
  EXPECT_EQ(document.List->rowCount(), 1);
  EXPECT_EQ(document.Window->windowTitle(), "Untitled 1");
}

TEST_F(DocumentLifecycle, FailedSaveKeepsTheWindowAndItsChanges) {
  const Document document = OpenEmpty();
  document.Window->InsertBlank();
  frame.SaveAnswer = PathText(".");
  answers.Give(QMessageBox::Yes);
  answers.Give(QMessageBox::Ok);
  EXPECT_FALSE(document.Window->close());
  EXPECT_EQ(answers.Seen.back().Title, "Error Saving File");
  EXPECT_FALSE(Gone(document));
  EXPECT_TRUE(document.State->Changed);
  EXPECT_EQ(document.List->rowCount(), 1);
  EXPECT_EQ(document.Window->windowTitle(), "Untitled 1");
  answers.Give(QMessageBox::No);
  EXPECT_TRUE(document.Window->close());
}

TEST_F(DocumentLifecycle, ClosingStoresTheOpenEdit) {
  const Document document = Open(Standards(1));
  document.Overwrite(StopRow, "9");
  answers.Give(QMessageBox::Yes);
  EXPECT_TRUE(document.Window->close());
  EXPECT_EQ(LoadSigFile(folder / "table.sig").Table.Row(0).StopChannel, 9);
}

TEST_F(DocumentLifecycle, EditThatIsOpenButUntouchedDoesNotAsk) {
  const Document document = Open(Standards(1));
  document.DoubleClick(document.Details, StopRow);
  EXPECT_TRUE(document.Window->close());
  EXPECT_TRUE(Gone(document));
}

TEST_F(DocumentLifecycle, RefusedCloseGoesOnWhereTheUserWas) {
  const Document document = Open(Standards(1));
  document.Overwrite(StopRow, "9");
  answers.Give(QMessageBox::Cancel);
  EXPECT_FALSE(document.Window->close());
  EXPECT_EQ(FocusWindow(), window.windowHandle());
  EXPECT_TRUE(document.Details->hasFocus());
  EXPECT_EQ(document.Detail(StopRow), "9");
}

TEST_F(DocumentLifecycle, SecondCloseWhileTheQuestionIsOnTheScreenIsRefused) {
  const Document document = Open(Standards(1));
  document.Window->InsertBlank();
  answers.Give([&](QMessageBox& box) {
    QCloseEvent second;
    QApplication::sendEvent(document.Window, &second);
    EXPECT_FALSE(second.isAccepted());
    EXPECT_FALSE(document.State->Released);
    box.button(QMessageBox::No)->click();
  });
  EXPECT_TRUE(document.Window->close());
  EXPECT_EQ(answers.Seen.size(), 1u);
  EXPECT_TRUE(Gone(document));
}

TEST_F(DocumentLifecycle, AnswerCountsOnceTheQuestionWasRefused) {
  const Document document = Open(Standards(1));
  document.State->Changed = true;
  answers.Give(QMessageBox::Cancel);
  EXPECT_FALSE(document.Window->close());
  answers.Give(QMessageBox::No);
  EXPECT_TRUE(document.Window->close());
}

TEST_F(DocumentLifecycle, ClosingOneDocumentLeavesTheOther) {
  const Document kept = Open(Standards(1), "kept.sig");
  const Document closed = Open(Standards(2));
  EXPECT_TRUE(closed.Window->close());
  EXPECT_TRUE(Gone(closed));
  EXPECT_FALSE(kept.State->Released);
  EXPECT_EQ(kept.List->rowCount(), 1);
}

TEST_F(DocumentLifecycle, DocumentMayBeDestroyedInTheMiddleOfAnEdit) {
  const Document document = Open(Group("A", 1));
  document.Overwrite(document.Bands, 0, UplinkColumn, "9");
  delete document.Window;
  EXPECT_EQ(mdi->subWindowList().size(), 0);
}

TEST_F(DocumentLifecycle, DocumentMayBeDestroyedWhileAChoiceIsOpen) {
  const Document document = Open(Standards(1));
  document.Click(document.Details, ModulationRow);
  ASSERT_TRUE(document.Modulation->hasFocus());
  delete document.Window;
  EXPECT_EQ(mdi->subWindowList().size(), 0);
}

TEST_F(DocumentLifecycle, ChoiceAloneDoesNotAsk) {
  const Document document = Open(Standards(1));
  document.Click(document.Details, ModulationRow);
  Press(Qt::Key_Home);
  EXPECT_TRUE(document.Window->close());
  EXPECT_TRUE(answers.Seen.empty());
}

}  // namespace
}  // namespace chanplan::testing
