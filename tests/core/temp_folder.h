// A folder of a test's own, and whole files in one call.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <system_error>

namespace chanplan::testing {

/// A new, empty folder that is gone, with all that is in it, when its owner goes.
class TempFolder {
 public:
  explicit TempFolder(const std::filesystem::path& parent = std::filesystem::temp_directory_path()) {
    namespace fs = std::filesystem;
    std::random_device random;
    do folder = parent / ("chanplan-test-" + std::to_string(random()));
    while (!fs::create_directory(folder));
    // Whatever the umask: other users may look in, as tests that give up root's rights need.
    Allow(folder, fs::perms::owner_all | fs::perms::group_read | fs::perms::group_exec | fs::perms::others_read |
                      fs::perms::others_exec);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  ~TempFolder() {
    namespace fs = std::filesystem;
    std::error_code ignored;
    // A test may have locked its folders, and what is in them could then not be removed.
    fs::permissions(folder, fs::perms::owner_all, fs::perm_options::add, ignored);
    for (const auto& entry : fs::recursive_directory_iterator(folder, ignored))
      if (entry.is_directory(ignored) && !entry.is_symlink(ignored))
        fs::permissions(entry, fs::perms::owner_all, fs::perm_options::add, ignored);
    fs::remove_all(folder, ignored);
  }

  const std::filesystem::path& Path() const { return folder; }
  std::filesystem::path operator/(const std::filesystem::path& name) const { return folder / name; }

  /// Sets exactly the rights `rights` on `file`; a symbolic link passes them on to its target.
  static void Allow(const std::filesystem::path& file, std::filesystem::perms rights) {
    std::filesystem::permissions(file, rights);
  }

 private:
  std::filesystem::path folder;
};

/// Where hundreds of saves need not wait for a disk that may be busy.
inline std::filesystem::path FolderInMemory() {
  const std::filesystem::path memory = "/dev/shm";
  return std::filesystem::is_directory(memory) ? memory : std::filesystem::temp_directory_path();
}

inline void WriteFile(const std::filesystem::path& file, std::string_view bytes) {
  std::ofstream output;
  output.exceptions(std::ios::failbit | std::ios::badbit);
  output.open(file, std::ios::binary);
  output.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

/// The bytes of `file`; an exception when it cannot be read.
inline std::string ReadFile(const std::filesystem::path& file) {
  std::ifstream input;
  input.exceptions(std::ios::failbit | std::ios::badbit);
  input.open(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(input), {}};
}

/// The names of all that is in `folder`, hidden files too.
inline std::set<std::string> NamesIn(const std::filesystem::path& folder) {
  std::set<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) names.insert(entry.path().filename().string());
  return names;
}

}  // namespace chanplan::testing
