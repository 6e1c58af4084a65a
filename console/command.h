// What the subcommands share: opening and saving tables as the editor does, and failing clearly.
#pragma once

#include <CLI/CLI.hpp>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include "core/signal_standard_table.h"

namespace chanplan {

inline constexpr int ExitDone = 0;
inline constexpr int ExitDifferent = 1;  ///< findings, or tables that differ
inline constexpr int ExitFailed = 2;
inline constexpr int ExitRowsLost = 3;  ///< done, but a table has room for 200 rows only

/// Ends the command with one line on standard error.
class CommandFailure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Each adds its subcommand to `app`. What the command comes to is stored in `exitCode`.
void AddCheckCommand(CLI::App& app, int& exitCode);
void AddSaveAsCommand(CLI::App& app, int& exitCode);
void AddListCommand(CLI::App& app, int& exitCode);
void AddMergeCommand(CLI::App& app, int& exitCode);
void AddPropertiesCommand(CLI::App& app, int& exitCode);
void AddDiffCommand(CLI::App& app, int& exitCode);
void AddReportCommand(CLI::App& app, int& exitCode);
void AddPrintCommand(CLI::App& app, int& exitCode);
void AddChartCommand(CLI::App& app, int& exitCode);
void AddIdentifyCommand(CLI::App& app, int& exitCode);
void AddDownloadCommand(CLI::App& app, int& exitCode);
void AddUploadCommand(CLI::App& app, int& exitCode);
void AddUnitsCommand(CLI::App& app, int& exitCode);

/// Stands for standard input where a table is read, for standard output where something is written.
inline constexpr std::string_view StandardStream = "-";

/// A table as it stands once the editor has opened it, and what reading it came to.
struct OpenedTable {
  SignalStandardTable Table;
  std::vector<std::string> Notes;  ///< as ReadOutcome's
  int RowsLeftOut = 0;
};

/// Reads `file` and brings its sub-bands in line, without a word of its notes. Says so on standard error when it was
/// truncated; throws CommandFailure when it cannot be read.
OpenedTable OpenQuietly(const std::filesystem::path& file);

/// As OpenQuietly, with the notes on standard error.
OpenedTable OpenWithNotes(const std::filesystem::path& file);

/// What a command that did its work on `opened` comes to.
int ExitCodeOf(const OpenedTable& opened);

/// Throws CommandFailure when two tables are to be read from standard input.
void RefuseStandardInputTwice(const std::filesystem::path& one, const std::filesystem::path& other);

/// Brings the sub-bands of `table` into line and writes it to `file`; throws CommandFailure.
void SaveTableAs(SignalStandardTable table, const std::filesystem::path& file);

/// Writes `bytes` to `out`, whole or not at all; throws CommandFailure.
void SaveBytes(const std::filesystem::path& out, std::string_view bytes);

/// Throws CommandFailure when `error` is one: what writing `file` comes to.
void FailUnlessSaved(const std::filesystem::path& file, std::error_code error);

/// Throws CommandFailure when what is written to `out` would take the place of the table in `file`, or mix with it.
/// Either may be a standard stream.
void RefuseOwnTable(const std::filesystem::path& file, const std::filesystem::path& out);

/// The caption of a document with the table in `file`.
std::string CaptionOf(const std::filesystem::path& file);

/// Writes a line of remark to standard error.
void Note(const std::string& text);

/// `bytes` (Windows-1252) from a unit as UTF-8, "?" in place of control characters.
std::string PrintedText(std::string_view bytes);

/// Says on standard error that `count` rows were lost; the command's exit status, in either case.
int ExitCodeAfterLoss(int count);

/// The same of a merge that left out `nameless` rows besides.
int ExitCodeAfterMerge(int withoutRoom, int nameless);

/// What a file or standard input is called in messages.
std::string PrintedName(const std::filesystem::path& file);

/// Adds the option --format to `command`; what it sets is true when JSON is asked for instead of `plain`.
std::shared_ptr<bool> AddFormatOption(CLI::App& command, const std::string& plain = "text");

/// Adds the required argument `name`, which becomes `file`; `files` are one or more.
void AddFileArgument(CLI::App& command, const std::string& name, std::filesystem::path& file,
                     const std::string& description);
void AddFilesArgument(CLI::App& command, const std::string& name, std::vector<std::filesystem::path>& files,
                      const std::string& description);

/// Adds the option --open to `command`, which is followed by RefuseToShow before and ShowFile after writing.
std::shared_ptr<bool> AddOpenOption(CLI::App& command);

/// Throws CommandFailure when `out` is no file that can be shown.
void RefuseToShow(const std::filesystem::path& out);

/// Shows `file` in the program that the desktop has for it, without waiting; throws CommandFailure.
void ShowFile(const std::filesystem::path& file);

/// `text` (UTF-8) as a JSON string, its quotes included.
std::string JsonString(std::string_view text);

/// The strings `texts` as a JSON array.
std::string JsonStrings(const std::vector<std::string>& texts);

/// `text` with every CR LF as LF.
std::string WithLfLineEnds(std::string text);

}  // namespace chanplan
