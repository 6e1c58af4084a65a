#include "core/folder_content.h"

#include <system_error>

namespace chanplan {

namespace fs = std::filesystem;

std::vector<fs::path> ContentOf(const fs::path& folder) {
  std::vector<fs::path> content;
  std::error_code error;  // a folder far away may be lost in the middle
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
    content.push_back(entry->path());
  return content;
}

}  // namespace chanplan
