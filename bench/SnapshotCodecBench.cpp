// Measures the time and memory for encoding and decoding a scan of 50,000 nodes.
//
// The tree resembles a home folder scanned with a low limit: four of five nodes are files, names are 4 to 27
// bytes long, one name in twenty is not ASCII, and folders have about 5 children. The tree is the same in
// each run and on each machine.

#include "core/history/SnapshotCodec.h"

#include <malloc.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <random>

namespace {

std::atomic<std::size_t> heapNow{0};
std::atomic<std::size_t> heapPeak{0};

void* counted(std::size_t size) {
  void* block = std::malloc(size);
  if (block == nullptr) throw std::bad_alloc{};
  const std::size_t now = heapNow += malloc_usable_size(block);
  if (now > heapPeak) heapPeak = now;
  return block;
}

void uncounted(void* block) {
  if (block != nullptr) heapNow -= malloc_usable_size(block);
  std::free(block);
}

}  // namespace

void* operator new(std::size_t size) {
  return counted(size);
}
void operator delete(void* block) noexcept {
  uncounted(block);
}
void operator delete(void* block, std::size_t /*size*/) noexcept {
  uncounted(block);
}

namespace spacemint {
namespace {

constexpr std::size_t nodeCount = 50'000;
constexpr int runs = 15;

class HomeFolder {
 public:
  Snapshot snapshot() {
    Snapshot result{.date = Date{std::chrono::microseconds{1'700'000'000'123'456}},
                    .duration = Seconds{12.25},
                    .volumeFree = 123'456'789'012,
                    .volumeTotal = 500'000'000'000,
                    .minNodeSize = 20'000'000};
    result.root = {.name = "/home/ann", .isDirectory = true};
    while (nodes_ < nodeCount) fill(result.root, 0);
    result.fileCount = result.root.fileCount;
    return result;
  }

 private:
  std::size_t below(std::size_t limit) { return static_cast<std::size_t>(random_() % limit); }

  std::string name() {
    constexpr std::array<const char*, 6> words{"report", "IMG_", "node", "cache", "build-", "v"};
    std::string text = words.at(below(words.size())) + std::to_string(below(1'000'000));
    if (below(20) == 0) text += "_caf\u00e9";
    if (below(2) == 0) text += ".archive.tar";
    return text;
  }

  void fill(Node& folder, int depth) {
    const std::size_t count = 1 + below(9);
    for (std::size_t i = 0; i < count && nodes_ < nodeCount; ++i, ++nodes_) {
      Node node{.name = name(), .size = static_cast<Bytes>(20'000'000 + below(5'000'000'000))};
      if (depth < 12 && below(5) == 0) {
        node.isDirectory = true;
        fill(node, depth + 1);
      } else {
        node.modified = dateFromUnixSeconds(static_cast<std::int64_t>(1'500'000'000 + below(200'000'000)));
      }
      folder.size += node.size;
      folder.fileCount += node.isDirectory ? node.fileCount : 1;
      folder.children.push_back(std::move(node));
    }
  }

  std::mt19937 random_{42};
  std::size_t nodes_ = 1;
};

struct Measure {
  double milliseconds = 0;
  std::size_t peak = 0;  // bytes of heap, without those in use before
};

template <class Work>
Measure median(Work work) {
  std::array<Measure, runs> results{};
  for (Measure& result : results) {
    const std::size_t before = heapNow;
    heapPeak = before;
    const auto start = std::chrono::steady_clock::now();
    const auto product = work();
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
    if (!product) std::abort();
    result = {.milliseconds = took.count(), .peak = heapPeak - before};
  }
  std::ranges::sort(results, {}, &Measure::milliseconds);
  return results.at(runs / 2);
}

void print(const char* what, const Measure& measure, std::size_t documentSize) {
  const auto size = static_cast<double>(documentSize);
  std::printf("%-8s %10.1f %12.0f %14.1f %12.2f\n", what, measure.milliseconds,
              size / 1e6 / (measure.milliseconds / 1e3), static_cast<double>(measure.peak) / 1e6,
              static_cast<double>(measure.peak) / size);
}

int run() {
  const Snapshot snapshot = HomeFolder{}.snapshot();
  const auto document = SnapshotCodec::encode(snapshot);
  if (!document || SnapshotCodec::decode(*document) != snapshot) {
    std::fputs("the decoded snapshot differs from the encoded one\n", stderr);
    return EXIT_FAILURE;
  }
  std::printf("%zu nodes, document %.2f MB, median of %d runs\n\n", nodeCount,
              static_cast<double>(document->size()) / 1e6, runs);
  std::printf("%-8s %10s %12s %14s %12s\n", "", "ms", "MB/s", "peak heap MB", "x document");
  print("encode", median([&] { return SnapshotCodec::encode(snapshot); }), document->size());
  print("decode", median([&] { return SnapshotCodec::decode(*document); }), document->size());
  return EXIT_SUCCESS;
}

}  // namespace
}  // namespace spacemint

int main() {
  return spacemint::run();
}
