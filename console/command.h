// What the subcommands share: opening and saving tables as the editor does, and failing clearly.
#pragma once

#include <CLI/CLI.hpp>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>

#include "core/signal_standard_table.h"

namespace chanplan {

inline constexpr int ExitDone = 0;
inline constexpr int ExitDifferent = 1;  ///< findings, or tables that differ
inline constexpr int ExitFailed = 2;

/// Ends the command with one line on standard error.
class CommandFailure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Each adds its subcommand to `app`. What the command comes to is stored in `exitCode`.
void AddCheckCommand(CLI::App& app, int& exitCode);
void AddSaveAsCommand(CLI::App& app, int& exitCode);
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

/// The table in `file` as it stands once the editor has opened it: read, its sub-bands in line. Says so on
/// standard error when it was truncated; throws CommandFailure when it cannot be read.
SignalStandardTable OpenTable(const std::filesystem::path& file);

/// Brings the sub-bands of `table` into line and writes it to `file`; throws CommandFailure.
void SaveTableAs(SignalStandardTable table, const std::filesystem::path& file);

/// Throws CommandFailure when `error` is one: what writing `file` came to.
void FailUnlessSaved(const std::filesystem::path& file, std::error_code error);

/// Writes a line of remark to standard error.
void Note(const std::string& text);

/// `bytes` (Windows-1252) from a unit as UTF-8, "?" in place of control characters.
std::string PrintedText(std::string_view bytes);

/// `text` with every CR LF as LF.
std::string WithLfLineEnds(std::string text);

}  // namespace chanplan
