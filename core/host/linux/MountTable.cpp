#include "core/host/linux/MountTable.h"

#include "core/base/AsciiText.h"

#include <sys/sysmacros.h>

#include <algorithm>
#include <charconv>
#include <fstream>
#include <iterator>
#include <optional>

namespace spacemint {

namespace {

std::string_view nextWord(std::string_view& line) {
  const std::size_t end = std::min(line.find(' '), line.size());
  const std::string_view word = line.substr(0, end);
  line.remove_prefix(std::min(end + 1, line.size()));
  return word;
}

bool isOctal(std::string_view digits) {
  return digits.size() == 3 && digits.find_first_not_of("01234567") == std::string_view::npos;
}

// Decodes the kernel's escapes: in names, spaces, tabs, line ends and backslashes are written as a backslash
// and three octal digits.
std::string unescaped(std::string_view word) {
  std::string text;
  for (std::size_t i = 0; i < word.size(); ++i) {
    const std::string_view digits = word.substr(i + 1).substr(0, 3);
    if (word[i] != '\\' || !isOctal(digits)) {
      text += word[i];
      continue;
    }
    const int code = (digits[0] - '0') * 64 + (digits[1] - '0') * 8 + (digits[2] - '0');
    text += static_cast<char>(code);
    i += 3;
  }
  return text;
}

std::optional<std::uint64_t> parseDevice(std::string_view word) {
  unsigned major = 0;
  unsigned minor = 0;
  const char* end = word.data() + word.size();
  const auto first = std::from_chars(word.data(), end, major);
  if (first.ec != std::errc{} || first.ptr == end || *first.ptr != ':') return std::nullopt;
  const auto second = std::from_chars(first.ptr + 1, end, minor);
  if (second.ec != std::errc{} || second.ptr != end) return std::nullopt;
  return makedev(major, minor);
}

bool hasOption(std::string_view options, std::string_view option) {
  const auto words = pieces(options, ',');
  return std::ranges::find(words, option) != words.end();
}

// id parent major:minor root mountPoint options [optional fields…] - fileSystem source superOptions
std::optional<Mount> parseLine(std::string_view line) {
  const std::string_view idWord = nextWord(line);
  std::uint64_t id = 0;
  std::from_chars(idWord.data(), idWord.data() + idWord.size(), id);
  nextWord(line);
  const auto device = parseDevice(nextWord(line));
  const std::string_view root = nextWord(line);
  const std::string_view mountPoint = nextWord(line);
  const bool isWritable = hasOption(nextWord(line), "rw");
  std::string_view word = nextWord(line);
  while (word != "-" && !line.empty()) word = nextWord(line);
  if (!device || mountPoint.empty() || word != "-") return std::nullopt;
  const std::string_view fileSystem = nextWord(line);
  const std::string_view source = nextWord(line);
  return Mount{.id = id,
               .device = *device,
               .root = unescaped(root),
               .mountPoint = unescaped(mountPoint),
               .isWritable = isWritable && !hasOption(nextWord(line), "ro"),
               .fileSystem = unescaped(fileSystem),
               .source = unescaped(source)};
}

}  // namespace

std::vector<Mount> parseMountTable(std::string_view text) {
  std::vector<Mount> mounts;
  for (const std::string_view line : lines(text)) {
    if (auto mount = parseLine(line)) mounts.push_back(std::move(*mount));
  }
  return mounts;
}

bool isAtOrBelow(std::string_view path, std::string_view folder) {
  return path.starts_with(folder) &&
         (folder.ends_with('/') || path.size() == folder.size() || path[folder.size()] == '/');
}

std::vector<Mount> currentMounts() {
  std::ifstream file("/proc/self/mountinfo", std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>{file}, {}};
  return parseMountTable(text);
}

const MountTree* MountTree::child(std::string_view name) const {
  const auto found = below.find(name);
  return found != below.end() ? found->second.get() : nullptr;
}

MountTree mountsBelow(std::string_view root, const std::vector<Mount>& mounts) {
  const std::string prefix = root == "/" ? "/" : std::string{root} + "/";
  MountTree tree;
  for (const Mount& mount : mounts) {
    std::string_view rest = mount.mountPoint;
    if (!rest.starts_with(prefix) || rest.size() == prefix.size()) continue;
    rest.remove_prefix(prefix.size());
    MountTree* at = &tree;
    for (const std::string_view name : pieces(rest, '/')) {
      auto& next = at->below[std::string{name}];
      if (!next) next = std::make_unique<MountTree>();
      at = next.get();
    }
    at->isMountPoint = true;
  }
  return tree;
}

}  // namespace spacemint
