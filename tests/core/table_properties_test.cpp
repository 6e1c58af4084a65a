#include "core/table_properties.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "tests/core/table_of.h"
#include "tests/core/temp_folder.h"

namespace chanplan {
namespace {

using namespace std::chrono;
using testing::NamedRow;
using testing::TableOf;
using testing::TempFolder;
using testing::WriteFile;

// 3 standards and 5 sub-bands.
SignalStandardTable EightRows() {
  return TableOf({NamedRow("A", 2), NamedRow(""), NamedRow(""), NamedRow("B"), NamedRow("C", 3), NamedRow(""),
                  NamedRow(""), NamedRow("")});
}

const std::string EightRowsText =
    "Record count:     \t8 of 200\r\n"
    "Signal Standards: \t3\r\n"
    "Sub-bands:        \t5";

void SetTimes(const std::filesystem::path& file, sys_seconds accessed, sys_seconds modified) {
  const timespec times[] = {{accessed.time_since_epoch().count(), 0},
                            {modified.time_since_epoch().count(), 999'999'999}};
  ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
}

// The value behind `label` in the properties of an empty table.
std::string Value(const std::filesystem::path& file, const std::string& label) {
  const std::string text = TableProperties({}, file.string());
  const std::size_t found = text.find(label + "\t");
  EXPECT_NE(found, std::string::npos) << text;
  if (found == std::string::npos) return {};
  const std::size_t start = found + label.size() + 1;
  return text.substr(start, text.find("\r\n", start) - start);
}

TEST(TableProperties, OfATableNeverSaved) {
  EXPECT_EQ(TableProperties(EightRows(), "Untitled 1"), "File:             \tUnsaved\r\n\r\n" + EightRowsText);
  EXPECT_EQ(TableProperties({}, ""),
            "File:             \tUnsaved\r\n\r\n"
            "Record count:     \t0 of 200\r\n"
            "Signal Standards: \t0\r\n"
            "Sub-bands:        \t0");
}

TEST(TableProperties, OfTheFactoryTableShowNoFile) {
  const std::string expected = "Factory Default Signal Standards\r\n\r\n" + EightRowsText;
  EXPECT_EQ(TableProperties(EightRows(), "Factory Default (Read-Only)"), expected);
  const TempFolder folder;
  WriteFile(folder / "copy (Read-Only).sig", "bytes");
  EXPECT_EQ(TableProperties(EightRows(), (folder / "copy (Read-Only).sig").string()), expected);
}

TEST(TableProperties, OfAFileShowItsSizeAndTimes) {
  const TempFolder folder;
  const std::filesystem::path file = folder / "table.sig";
  WriteFile(file, std::string(98765, 'x'));
  SetTimes(file, sys_days(2004y / March / 5) + 20h + 7min + 9s, sys_days(2004y / January / 1) + 3h);
  const std::string text = TableProperties(EightRows(), file.string());
  const std::string created = Value(file, "Created:    ");
  EXPECT_EQ(text, file.string() +
                      "\r\n\r\n"
                      "File size:      \t98,765 bytes\r\n"
                      "Created:    \t" +
                      created +
                      "\r\n"
                      "Modified:   \tDecember 31, 2003  09:00:00 PM\r\n"
                      "Accessed:   \tMarch 05, 2004  02:07:09 PM\r\n\r\n" +
                      EightRowsText);
}

TEST(TableProperties, ShowATimeOfCreationInTheFormOfTheOthers) {
  const TempFolder folder;
  WriteFile(folder / "table.sig", "");
  const std::string created = Value(folder / "table.sig", "Created:    ");
  tm parts{};
  const char* end = strptime(created.c_str(), "%B %d, %Y  %I:%M:%S %p", &parts);
  ASSERT_TRUE(end != nullptr && *end == '\0') << created;
  const sys_seconds shown{seconds(timegm(&parts))};
  EXPECT_EQ(PropertiesTime(shown + 6h), created);
  EXPECT_GT(shown, sys_days(2020y / January / 1)) << "when the file was made is not so long ago";
}

TEST(TableProperties, ShowTheLow32BitsOfASize) {
  const TempFolder folder;
  const std::filesystem::path file = folder / "table.sig";
  WriteFile(file, "");
  for (const auto& [size, text] : {std::pair<std::uintmax_t, const char*>{0, "0 bytes"},
                                   {999, "999 bytes"},
                                   {1000, "1,000 bytes"},
                                   {4294967295, "4,294,967,295 bytes"},
                                   {4294967296 + 1234, "1,234 bytes"}}) {
    std::filesystem::resize_file(file, size);
    EXPECT_EQ(Value(file, "File size:      "), text);
  }
}

TEST(TableProperties, DoNotDependOnTheTimeZone) {
  const TempFolder folder;
  const std::filesystem::path file = folder / "table.sig";
  WriteFile(file, "");
  SetTimes(file, sys_days(2004y / July / 1) + 12h, sys_days(2004y / July / 1) + 3h);
  const char* former = std::getenv("TZ");
  const std::string formerZone = former ? former : "";
  for (const char* zone : {"UTC0", "CET-1CEST,M3.5.0,M10.5.0/3", "XYZ+11:30"}) {
    setenv("TZ", zone, 1);
    tzset();
    EXPECT_EQ(Value(file, "Modified:   "), "June 30, 2004  09:00:00 PM") << zone;
  }
  if (former)
    setenv("TZ", formerZone.c_str(), 1);
  else
    unsetenv("TZ");
  tzset();
}

TEST(TableProperties, TellTheFileOfALink) {
  const TempFolder folder;
  WriteFile(folder / "table.sig", std::string(1234, 'x'));
  std::filesystem::create_symlink("table.sig", folder / "link.sig");
  EXPECT_EQ(Value(folder / "link.sig", "File size:      "), "1,234 bytes");
}

TEST(TableProperties, KnowFilesNamedInAnyLetters) {
  const TempFolder folder;
  const std::string caption = (folder / "Gr\303\266\303\237e.sig").string();
  WriteFile(caption, "12345");
  EXPECT_EQ(Value(caption, "File size:      "), "5 bytes");
}

TEST(TableProperties, OfAFileThatIsGoneAreThoseOfATableNeverSaved) {
  const TempFolder folder;
  EXPECT_EQ(TableProperties(EightRows(), (folder / "gone.sig").string()),
            "File:             \tUnsaved\r\n\r\n" + EightRowsText);
}

// A document "Untitled 1" has no file because a folder happens to be called so.
TEST(TableProperties, TakeNoFolderForTheFile) {
  const TempFolder folder;
  std::filesystem::create_directory(folder / "Untitled 1");
  EXPECT_EQ(TableProperties(EightRows(), (folder / "Untitled 1").string()),
            "File:             \tUnsaved\r\n\r\n" + EightRowsText);
}

TEST(TableProperties, CountRowsOfADamagedGroupAsSubbands) {
  EXPECT_EQ(TableProperties(TableOf({NamedRow("A"), NamedRow("B", 1000), NamedRow("")}), "Untitled 1"),
            "File:             \tUnsaved\r\n\r\n"
            "Record count:     \t3 of 200\r\n"
            "Signal Standards: \t2\r\n"
            "Sub-bands:        \t1");
}

TEST(PropertiesTime, IsSixHoursBehindInFullWords) {
  struct Case {
    sys_seconds Utc;
    const char* Text;
  };
  const Case cases[] = {{sys_days(2004y / March / 5) + 20h + 7min + 9s, "March 05, 2004  02:07:09 PM"},
                        {sys_days(2004y / March / 5) + 3h, "March 04, 2004  09:00:00 PM"},
                        {sys_days(2004y / March / 1) + 5h + 59min + 59s, "February 29, 2004  11:59:59 PM"},
                        {sys_days(2004y / March / 1) + 6h, "March 01, 2004  12:00:00 AM"},
                        {sys_days(2003y / January / 1) + 1h, "December 31, 2002  07:00:00 PM"},
                        {sys_days(2024y / September / 30) + 18h, "September 30, 2024  12:00:00 PM"},
                        {sys_days(2024y / September / 30) + 17h + 59min + 59s, "September 30, 2024  11:59:59 AM"},
                        {sys_days(1970y / January / 1), "December 31, 1969  06:00:00 PM"},
                        {sys_days(1899y / December / 30) + 6h, "December 30, 1899  12:00:00 AM"},
                        {sys_days(987y / May / 3) + 7h, "May 03, 0987  01:00:00 AM"}};
  for (const auto& [utc, text] : cases) EXPECT_EQ(PropertiesTime(utc), text);
}

TEST(PropertiesTime, NamesEveryMonth) {
  const char* names[] = {"January", "February", "March",     "April",   "May",      "June",
                         "July",    "August",   "September", "October", "November", "December"};
  for (unsigned number = 1; number <= 12; ++number)
    EXPECT_EQ(PropertiesTime(sys_days(2001y / month(number) / 15) + 12h),
              std::string(names[number - 1]) + " 15, 2001  06:00:00 AM");
}

}  // namespace
}  // namespace chanplan
