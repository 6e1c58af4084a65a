#include "console/command.h"

#include <algorithm>
#include <iostream>

#include "core/sig_file.h"
#include "core/text_encoding.h"
#include "core/validation.h"

namespace chanplan {

SignalStandardTable OpenTable(const std::filesystem::path& file) {
  ReadOutcome outcome = LoadSigFile(file);
  if (!outcome.Ok()) throw CommandFailure(LoadErrorText(file.string(), 0) + ": " + outcome.Reason);
  if (outcome.Truncated) Note(file.string() + ": " + std::string(FileTruncatedText));
  AlignSubbands(outcome.Table);
  return outcome.Table;
}

void SaveTableAs(SignalStandardTable table, const std::filesystem::path& file) {
  AlignSubbands(table);
  FailUnlessSaved(file, SaveSigFile(file, table));
}

void FailUnlessSaved(const std::filesystem::path& file, std::error_code error) {
  if (error) throw CommandFailure("Error Saving File " + file.string() + ": " + error.message());
}

void Note(const std::string& text) { std::cerr << "chanplan: " << HarmlessText(text) << std::endl; }

std::string PrintedText(std::string_view bytes) {
  std::string text = HarmlessText(Utf8FromWindows1252(bytes));
  std::ranges::replace_if(
      text, [](char byte) { return byte == '\n' || byte == '\t'; }, '?');
  return text;
}

std::string WithLfLineEnds(std::string text) {
  for (std::size_t end = 0; (end = text.find("\r\n", end)) != std::string::npos;) text.erase(end, 1);
  return text;
}

}  // namespace chanplan
