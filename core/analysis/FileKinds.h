#pragma once

#include "core/base/Bytes.h"
#include "core/base/Translation.h"
#include "core/tree/Node.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace spacemint {

/// What a file is, judged by its name.
enum class FileKind : std::uint8_t {
  video,
  pictures,
  music,
  archives,
  diskImages,
  documents,
  code,
  packages,
  models,
  other,
};

struct FileKindRow {
  /// The word for it in a search and in JSON.
  std::string_view word;
  const char* title;
};

/// In the order of `FileKind`.
inline constexpr auto fileKindRows = std::to_array<FileKindRow>({
    {"video", i18nMark("Video")},
    {"pictures", i18nMark("Pictures")},
    {"music", i18nMark("Music")},
    {"archives", i18nMark("Archives")},
    {"images", i18nMark("Disk images")},
    {"documents", i18nMark("Documents")},
    {"code", i18nMark("Code")},
    {"packages", i18nMark("Packages")},
    {"models", i18nMark("Models")},
    {"other", i18nMark("Other files")},
});

constexpr const FileKindRow& rowOf(FileKind kind) {
  return fileKindRows.at(static_cast<std::size_t>(kind));
}

/// Tells the kind of a file from the ending of its name. Opens no file. Any thread.
class FileKinds {
 public:
  /// `globs` is the text of the file "globs2" of the shared MIME database; lines that are not understood are
  /// skipped. A few endings that it does not have, or that it names otherwise, are always known.
  explicit FileKinds(std::string_view globs = {});
  /// With the database of this system; without it where there is none.
  /// Read once.
  static const FileKinds& ofThisSystem();

  /// The longest known ending decides, in any letter case: "a.tar.gz" is an archive.
  FileKind of(std::string_view name) const;

 private:
  std::unordered_map<std::string, FileKind> byEnding_;
};

/// The bytes and the number of files of one kind.
struct KindTotal {
  FileKind kind = FileKind::other;
  Bytes size = 0;
  std::int64_t files = 0;

  bool operator==(const KindTotal&) const = default;
};

/// The kinds of the files that are stored in a tree, largest first; kinds without files are left out. Files
/// too small to be stored are in none. Any thread.
std::vector<KindTotal> kindTotals(const Node& root, const FileKinds& kinds);

}  // namespace spacemint
