#include "spacemintctl/Section.h"

#include "core/base/ByteFormat.h"
#include "core/base/Unicode.h"
#include "spacemintctl/Console.h"

#include <array>

namespace spacemint::ctl {

namespace {

// clang-format off
constexpr auto table = std::to_array<Section>({
    {"growth", "Show what grew and what shrank between two scans", "What grew", 100'000'000, true, growthFindings},
    {"trash", "Show how much is in the Trash", "Trash", std::nullopt, true, trashFindings},
    {"backups", "List the backups of phones and tablets", "Device backups", std::nullopt, true, backupFindings},
    {"suggest", "Show where to free up space", "Where to free up space", 500'000'000, true, suggestionFindings},
    {"folders", nullptr, "Largest folders", std::nullopt, true, largestFolderFindings},
    {"files", nullptr, "Largest files", std::nullopt, true, largestFileFindings},
    {"caches", "List the package and build caches that can be cleaned", "Leftover caches and build files", 50'000'000, true, cacheFindings},
    {"ollama", "List the models of Ollama", "Local Ollama models", std::nullopt, false, ollamaFindings},
    {"huggingface", "List the cached Hugging Face models", "Cached Hugging Face models", std::nullopt, true, huggingFaceFindings},
    {"docker", "Show how much space Docker uses", "Unused Docker data", std::nullopt, false, dockerFindings},
    {"worktrees", "List the git worktrees, those unused for a month first", "Git worktrees", 100'000'000, true, worktreeFindings},
});
// clang-format on

}  // namespace

std::span<const Section> sections() {
  return table;
}

std::string shownPath(const std::string& path, const Scene& scene) {
  return printable(Paths::display(path, scene.wording.home));
}

std::string shownSize(Bytes size, const Scene& scene) {
  return ByteFormat::string(size, scene.wording.locale);
}

Json jsonText(std::string_view text) {
  return withInvalidUtf8Replaced(text);
}

Json jsonOptional(const std::optional<std::string>& text) {
  return text ? jsonText(*text) : Json(nullptr);
}

Json jsonDate(std::optional<Date> date) {
  return date ? Json(universalTime(*date)) : Json(nullptr);
}

void addRest(Table& table, std::size_t count, std::size_t top) {
  if (count > top) table.add({"…", "and " + std::to_string(count - top) + " more; --top shows them"});
}

}  // namespace spacemint::ctl
