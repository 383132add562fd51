#include "core/host/linux/MountTable.h"

#include "core/base/AsciiText.h"
#include "core/host/linux/ProcText.h"

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
  const auto device = parseDeviceNumber(nextWord(line));
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
               .root = withoutKernelEscapes(root),
               .mountPoint = withoutKernelEscapes(mountPoint),
               .isWritable = isWritable && !hasOption(nextWord(line), "ro"),
               .fileSystem = withoutKernelEscapes(fileSystem),
               .source = withoutKernelEscapes(source)};
}

}  // namespace

std::vector<Mount> parseMountTable(std::string_view text) {
  std::vector<Mount> mounts;
  for (const std::string_view line : lines(text)) {
    if (auto mount = parseLine(line)) mounts.push_back(std::move(*mount));
  }
  return mounts;
}

std::vector<Mount> currentMounts() {
  std::ifstream file("/proc/self/mountinfo", std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>{file}, {}};
  return parseMountTable(text);
}

}  // namespace spacemint
