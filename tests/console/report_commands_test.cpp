// The commands that put a table on paper or on the screen: report, print and chart.
#include <gtest/gtest.h>

#include <regex>
#include <string>

#include "tests/console/program.h"
#include "tests/console/sig_text.h"
#include "tests/core/run_in_child.h"
#include "tests/core/small_disk.h"
#include "tests/report/pdf_reader.h"

namespace chanplan::testing {
namespace {

namespace fs = std::filesystem;

const std::string Group =
    SigText({"130|1|Z\xFCrich|1850.2|1930.2|512|810|0.2|0.2|1", "0|0|any|1850.2|1930.2|512|1810|9|9|9"});

TEST(Report, ShowsTheTableAsItStandsOnceOpened) {
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "plan.sig", Group);
  WriteFile(chanplan.Folder / "out.htm", "former");
  const ProgramRun run = chanplan.Run({"report", "plan.sig", "out.htm"});
  EXPECT_EQ(run.Output, "");
  EXPECT_EQ(run.Errors, "");
  EXPECT_EQ(run.ExitStatus, 0);
  const std::string report = ReadFile(chanplan.Folder / "out.htm");
  EXPECT_TRUE(report.starts_with("<HTML><Table border=1 ")) << report;
  EXPECT_NE(report.find("<big>File: plan.sig</td></tr>\r\n"), std::string::npos);
  EXPECT_NE(report.find("<tr><td>Z\xFCrich</td><td>130</td><td>1,850.200000</td><td>1,930.200000</td><td>512</td>"
                        "<td>810</td><td>0.200</td><td>0.2000</td><td>1</td></tr>\r\n"
                        "<tr><td></td><td>0</td><td>1,850.200000</td><td>1,930.200000</td><td>512</td>"
                        "<td>1,810</td><td>0.200</td><td>0.2000</td><td>1</td></tr>\r\n</table></html>\r\n"),
            std::string::npos)
      << report;
}

TEST(Report, IsCaptionedAsTheEditorDoes) {
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "Z\u00FCrich.sig", Group);
  WriteFile(chanplan.Folder / "matrivim.DGC", Group);
  fs::create_directory(chanplan.Folder / "plans");
  WriteFile(chanplan.Folder / "plans" / "a.sig", Group);
  struct Case {
    const char* File;
    const char* Caption;
  };
  for (const auto& [file, caption] :
       {Case{"Z\u00FCrich.sig", "Z\xFCrich.sig"}, Case{"matrivim.DGC", "Factory Default (Read-Only)"},
        Case{"plans/../plans/a.sig", "plans/../plans/a.sig"}}) {
    EXPECT_EQ(chanplan.Run({"report", file, "out.htm"}).ExitStatus, 0);
    const std::string report = ReadFile(chanplan.Folder / "out.htm");
    EXPECT_NE(report.find("<big>File: " + std::string(caption) + "</td>"), std::string::npos) << report;
  }
}

TEST(Print, ListsTheTableOnTheirPaper) {
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "plan.sig", Group);
  struct Case {
    std::vector<std::string> Options;
    const char* Paper;
  };
  for (const auto& [options, paper] :
       {Case{{}, "612 x 792 pts (letter)"}, Case{{"--paper", "letter"}, "612 x 792 pts (letter)"},
        Case{{"--paper", "a4"}, "595 x 842 pts (A4)"}}) {
    std::vector<std::string> arguments = {"print", "plan.sig", "out.pdf"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const ProgramRun run = chanplan.Run(arguments);
    EXPECT_EQ(run.Output, "");
    EXPECT_EQ(run.Errors, "");
    EXPECT_EQ(run.ExitStatus, 0);
    const std::string pdf = ReadFile(chanplan.Folder / "out.pdf");
    EXPECT_NE(ReadPdf("pdfinfo file.pdf", pdf).find(paper), std::string::npos);
    const std::string text = PdfText(pdf);
    for (const char* part : {"File: plan.sig", "Z\u00FCrich", "Z\u00FCrich(A)", "1,850.200000", "1,810"})
      EXPECT_NE(text.find(part), std::string::npos) << part;
  }
}

TEST(Print, TakesTwoHundredRows) {
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "plan.sig", SigText(NumberedRows(199)));
  EXPECT_EQ(chanplan.Run({"print", "plan.sig", "out.pdf"}).ExitStatus, 0);
  const std::string pdf = ReadFile(chanplan.Folder / "out.pdf");
  EXPECT_EQ(PdfPages(pdf), 4);
  EXPECT_NE(PdfText(pdf).find("S199 "), std::string::npos);
}

TEST(Print, NeedsNoDesktop) {
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "plan.sig", Group);
  RunOptions options;
  options.Environment = {"DISPLAY=", "WAYLAND_DISPLAY=", "XDG_RUNTIME_DIR=", "QT_QPA_PLATFORM=xcb"};
  const ProgramRun run = chanplan.Run({"print", "plan.sig", "out.pdf"}, options);
  EXPECT_EQ(run.Errors, "");
  EXPECT_EQ(run.ExitStatus, 0);
  EXPECT_EQ(PdfPages(ReadFile(chanplan.Folder / "out.pdf")), 1);
}

