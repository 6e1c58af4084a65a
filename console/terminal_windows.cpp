#include <windows.h>

// Behind it:
#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <cstdlib>

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

}  // namespace

// Those of `main` are in the code page of the machine, which lacks most letters.
std::vector<std::string> ProgramArguments(int /*argc*/, char** /*argv*/) {
  int count = 0;
  wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int index = 1; index < count; ++index) arguments.push_back(Utf8FromWide(wide[index]));
  LocalFree(wide);
  return arguments;
}

void PrepareStandardStreams() {
  for (const int stream : {0, 1, 2}) _setmode(stream, _O_BINARY);
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
