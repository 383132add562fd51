#include "core/places/Place.h"

#include "core/places/CleanupTarget.h"
#include "core/places/SuggestionPlaces.h"
#include "support/TreeBuilder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>

namespace spacemint {
namespace {

using support::folder;
using testing::ElementsAre;

// What a place is found at in a tree that has all of these folders.
struct Case {
  Place place;
  std::map<std::string, std::string> variables;
  std::vector<std::string> found;
};

Snapshot ann() {
  return {.root = folder(
              "/home/ann",
              {folder(".cache", {folder("pip", {}), folder("ccache", {})}), folder(".ccache", {}),
               folder(".local", {folder("share", {folder("pnpm", {folder("store", {})})})}),
               folder("alt", {folder("pip", {}), folder("store", {}), folder("pnpm", {folder("store", {})})}),
               folder("conda1", {}), folder("conda2", {})})};
}

TEST(PlaceFinder, followsTheNotationAndTheVariablesThatMoveAPlace) {
  const Place pip{"$cache/pip", "PIP_CACHE_DIR"};
  const Place pnpm{"$data/pnpm/store", "PNPM_HOME/store"};
  const Place conda{"conda1:nowhere:conda2", "CONDA_PKGS_DIRS"};
  const Case cases[]{
      {{".ccache"}, {}, {"/home/ann/.ccache"}},
      {{"nowhere"}, {}, {}},
      {pip, {}, {"/home/ann/.cache/pip"}},
      {pip, {{"XDG_CACHE_HOME", "/home/ann/alt/"}}, {"/home/ann/alt/pip"}},
      {pip, {{"XDG_CACHE_HOME", "alt"}}, {"/home/ann/.cache/pip"}},
      {pip, {{"PIP_CACHE_DIR", "/home/ann/alt/../alt/"}}, {"/home/ann/alt"}},
      {pip, {{"PIP_CACHE_DIR", "/somewhere/else"}}, {}},
      {pip, {{"PIP_CACHE_DIR", ""}}, {"/home/ann/.cache/pip"}},
      // A variable that names what no tool owns must never offer it for cleaning.
      {pip, {{"PIP_CACHE_DIR", "relative"}}, {"/home/ann/.cache/pip"}},
      {pip, {{"PIP_CACHE_DIR", "/home/ann"}}, {"/home/ann/.cache/pip"}},
      {pip, {{"PIP_CACHE_DIR", "/home/ann/"}}, {"/home/ann/.cache/pip"}},
      {pip, {{"PIP_CACHE_DIR", "/home/ann/alt/.."}}, {"/home/ann/.cache/pip"}},
      {pip, {{"PIP_CACHE_DIR", "/"}}, {"/home/ann/.cache/pip"}},
      {pip, {{"PIP_CACHE_DIR", "//home"}}, {"/home/ann/.cache/pip"}},
      {pnpm, {}, {"/home/ann/.local/share/pnpm/store"}},
      {pnpm, {{"PNPM_HOME", "/home/ann/alt"}}, {"/home/ann/alt/store"}},
      {pnpm, {{"XDG_DATA_HOME", "/home/ann/alt"}}, {"/home/ann/alt/pnpm/store"}},
      {conda, {}, {"/home/ann/conda1", "/home/ann/conda2"}},
      {conda, {{"CONDA_PKGS_DIRS", "/home/ann/conda2:/x"}}, {"/home/ann/conda2"}},
      {{"nowhere", "A|B/store"}, {{"B", "/home/ann/alt"}}, {"/home/ann/alt/store"}},
      {{"nowhere", "A|B/store"}, {{"A", "/home/ann/conda1"}, {"B", "/home/ann/alt"}}, {"/home/ann/conda1"}},
      {{".ccache|$cache/ccache"}, {}, {"/home/ann/.ccache"}},
      {{".nothing|$cache/ccache"}, {}, {"/home/ann/.cache/ccache"}},
  };
  const Snapshot scan = ann();
  for (const Case& each : cases) {
    for (const char* home : {"/home/ann", "/home/ann/"}) {
      const PlaceFinder finder{scan, home, [&](const std::string& name) -> std::optional<std::string> {
                                 const auto found = each.variables.find(name);
                                 return found == each.variables.end() ? std::nullopt
                                                                      : std::optional{found->second};
                               }};
      std::vector<std::string> found;
      for (const auto& place : finder.find(each.place)) found.push_back(place.path);
      EXPECT_EQ(found, each.found) << each.place.path << ' ' << testing::PrintToString(each.variables);
    }
  }
}

TEST(PlaceFinder, findsHomeOnTheDataVolumeAndAbsolutePlacesUnderTheRoot) {
  const Snapshot mac{
      .root = folder("/System/Volumes/Data", {folder("Users", {folder("ann", {folder("Downloads", {})})})})};
  EXPECT_EQ(PlaceFinder(mac, "/Users/ann", {}).findOne({"Downloads"})->path,
            "/System/Volumes/Data/Users/ann/Downloads");
  const Snapshot disk{.root = folder("/", {folder("var", {folder("log", {folder("journal", {})})})})};
  EXPECT_EQ(PlaceFinder(disk, "/home/ann", {}).findOne({"/var/log/journal"})->path, "/var/log/journal");
  EXPECT_FALSE(PlaceFinder(ann(), "/home/ann", {}).findOne({"/var/log/journal"}));
}

// Emptying by path is for what a tool fills again from nothing: never for these, nor for what holds them.
TEST(CleanupTargets, emptyNoFolderThatHoldsMoreThanACache) {
  const char* precious[]{".cache",
                         ".cache/huggingface/token",
                         ".m2/settings.xml",
                         ".cargo/bin",
                         ".cargo/credentials.toml",
                         ".cargo/config.toml",
                         ".gradle/gradle.properties",
                         ".gradle/init.d",
                         ".ollama/id_ed25519",
                         ".local/share/uv",
                         ".local/share/containers/storage"};
  std::set<std::string_view> ids;
  for (const CleanupTarget& target : cleanupTargets) {
    EXPECT_TRUE(ids.insert(target.id).second) << target.id;
    if (!std::holds_alternative<CleanupTarget::DeleteContents>(target.action)) continue;
    std::string path{target.place.path};
    if (path.starts_with("$cache")) path.replace(0, 6, ".cache");
    EXPECT_FALSE(path.starts_with('/') || path.starts_with("$data")) << path;
    for (const std::string_view kept : precious) {
      EXPECT_FALSE((std::string{kept} + "/").starts_with(path + "/")) << path << " holds " << kept;
    }
  }
}

TEST(CleanupTargets, readLikeWhatAPersonWouldType) {
  const auto* brew = std::ranges::find(cleanupTargets, "homebrew", &CleanupTarget::id);
  EXPECT_EQ(brew->commandLine(), "brew cleanup --prune=all");
  const auto& command = std::get<CleanupTarget::Command>(brew->action);
  EXPECT_EQ(command.program(), "brew");
  EXPECT_THAT(command.arguments(), ElementsAre("cleanup", "--prune=all"));
  EXPECT_EQ(cleanupTargets.front().commandLine(), std::nullopt);
}

}  // namespace
}  // namespace spacemint
