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

std::string HarmlessText(std::string text) {
  for (std::size_t index = 0; index < text.size(); ++index) {
    const auto code = static_cast<unsigned char>(text[index]);
    const bool isUpperControl =
        code == 0xC2 && index + 1 < text.size() && static_cast<unsigned char>(text[index + 1]) < 0xA0;
    if (isUpperControl) text.erase(index, 1);
    if (isUpperControl || code == 127 || (code < 32 && code != '\n' && code != '\t')) text[index] = '?';
  }
  return text;
}

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
