#include <windows.h>

// Behind it:
#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>

#include "console/terminal.h"
#include "core/windows_text.h"

namespace chanplan {
namespace {

UINT formerCodePage = 0;

bool IsTerminal(DWORD stream) {
  DWORD mode = 0;
  return GetConsoleMode(GetStdHandle(stream), &mode) != 0;
}

std::filesystem::path FileOf(DWORD stream) {
  std::wstring name(32768, L'\0');
  const HANDLE handle = GetStdHandle(stream);
  const bool isFile = GetFileType(handle) == FILE_TYPE_DISK;
  name.resize(isFile ? GetFinalPathNameByHandleW(handle, name.data(), static_cast<DWORD>(name.size()), 0) : 0);
  return name;
}

// No command prompt here knows files by wildcards. What fits none stays as it is.
std::vector<std::string> FilesThatFit(const std::wstring& argument) {
  const std::size_t name = argument.find_last_of(L"\\/:") + 1;
  std::vector<std::string> files;
  WIN32_FIND_DATAW found{};
  const bool isWild = argument.find_first_of(L"*?", name) != std::wstring::npos && !argument.starts_with(L"-");
  const HANDLE search = isWild ? FindFirstFileW(argument.c_str(), &found) : INVALID_HANDLE_VALUE;
  if (search == INVALID_HANDLE_VALUE) return {Utf8FromWide(argument)};
  do {
    if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
      files.push_back(Utf8FromWide(argument.substr(0, name) + found.cFileName));
  } while (FindNextFileW(search, &found));
  FindClose(search);
  std::ranges::sort(files);
  return files;
}

}  // namespace

// Those of `main` are in the code page of the machine, which lacks most letters.
std::vector<std::string> ProgramArguments(int /*argc*/, char** /*argv*/) {
  int count = 0;
  wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int index = 1; index < count; ++index)
    for (std::string& file : FilesThatFit(wide[index])) arguments.push_back(std::move(file));
  LocalFree(wide);
  return arguments;
}

void PrepareStandardStreams() {
  for (const int stream : {0, 1, 2}) _setmode(stream, _O_BINARY);
  std::ios::sync_with_stdio(false);  // which would put letters of several bytes on the console in pieces
  // The console is the user's, and stays when the program has ended.
  formerCodePage = GetConsoleOutputCP();
  if (formerCodePage == 0 || !SetConsoleOutputCP(CP_UTF8)) return;
  std::atexit([] { SetConsoleOutputCP(formerCodePage); });
}

bool StandardErrorIsTerminal() { return IsTerminal(STD_ERROR_HANDLE); }
bool StandardOutputIsTerminal() { return IsTerminal(STD_OUTPUT_HANDLE); }

std::filesystem::path FileOfStandardInput() { return FileOf(STD_INPUT_HANDLE); }
std::filesystem::path FileOfStandardOutput() { return FileOf(STD_OUTPUT_HANDLE); }

}  // namespace chanplan
