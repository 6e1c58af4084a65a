#include "console/command.h"

#include <iostream>

#include "core/sig_file.h"
#include "core/validation.h"

namespace chanplan {

SignalStandardTable OpenTable(const std::filesystem::path& file) {
  ReadOutcome outcome = LoadSigFile(file);
  if (!outcome.Ok()) throw CommandFailure(LoadErrorText(file.string(), 0) + ": " + outcome.Reason);
  if (outcome.Truncated) Note(file.string() + ": " + std::string(FileTruncatedText));
  ValidateTable(outcome.Table, {});
  return outcome.Table;
}

void SaveTableAs(SignalStandardTable table, const std::filesystem::path& file) {
  ValidateTable(table, ListNames(table));
  if (const std::error_code error = SaveSigFile(file, table))
    throw CommandFailure("Error Saving File " + file.string() + ": " + error.message());
}

void Note(const std::string& text) { std::cerr << "chanplan: " << text << std::endl; }

std::string WithLfLineEnds(std::string text) {
  for (std::size_t end = 0; (end = text.find("\r\n", end)) != std::string::npos;) text.erase(end, 1);
  return text;
}

}  // namespace chanplan
