// Measures queries and edits of a snapshot of 100,000 nodes.

#include "core/tree/Snapshot.h"

#include <algorithm>
#include <chrono>
#include <iomanip>
#include <iostream>

namespace {

using namespace spacemint;

// A tree with ten files and ten folders in each folder, down to the given depth.
Node treeOf(std::string name, int depth) {
  Node node{.name = std::move(name), .isDirectory = true};
  for (int i = 0; i < 10; ++i) {
    node.children.push_back({.name = "file-" + std::to_string(i), .size = 20'000'000 + i * 1'000});
    if (depth > 0) node.children.push_back(treeOf("folder-" + std::to_string(i), depth - 1));
  }
  for (const Node& child : node.children) {
    node.size += child.size;
    node.fileCount += child.isDirectory ? child.fileCount : 1;
  }
  sortBySize(node.children);
  return node;
}

template <class Action>
void measure(const char* name, Action action) {
  std::vector<double> times;
  for (int run = 0; run < 15; ++run) {
    const auto start = std::chrono::steady_clock::now();
    action();
    times.push_back(
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
  }
  std::ranges::sort(times);
  std::cout << std::left << std::setw(34) << name << std::right << std::fixed << std::setprecision(4)
            << std::setw(10) << times[times.size() / 2] << " ms\n";
}

}  // namespace

int main() {
  Snapshot snapshot{.root = treeOf("/home/ann", 3), .minNodeSize = 20'000'000};
  Node flat{.name = "flat", .isDirectory = true};
  for (int i = 0; i < 90'000; ++i)
    flat.children.push_back({.name = std::to_string(i), .size = 40'000'000 - i});
  flat.size = 1;
  snapshot.root.children.push_back(std::move(flat));
  snapshot.minNodeSize = 0;
  sortBySize(snapshot.root.children);

  const std::string deep = "/home/ann/folder-7/folder-7/folder-7/file-3";
  const std::string inFlat = "/home/ann/flat/89999";
  std::size_t nodes = 0;
  measure("flattened", [&] { nodes = snapshot.flattened().size(); });
  measure("largestFiles(100)", [&] { nodes = std::max(nodes, snapshot.largestFiles(100).size()); });
  measure("nodeAt, four levels down", [&] { nodes += snapshot.nodeAt(deep) == nullptr; });
  measure("nodeAt, last of 90,000 siblings", [&] { nodes += snapshot.nodeAt(inFlat) == nullptr; });
  Bytes size = 20'000'000;
  measure("replace, four levels down", [&] { snapshot.replace(deep, {.size = ++size}); });
  measure("replace among 90,000 siblings", [&] { snapshot.replace(inFlat, {.size = size *= 2}); });
  measure("upsert and remove", [&] {
    snapshot.upsert("/home/ann/folder-7/new", {.size = 30'000'000});
    snapshot.remove("/home/ann/folder-7/new");
  });
  std::cout << "nodes: " << nodes << '\n';
}
