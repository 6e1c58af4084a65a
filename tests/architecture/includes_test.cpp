// Which folder may include which: the picture in docs/architecture.md, held against the code.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
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
    {"unit", {"core"}, {"serial_port_qt.cpp", "system_timing.cpp"}},
    {"settings", {"unit"}, {"*"}},
    {"report", {"core"}, {"pdf_listing.cpp", "qt_print_surface.h", "qt_print_surface.cpp"}},
    {"simulator", {"core", "unit"}, {}},
    {"console",
     {"core", "unit", "report", "settings"},
     {"qt_application.h", "qt_application.cpp", "show_file_posix.cpp"}},
    {"editor", {"core", "report"}, {"*"}},
    {"app", {"core", "unit", "report", "settings", "editor"}, {"*"}},
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

// The header and the files that implement it are one part: frm_main.h, frm_main.cpp, frm_main_menus.cpp.
std::string PartOf(const fs::path& source, const fs::path& folder) {
  std::string part = source.stem().string();
  while (!fs::exists(folder / (part + ".h")) && part.find('_') != std::string::npos) part.erase(part.rfind('_'));
  return fs::exists(folder / (part + ".h")) ? part : source.stem().string();
}

// The parts of a folder, each with the other parts of the same folder that it includes.
std::map<std::string, std::set<std::string>> PartsOf(const Folder& folder) {
  const fs::path path = fs::path(CHANPLAN_SOURCE_DIR) / folder.Name;
  std::map<std::string, std::set<std::string>> parts;
  for (const fs::path& source : SourcesOf(folder)) {
    const std::string part = PartOf(source, path);
    std::set<std::string>& included = parts[part];
    for (const Include& include : IncludesOf(source))
      // What is not there is made by the build, and includes nothing.
      if (include.Quoted && *fs::path(include.Path).begin() == folder.Name &&
          fs::exists(fs::path(CHANPLAN_SOURCE_DIR) / include.Path))
        if (const std::string other = PartOf(include.Path, path); other != part) included.insert(other);
  }
  return parts;
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

TEST(Includes, GoDownwardsWithinAFolderToo) {
  for (const Folder& folder : Folders) {
    auto parts = PartsOf(folder);
    const auto standsOnNothing = [](const auto& part) { return part.second.empty(); };
    for (auto lowest = parts.begin(); (lowest = std::ranges::find_if(parts, standsOnNothing)) != parts.end();) {
      const std::string name = lowest->first;
      parts.erase(lowest);
      for (auto& [part, included] : parts) included.erase(name);
    }
    for (const auto& [part, included] : parts)
      ADD_FAILURE() << folder.Name << '/' << part << " is in a circle, or above one, with " << *included.begin();
  }
}

// Somebody may set the time of the day while a unit is waited for.
TEST(Waits, AreMeasuredByAClockThatNobodySets) {
  const std::regex clockOfTheDay(
      "system_clock|currentMSecsSinceEpoch|currentTime\\(|gettimeofday|CLOCK_REALTIME|GetSystemTime");
  for (const Folder& folder : Folders)
    for (const fs::path& source : SourcesOf(folder)) {
      std::ifstream input(source);
      const std::string text(std::istreambuf_iterator<char>(input), {});
      EXPECT_FALSE(text.empty()) << source;
      EXPECT_FALSE(std::regex_search(text, clockOfTheDay)) << source;
    }
}

TEST(Includes, EveryFolderHasAReadme) {
  for (const Folder& folder : Folders)
    EXPECT_TRUE(fs::exists(fs::path(CHANPLAN_SOURCE_DIR) / folder.Name / "README.md")) << folder.Name;
}
