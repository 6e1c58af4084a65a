#include <windows.h>

// Behind it:
#include <knownfolders.h>
#include <shlobj.h>

#include "core/state_folder.h"

namespace chanplan {

std::filesystem::path StateFolder() {
  wchar_t* local = nullptr;
  std::filesystem::path folder;
  if (SHGetKnownFolderPath(FOLDERID_LocalAppData, KF_FLAG_DONT_VERIFY, nullptr, &local) == S_OK)
    folder = std::filesystem::path(local) / "Chanplans";
  CoTaskMemFree(local);
  return folder;
}

}  // namespace chanplan
