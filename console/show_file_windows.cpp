#include <windows.h>

// Behind it:
#include <objbase.h>
#include <shellapi.h>

#include "console/command.h"
#include "core/windows_text.h"

namespace chanplan {

void ShowFile(const std::filesystem::path& file) {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE);  // some programs are started through it
  const std::filesystem::path whole = std::filesystem::absolute(file);
  constexpr INT_PTR lastFailure = 32;
  if (reinterpret_cast<INT_PTR>(ShellExecuteW(nullptr, L"open", whole.c_str(), nullptr, nullptr, SW_SHOWNORMAL)) <=
      lastFailure)
    throw CommandFailure(file.string() + " was written, but cannot be shown: " + LastError().message());
}

}  // namespace chanplan
