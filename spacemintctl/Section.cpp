#include "spacemintctl/Section.h"

#include "core/base/ByteFormat.h"
#include "core/base/Translation.h"
#include "core/base/Unicode.h"
#include "spacemintctl/Console.h"

#include <array>

namespace spacemint::ctl {

namespace {

// clang-format off
constexpr auto table = std::to_array<Section>({
    {"growth", i18nMark("Show what grew and what shrank between two scans"), i18nMark("What grew"), 100'000'000, true, growthFindings},
    {"trash", i18nMark("Show how much is in the Trash"), i18nMark("Trash"), std::nullopt, true, trashFindings},
    {"backups", i18nMark("List the backups of phones and tablets"), i18nMark("Device backups"), std::nullopt, true, backupFindings},
    {"suggest", i18nMark("Show where to free up space"), i18nMark("Where to free up space"), 500'000'000, true, suggestionFindings},
    {"folders", nullptr, i18nMark("Largest folders"), std::nullopt, true, largestFolderFindings},
    {"files", nullptr, i18nMark("Largest files"), std::nullopt, true, largestFileFindings},
    {"caches", i18nMark("List the package and build caches that can be cleaned"), i18nMark("Leftover caches and build files"), 50'000'000, true, cacheFindings},
    {"ollama", i18nMark("List the models of Ollama"), i18nMark("Local Ollama models"), std::nullopt, false, ollamaFindings},
    {"huggingface", i18nMark("List the cached Hugging Face models"), i18nMark("Cached Hugging Face models"), std::nullopt, true, huggingFaceFindings},
    {"docker", i18nMark("Show how much space Docker uses"), i18nMark("Unused Docker data"), std::nullopt, false, dockerFindings},
    {"worktrees", i18nMark("List the git worktrees, those unused for a month first"), i18nMark("Git worktrees"), 100'000'000, true, worktreeFindings},
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
  if (count > top)
    table.add({"…", i18np("and {count} more; --top shows them", "and {count} more; --top shows them",
                          static_cast<std::int64_t>(count - top),
                          {{"count", numberText(static_cast<std::int64_t>(count - top))}})});
}

}  // namespace spacemint::ctl