TEST(Print, FailsWithoutFonts) {
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "plan.sig", Group);
  WriteFile(chanplan.Folder / "out.pdf", "former");
  WriteFile(chanplan.Folder / "fonts.conf", "<?xml version=\"1.0\"?><fontconfig></fontconfig>");
  RunOptions options;
  options.Environment = {"FONTCONFIG_FILE=" + (chanplan.Folder / "fonts.conf").string()};
  const ProgramRun run = chanplan.Run({"print", "plan.sig", "out.pdf"}, options);
  EXPECT_EQ(run.Errors, "chanplan: no font is installed to print with\n");
  EXPECT_EQ(run.ExitStatus, 2);
  EXPECT_EQ(ReadFile(chanplan.Folder / "out.pdf"), "former");
}

TEST(Chart, ShowsTheStandards) {
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "plan.sig", Group);
  const ProgramRun run = chanplan.Run({"chart", "plan.sig", "out.svg"});
  EXPECT_EQ(run.Output, "");
  EXPECT_EQ(run.Errors, "");
  EXPECT_EQ(run.ExitStatus, 0);
  const std::string chart = ReadFile(chanplan.Folder / "out.svg");
  for (const char* part : {"<title id=\"title\">Channel plan: plan.sig</title>", ">Z\u00FCrich</text>",
                           "<title>Z\u00FCrich(A): uplink 1850.2 to 2109.8 MHz</title>"})
    EXPECT_NE(chart.find(part), std::string::npos) << part << " in " << chart;
}

TEST(Chart, ListsThePairsThatShareForThePaper) {
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "plan.sig", std::string("header\r\n") +
                                              "2\t0\tOne\t900\t945\t0\t100\t0.2\t0.2\t1\r\n"
                                              "2\t0\tTwo\t910\t1800\t0\t100\t0.2\t0.2\t1\r\n"
                                              "2\t0\tThree\t2000\t2100\t0\t100\t0.2\t0.2\t1\r\n");
  EXPECT_EQ(chanplan.Run({"chart", "plan.sig", "out.svg"}).ExitStatus, 0);
  const std::string chart = ReadFile(chanplan.Folder / "out.svg");
  const std::regex text("<text class=\"pair\"[^>]*>([^<]*)</text>");
  std::vector<std::string> texts;
  for (std::sregex_iterator found(chart.begin(), chart.end(), text), end; found != end; ++found)
    texts.push_back((*found)[1]);
  EXPECT_EQ(texts,
            (std::vector<std::string>{"Standards that share carriers, and where", "One", "Two", "910 to 920 MHz"}));
}

TEST(Print, KnowsTwoPapers) {
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "plan.sig", Group);
  const ProgramRun run = chanplan.Run({"print", "plan.sig", "out.pdf", "--paper", "a3"});
  EXPECT_TRUE(run.Errors.starts_with("--paper: a3 not in {")) << run.Errors;
  EXPECT_EQ(run.ExitStatus, 2);
  EXPECT_FALSE(fs::exists(chanplan.Folder / "out.pdf"));
}

TEST(WhatIsWritten, IsWholeOrNotThereOnAFullDisk) {
  for (const char* command : {"report", "print", "chart"}) {
    SCOPED_TRACE(command);
    const Chanplan chanplan;
    const std::string problem = RunInChild([&]() -> std::string {
      MountSmallDisk(chanplan.Folder.Path());
      WriteFile(chanplan.Folder / "small.sig", Group);
      WriteFile(chanplan.Folder / "big.sig", SigText(NumberedRows(199)));
      const ProgramRun first = chanplan.Run({command, "small.sig", "out"});
      if (first.ExitStatus != 0) return "the small one did not fit: " + first.Errors;
      const std::string former = ReadFile(chanplan.Folder / "out");
      const auto left = fs::space(chanplan.Folder.Path()).available;
      WriteFile(chanplan.Folder / "filler", std::string(left - 8192, 'x'));
      for (const std::string out : {"out", "new"}) {
        const ProgramRun run = chanplan.Run({command, "big.sig", out});
        if (run.Errors != "chanplan: Error Saving File " + out + ": No space left on device\n" || run.ExitStatus != 2)
          return "the big one as " + out + " came to " + std::to_string(run.ExitStatus) + " " + run.Errors;
      }
      if (ReadFile(chanplan.Folder / "out") != former) return "the former file is not whole";
      if (NamesIn(chanplan.Folder.Path()) != std::set<std::string>{"big.sig", "filler", "out", "small.sig"})
        return "something was left beside the file";
      return {};
    });
    if (problem.starts_with(Impossible)) GTEST_SKIP() << problem;
    EXPECT_EQ(problem, "");
  }
}

TEST(WhatIsWritten, MayGoToAPipe) {
  for (const char* command : {"report", "print", "chart"}) {
    const Chanplan chanplan;
    WriteFile(chanplan.Folder / "plan.sig", Group);
    const ProgramRun run = chanplan.Run({command, "plan.sig", "/dev/stdout"});
    EXPECT_EQ(run.Errors, "") << command;
    EXPECT_EQ(run.ExitStatus, 0) << command;
    EXPECT_GT(run.Output.size(), 500u) << command;
  }
}

}  // namespace
}  // namespace chanplan::testing
