// Which folder may include which: the picture in docs/architecture.md, held against the code.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

namespace {

namespace fs = std::filesystem;

struct Folder {
  std::string_view Name;
  std::vector<std::string_view> MayInclude;         // folders of this project, besides itself
  std::vector<std::string_view> PlatformLibraryIn;  // files that may use Qt; "*" = all
};

const std::vector<Folder> Folders = {
    {"core", {}, {}},
    {"unit", {"core"}, {"qt_serial_port.h", "qt_serial_port.cpp"}},
    {"report", {"core"}, {"pdf_listing.cpp", "qt_print_surface.h", "qt_print_surface.cpp"}},
    {"simulator", {"core", "unit"}, {}},
    {"console", {"core", "unit", "report"}, {"qt_application.h", "qt_application.cpp"}},
    {"editor", {"core", "report"}, {"*"}},
    {"app", {"core", "unit", "report", "editor"}, {"*"}},
};

struct Include {
  std::string Path;
  bool Quoted;
};

std::vector<Include> IncludesOf(const fs::path& file) {
  static const std::regex line(R"(^\s*#\s*include\s*([<"])([^>"]+)[>"].*)");
  std::vector<Include> includes;
  std::ifstream input(file);
  std::smatch match;
  for (std::string text; std::getline(input, text);)
    if (std::regex_match(text, match, line)) includes.push_back({match[2], match[1] == "\""});
  return includes;
}

std::vector<fs::path> SourcesOf(const Folder& folder) {
  std::vector<fs::path> sources;
  for (const auto& entry : fs::recursive_directory_iterator(fs::path(CHANPLAN_SOURCE_DIR) / folder.Name))
    if (entry.path().extension() == ".h" || entry.path().extension() == ".cpp") sources.push_back(entry.path());
  return sources;
}

bool Contains(const std::vector<std::string_view>& list, std::string_view item) {
  return std::ranges::find(list, item) != list.end();
}

}  // namespace

TEST(Includes, StayWithinWhatAFolderMayKnow) {
  for (const Folder& folder : Folders) {
    const auto sources = SourcesOf(folder);
    ASSERT_FALSE(sources.empty()) << folder.Name;
    for (const fs::path& source : sources)
      for (const Include& include : IncludesOf(source)) {
        if (!include.Quoted) continue;
        const std::string target = fs::path(include.Path).begin()->string();
        EXPECT_TRUE(target == folder.Name || Contains(folder.MayInclude, target))
            << source << " includes " << include.Path;
      }
  }
}

TEST(Includes, PlatformLibraryOnlyWhereItIsNeeded) {
  int found = 0;
  for (const Folder& folder : Folders)
    for (const fs::path& source : SourcesOf(folder))
      for (const Include& include : IncludesOf(source)) {
        if (include.Quoted || !include.Path.starts_with('Q')) continue;
        ++found;
        EXPECT_TRUE(Contains(folder.PlatformLibraryIn, source.filename().string()) ||
                    Contains(folder.PlatformLibraryIn, "*"))
            << source << " includes " << include.Path;
      }
  EXPECT_GT(found, 0) << "the pattern that finds the includes no longer matches";
}

TEST(Includes, EveryFolderHasAReadme) {
  for (const Folder& folder : Folders)
    EXPECT_TRUE(fs::exists(fs::path(CHANPLAN_SOURCE_DIR) / folder.Name / "README.md")) << folder.Name;
}
