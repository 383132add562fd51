// Measures all analyses on a scan of 100,000 nodes. Together they may take 150 ms on one thread.

#include "core/analysis/Changes.h"
#include "core/analysis/DevTools.h"
#include "core/analysis/DeviceBackups.h"
#include "core/analysis/GitWorktrees.h"
#include "core/analysis/HuggingFace.h"
#include "core/analysis/Search.h"
#include "core/analysis/Suggestions.h"
#include "core/tree/TreeWalk.h"

#include <algorithm>
#include <chrono>
#include <iomanip>
#include <iostream>

namespace {

using namespace spacemint;

constexpr const char* home = "/home/ann";
constexpr double allowedMilliseconds = 150;

// A tree with ten files and ten folders in each folder, down to the given depth; some folders are project
// folders and worktrees.
Node treeOf(std::string name, int depth, Bytes fileSize) {
  Node node{.name = std::move(name), .isDirectory = true};
  for (int i = 0; i < 10; ++i) {
    node.children.push_back({.name = "file-" + std::to_string(i), .size = fileSize + i * 1'000});
    if (depth == 0) continue;
    const bool isProject = depth == 1 && i == 9;
    node.children.push_back(
        treeOf(isProject ? "node_modules" : "folder-" + std::to_string(i), depth - 1, fileSize));
  }
  node.isWorktree = depth == 1;
  for (const Node& child : node.children) {
    node.size += child.size;
    node.fileCount += child.isDirectory ? child.fileCount : 1;
  }
  sortBySize(node.children);
  return node;
}

// Between two of these scans every item grows a little and no child accounts for most of the growth, which is
// the most expensive case for the growth search.
Snapshot scanOf(Bytes fileSize) {
  Node root = treeOf(home, 3, fileSize);
  Node flat{.name = "flat", .isDirectory = true};
  for (int i = 0; i < 88'000; ++i) flat.children.push_back({.name = std::to_string(i), .size = fileSize + i});
  for (const Node& child : flat.children) flat.size += child.size;
  root.size += flat.size;
  root.children.push_back(std::move(flat));
  sortBySize(root.children);
  return {.root = std::move(root), .minNodeSize = 20'000'000};
}

double measure(const char* name, const std::function<std::size_t()>& action) {
  std::vector<double> times;
  std::size_t found = 0;
  for (int run = 0; run < 15; ++run) {
    const auto start = std::chrono::steady_clock::now();
    found = action();
    times.push_back(
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
  }
  std::ranges::sort(times);
  std::cout << std::left << std::setw(20) << name << std::right << std::fixed << std::setprecision(3)
            << std::setw(10) << times[times.size() / 2] << " ms  " << found << " found\n";
  return times[times.size() / 2];
}

}  // namespace

int main() {
  const Snapshot before = scanOf(20'000'000);
  const Snapshot now = scanOf(21'000'000);
  std::size_t nodes = 0;
  walkTree(now.root, [&](const std::string&, const Node&) { ++nodes; });
  std::cout << "nodes: " << nodes << '\n';

  // Do not measure the reading of git's files.
  const auto inspect = [](const std::string& path, Bytes size) {
    return std::optional{GitWorktree{.path = path, .size = size}};
  };
  double all = 0;
  all += measure("growth", [&] {
    return Changes::growth({.from = before, .to = now, .minimum = 100'000'000, .limit = 10}).size();
  });
  all += measure("growth of everything", [&] {
    return Changes::growth({.from = before, .to = now, .minimum = 0, .limit = 1'000'000}).size();
  });
  all += measure("suggestions",
                 [&] { return Suggestions::find({.in = now, .home = home, .minimum = 500'000'000}).size(); });
  all += measure("trash",
                 [&] { return std::size_t{Suggestions::trash({.in = now, .home = home}).has_value()}; });
  all += measure("backups", [&] { return DeviceBackups::find({.in = now, .home = home}).size(); });
  all += measure("worktrees", [&] {
    return GitWorktrees::find({.in = now, .minimum = 100'000'000, .inspect = inspect}).size();
  });
  all += measure("caches",
                 [&] { return DevTools::cleanups({.in = now, .home = home, .minimum = 50'000'000}).size(); });
  all += measure("hugging face", [&] { return DevTools::huggingFace({.in = now, .home = home}).size(); });
  all += measure("largest files", [&] { return now.largestFiles(100).size(); });
  const FileKinds& kinds = FileKinds::ofThisSystem();
  all += measure("kinds of files", [&] { return kindTotals(now.root, kinds).size(); });
  for (const char* words : {"f", "folder-7", "*9", ">20.5MB type:other", "older:1y"}) {
    // What happens at each keystroke.
    measure(words, [&] {
      std::size_t found = 0;
      search(now, parseSearch(words).value(), kinds, now.date, 500, &found);
      return found;
    });
  }
  std::cout << "all together " << all << " ms, " << std::setprecision(2) << all / allowedMilliseconds
            << " of what they may take\n";
}
