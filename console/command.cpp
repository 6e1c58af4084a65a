#include "console/command.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <iostream>

#include "console/terminal.h"
#include "core/file_system.h"
#include "core/sig_file.h"
#include "core/text_encoding.h"
#include "core/validation.h"

namespace chanplan {
namespace {

// Bytes that are no UTF-8 could move the cursor as control characters do.
bool IsForATerminal(std::string_view bytes) {
  return std::ranges::none_of(Utf32FromUtf8(bytes), [](char32_t code) {
    const bool isLineOrTab = code == '\n' || code == '\r' || code == '\t';
    return (code < 32 && !isLineOrTab) || (code >= 127 && code < 160) || code == U'\uFFFD';
  });
}

ReadOutcome ReadStandardInput() {
  errno = 0;
  ReadOutcome outcome = ReadSigTable(std::cin);
  if (std::ferror(stdin) == 0) return outcome;
  ReadOutcome failed;
  failed.Failure = ReadFailure::CannotRead;
  failed.Reason = std::generic_category().message(errno);
  return failed;
}

}  // namespace

std::string PrintedName(const std::filesystem::path& file) {
  return file == StandardStream ? "(standard input)" : file.string();
}

OpenedTable OpenQuietly(const std::filesystem::path& file) {
  // What is printed would get into the table that is read.
  RefuseOwnTable(file, StandardStream);
  ReadOutcome outcome = file == StandardStream ? ReadStandardInput() : LoadSigFile(file);
  if (!outcome.Ok()) throw CommandFailure(LoadErrorText(PrintedName(file), 0) + ": " + outcome.Reason);
  if (outcome.Truncated) Note(PrintedName(file) + ": " + std::string(FileTruncatedText));
  AlignSubbands(outcome.Table);
  return {std::move(outcome.Table), std::move(outcome.Notes), outcome.RowsLeftOut};
}

OpenedTable OpenWithNotes(const std::filesystem::path& file) {
  OpenedTable opened = OpenQuietly(file);
  for (const std::string& note : opened.Notes) Note(PrintedName(file) + ": " + note);
  return opened;
}

int ExitCodeOf(const OpenedTable& opened) { return opened.RowsLeftOut > 0 ? ExitRowsLost : ExitDone; }

void RefuseStandardInputTwice(const std::filesystem::path& one, const std::filesystem::path& other) {
  if (one == StandardStream && other == StandardStream)
    throw CommandFailure("standard input can be one of the two tables, not both");
}

int ExitCodeAfterLoss(int count) {
  if (count == 0) return ExitDone;
  Note(std::to_string(count) + (count == 1 ? " row was lost" : " rows were lost") + ": a table holds 200");
  return ExitRowsLost;
}

int ExitCodeAfterMerge(int withoutRoom, int nameless) {
  const int exitCode = ExitCodeAfterLoss(withoutRoom);
  if (nameless == 0) return exitCode;
  Note(std::to_string(nameless) + (nameless == 1 ? " row" : " rows") + " without a name had to be left out");
  return ExitRowsLost;
}

// The library would have its texts taken for another encoding on Windows.
void AddFilesArgument(CLI::App& command, const std::string& name, std::vector<std::filesystem::path>& files,
                      const std::string& description) {
  const auto take = [&files](const std::vector<std::string>& given) {
    for (const std::string& file : given) files.emplace_back(std::u8string(file.begin(), file.end()));
  };
  command.add_option_function<std::vector<std::string>>(name, take, description)->required();
}

void AddFileArgument(CLI::App& command, const std::string& name, std::filesystem::path& file,
                     const std::string& description) {
  const auto take = [&file](const std::string& given) { file = std::u8string(given.begin(), given.end()); };
  command.add_option_function<std::string>(name, take, description)->required();
}

std::shared_ptr<bool> AddOpenOption(CLI::App& command) {
  auto open = std::make_shared<bool>(false);
  command.add_flag("--open", *open, "show OUT in the program that the desktop has for it");
  return open;
}

void RefuseToShow(const std::filesystem::path& out) {
  if (out == StandardStream) throw CommandFailure("standard output cannot be opened: name a file with --open");
}

std::shared_ptr<bool> AddFormatOption(CLI::App& command, const std::string& plain) {
  auto json = std::make_shared<bool>(false);
  command
      .add_option_function<std::string>(
          "--format", [json](const std::string& name) { *json = name == "json"; },
          plain + " (unless another is named) or json")
      ->check(CLI::IsMember({plain, std::string("json")}));
  return json;
}

std::string JsonString(std::string_view text) {
  std::string json = "\"";
  for (const char32_t code : Utf32FromUtf8(text)) {  // a file's name may be no UTF-8
    constexpr std::string_view hexadecimal = "0123456789abcdef";
    if (code == '"' || code == '\\')
      json.append(1, '\\').append(1, static_cast<char>(code));
    else if (code < 32)
      json.append("\\u00").append(1, hexadecimal[code / 16]).append(1, hexadecimal[code % 16]);
    else
      AppendUtf8(json, code);
  }
  return json + '"';
}

std::string JsonStrings(const std::vector<std::string>& texts) {
  std::string json;
  for (const std::string& text : texts) json.append(json.empty() ? "" : ", ").append(JsonString(text));
  return "[" + json + "]";
}

void SaveTableAs(SignalStandardTable table, const std::filesystem::path& file) {
  AlignSubbands(table);
  const std::string bytes = WriteSigTable(table);
  if (HasTooLongLine(bytes)) FailUnlessSaved(file, std::make_error_code(std::errc::value_too_large));
  SaveBytes(file, bytes);
}

void SaveBytes(const std::filesystem::path& out, std::string_view bytes) {
  if (out != StandardStream) return FailUnlessSaved(out, ReplaceFile(out, bytes));
  if (StandardOutputIsTerminal() && !IsForATerminal(bytes))
    throw CommandFailure("a terminal cannot show all of it: name a file, or use a pipe");
  std::cout << bytes;  // `main` sees to it that all of it arrives
}

void FailUnlessSaved(const std::filesystem::path& file, std::error_code error) {
  if (error) throw CommandFailure("Error Saving File " + file.string() + ": " + error.message());
}

void RefuseOwnTable(const std::filesystem::path& file, const std::filesystem::path& out) {
  const std::filesystem::path from = file == StandardStream ? FileOfStandardInput() : file;
  const std::filesystem::path to = out == StandardStream ? FileOfStandardOutput() : out;
  // A terminal or a null device may well be both.
  if (std::error_code none; std::filesystem::is_regular_file(from, none) && AreSameFile(from, to))
    throw CommandFailure(to.string() + " is the table itself, which it would take the place of: nothing was written");
}

std::string CaptionOf(const std::filesystem::path& file) {
  return file == StandardStream ? PrintedName(file) : CaptionOfFile(file);
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
