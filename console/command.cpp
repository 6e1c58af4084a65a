#include "console/command.h"

#include <algorithm>
#include <iostream>

#include "core/file_system.h"
#include "core/sig_file.h"
#include "core/text_encoding.h"
#include "core/validation.h"

namespace chanplan {
namespace {

[[noreturn]] void FailToSave(const std::filesystem::path& file, std::error_code error) {
  throw CommandFailure("Error Saving File " + file.string() + ": " + error.message());
}

std::string PrintedName(const std::filesystem::path& file) {
  return file == StandardStream ? "(standard input)" : file.string();
}

}  // namespace

SignalStandardTable OpenTable(const std::filesystem::path& file) {
  ReadOutcome outcome = file == StandardStream ? ReadSigTable(std::cin) : LoadSigFile(file);
  if (!outcome.Ok()) throw CommandFailure(LoadErrorText(PrintedName(file), 0) + ": " + outcome.Reason);
  if (outcome.Truncated) Note(PrintedName(file) + ": " + std::string(FileTruncatedText));
  AlignSubbands(outcome.Table);
  return outcome.Table;
}

void SaveTableAs(SignalStandardTable table, const std::filesystem::path& file) {
  AlignSubbands(table);
  const std::string bytes = WriteSigTable(table);
  if (HasTooLongLine(bytes)) FailToSave(file, std::make_error_code(std::errc::value_too_large));
  SaveBytes(file, bytes);
}

void SaveBytes(const std::filesystem::path& out, std::string_view bytes) {
  if (out == StandardStream)
    std::cout << bytes;  // `main` sees to it that all of it arrives
  else if (const std::error_code error = ReplaceFile(out, bytes))
    FailToSave(out, error);
}

void RefuseOwnTable(const std::filesystem::path& file, const std::filesystem::path& out) {
  if (AreSameFile(file, out))
    throw CommandFailure(out.string() + " is the table itself, which it would take the place of: nothing was written");
}

std::string CaptionOf(const std::filesystem::path& file) {
  return file == StandardStream ? PrintedName(file) : CaptionOfFile(file);
}

void Note(const std::string& text) { std::cerr << "chanplan: " << text << std::endl; }

std::string PrintedText(std::string_view bytes) {
  std::string text(bytes);
  const auto isControl = [](char byte) {
    const auto code = static_cast<unsigned char>(byte);
    // The code page leaves five of the upper codes to control characters.
    constexpr std::string_view unused = "\x81\x8D\x8F\x90\x9D";
    return code < 32 || code == 127 || unused.find(byte) != std::string_view::npos;
  };
  std::ranges::replace_if(text, isControl, '?');
  return Utf8FromWindows1252(text);
}

std::string WithLfLineEnds(std::string text) {
  for (std::size_t end = 0; (end = text.find("\r\n", end)) != std::string::npos;) text.erase(end, 1);
  return text;
}

}  // namespace chanplan
