#include "core/volume/SharedFiles.h"

#include "core/host/FileBlocks.h"
#include "core/tree/TreeWalk.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

namespace spacemint {

namespace {

bool saves(const FileBlocks& blocks) {
  return blocks.isShared || blocks.isCompressed;
}

}  // namespace

std::optional<Bytes> SharedFiles::freesAtMost(const std::string& path) {
  auto blocks = fileBlocks(path);
  if (!blocks || blocks->mapped < minimum || !saves(*blocks)) return std::nullopt;
  std::erase_if(blocks->ranges, [](const BlockRange& range) { return range.isShared; });
  return coveredBytes(std::move(blocks->ranges));
}

Bytes SharedFiles::saved(const Snapshot& scan, const std::function<bool(const std::string&)>& isOnVolume) {
  std::vector<BlockRange> ranges;
  std::set<std::pair<std::uint64_t, std::uint64_t>> seen;
  Bytes mapped = 0;
  walkTree(scan.root, [&](const std::string& path, const Node& node) {
    if (node.isDirectory) return true;
    if (node.size < minimum || !isOnVolume(path)) return false;
    const auto blocks = fileBlocks(path);
    // A file that neither shares nor compresses cannot overlap another.
    if (!blocks || !saves(*blocks)) return false;
    // The names of a file share its size already.
    if (!seen.emplace(blocks->identity.device, blocks->identity.inode).second) return false;
    for (const BlockRange& range : blocks->ranges)
      mapped = saturatingAdd(mapped, static_cast<Bytes>(range.end - range.begin));
    std::ranges::copy(blocks->ranges, std::back_inserter(ranges));
    return false;
  });
  return saturatingSubtract(mapped, coveredBytes(std::move(ranges)));
}

}  // namespace spacemint
