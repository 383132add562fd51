#include "core/places/Place.h"

#include "core/analysis/DevTools.h"
#include "core/analysis/Suggestions.h"
#include "core/places/CleanupTarget.h"
#include "core/places/SuggestionPlaces.h"
#include "support/TreeBuilder.h"

#include <gmock/gmock.h>

#include <map>
#include <set>

namespace spacemint {
namespace {

using support::file;
using support::folder;
using testing::ElementsAre;

constexpr Bytes megabyte = 1'000'000;

std::vector<std::string> ids(const Snapshot& scan, Bytes minimum = 0) {
  std::vector<std::string> result;
  for (const auto& each : Suggestions::find({.in = scan, .home = "/home/ann", .minimum = minimum})) {
    result.push_back(each.id);
  }
  return result;
}

TEST(Suggestions, keepWhatReachesTheMinimumAllLocationsTogether) {
  std::vector<Node> projects;
  for (int i = 0; i < 10; ++i) {
    projects.push_back(
        folder("p" + std::to_string(i), {folder("node_modules", {file("f", (60 + i) * megabyte)})}));
  }
  const Snapshot scan{.root = folder("/home/ann", {folder("code", std::move(projects)),
                                                   folder("Downloads", {file("iso", 500 * megabyte)}),
                                                   folder(".npm", {file("c", 500 * megabyte - 1)})})};
  const auto found = Suggestions::find({.in = scan, .home = "/home/ann/", .minimum = 500 * megabyte});
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[0].id, "node_modules");
  EXPECT_EQ(found[0].size(), 645 * megabyte);
  EXPECT_EQ(found[0].locations.size(), 10U);
  EXPECT_EQ(found[0].locations.front(),
            (Suggestion::Location{"/home/ann/code/p9/node_modules", 69 * megabyte}));
  EXPECT_EQ(found[1].locations, (std::vector{Suggestion::Location{"/home/ann/Downloads", 500 * megabyte}}));
}

TEST(Suggestions, countProjectFoldersOnceAndByTheirExactName) {
  const Snapshot scan{
      .root = folder(
          "/",
          {folder("srv", {folder("node_modules", {folder("a", {folder("node_modules", {file("x", 9)})})}),
                          folder("venv", {file("x", 9)}), folder(".venv", {file("x", 7)}),
                          folder("b", {file("node_modules", 9)})})})};
  const auto found = Suggestions::find({.in = scan, .home = "/home/ann"});
  ASSERT_EQ(found.size(), 2U);
  EXPECT_THAT(found[0].locations, ElementsAre(Suggestion::Location{"/srv/node_modules", 9}));
  EXPECT_THAT(found[1].locations, ElementsAre(Suggestion::Location{"/srv/.venv", 7}));
}

TEST(Suggestions, nameTheTrashOnceWhereverItIsAndKeepTheTablesOrderAmongEqualSizes) {
  const Node xdgTrash = folder(".local", {folder("share", {folder("Trash", {})})});
  EXPECT_THAT(ids({.root = folder("/home/ann", {xdgTrash, folder(".npm", {}), folder("Downloads", {})})}),
              ElementsAre("downloads", "npm", "trash"));
  EXPECT_THAT(ids({.root = folder("/home/ann", {xdgTrash, folder(".Trash", {}), folder("snap", {})})}),
              ElementsAre("trash", "snap-data"));
  EXPECT_THAT(
      ids({.root = folder(
               "/", {folder("var", {folder("lib", {folder("docker", {}), folder("containerd", {})})})})}),
      ElementsAre("docker-system"));
}

TEST(Suggestions, sayWhatIsHiddenInTheTrash) {
  const std::vector<Node> items{file(".DS_Store", 1), file(".hidden", 20), folder("..odd", {file("x", 5)}),
                                file("photo.jpg", 300)};
  const Snapshot plain{.root = folder("/home/ann", {folder(".Trash", items)})};
  const auto trash = Suggestions::trash({.in = plain, .home = "/home/ann"});
  ASSERT_TRUE(trash);
  EXPECT_EQ(trash->size, 326);
  EXPECT_THAT(trash->hiddenItems, ElementsAre(Suggestion::Location{"/home/ann/.Trash/.hidden", 20},
                                              Suggestion::Location{"/home/ann/.Trash/..odd", 5}));
  EXPECT_EQ(trash->hiddenSize(), 25);

  const Snapshot xdg{
      .root =
          folder("/home/ann", {folder("data", {folder("Trash", {folder("files", items), file(".x", 9)})})})};
  const auto moved =
      Suggestions::trash({.in = xdg, .home = "/home/ann", .environment = [](const std::string&) {
                            return std::optional<std::string>{"/home/ann/data"};
                          }});
  ASSERT_TRUE(moved);
  EXPECT_EQ(moved->path, "/home/ann/data/Trash");
  EXPECT_EQ(moved->size, 335);
  EXPECT_EQ(moved->hiddenSize(), 25);
  EXPECT_EQ(moved->hiddenItems.front().path, "/home/ann/data/Trash/files/.hidden");
  EXPECT_FALSE(Suggestions::trash({.in = xdg, .home = "/home/ann"}));
}

TEST(DevTools, offerCachesFromTheMinimumUpLargestFirst) {
  const Snapshot scan{
      .root = folder("/home/ann", {folder(".npm", {folder("_cacache", {file("f", 50 * megabyte)})}),
                                   folder(".cache", {folder("uv", {file("f", 50 * megabyte - 1)}),
                                                     folder("yarn", {file("f", 60 * megabyte)}),
                                                     folder("pip", {file("f", 50 * megabyte)})}),
                                   folder("miniconda3", {folder("pkgs", {file("f", 70 * megabyte)})}),
                                   folder(".conda", {folder("pkgs", {file("f", 51 * megabyte)})})})};
  std::vector<std::string> found;
  for (const auto& each : DevTools::cleanups({.in = scan, .home = "/home/ann", .minimum = 50 * megabyte})) {
    found.push_back(std::string{each.id()} + " " + each.path);
  }
  EXPECT_THAT(found, ElementsAre("conda /home/ann/miniconda3/pkgs", "yarn-xdg /home/ann/.cache/yarn",
                                 "npm /home/ann/.npm/_cacache", "pip-xdg /home/ann/.cache/pip"));
}

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
  std::set<std::string_view> ids;
  for (const CleanupTarget& target : cleanupTargets) {
    EXPECT_TRUE(ids.insert(target.id).second) << target.id;
    if (!std::holds_alternative<CleanupTarget::DeleteContents>(target.action)) continue;
    std::string path{target.place.path};
    if (path.starts_with("$cache")) path.replace(0, 6, ".cache");
    EXPECT_FALSE(path.starts_with('/') || path.find_first_of("$|:") != std::string::npos) << path;
    for (const std::string kept :
         {".cache", ".cache/huggingface/token", ".m2/settings.xml", ".cargo/bin", ".cargo/credentials.toml",
          ".cargo/config.toml", ".gradle/gradle.properties", ".gradle/init.d", ".ollama/id_ed25519",
          ".local/share/uv", ".local/share/containers/storage"}) {
      EXPECT_FALSE((kept + "/").starts_with(path + "/")) << path << " holds " << kept;
    }
  }
}

}  // namespace
}  // namespace spacemint
