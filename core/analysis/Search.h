#pragma once

#include "core/analysis/FileKinds.h"
#include "core/base/Error.h"
#include "core/tree/Snapshot.h"

#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace spacemint {

/// What a search looks for. All conditions that are set must hold. Folders have no date, so a condition on
/// the age excludes them.
struct SearchQuery {
  /// Texts that the name contains, in any letter case; stored as `caseFolded`.
  std::vector<std::string> names = {};
  /// Patterns that the whole name matches, in any letter case: "*" stands for any text, "?" for one
  /// character.
  std::vector<std::string> patterns = {};
  /// In bytes; the size must be larger, or smaller.
  std::optional<Bytes> above = {};
  std::optional<Bytes> below = {};
  /// How long ago the file changed, at least or at most.
  std::optional<std::chrono::seconds> olderThan = {};
  std::optional<std::chrono::seconds> newerThan = {};
  /// Files of this kind.
  std::optional<FileKind> kind = {};
  std::optional<bool> isFolder = {};

  bool operator==(const SearchQuery&) const = default;
};

/// The domain of the error of `parseSearch`; its code is the place of the wrong word, in bytes from the
/// start.
inline constexpr std::string_view searchDomain = "search";

/// Reads a search, words separated by spaces: ">1GB", "<10MB", "older:1y", "newer:2w" (days, weeks, months of
/// 30 days, years of 365), "type:video" and the other words of `fileKindRows`, "type:file", "type:folder"; a
/// word with
/// "*" or "?" is a pattern for the whole name, every other word is a part of the name. Double quotes keep the
/// spaces of a name. Any thread.
std::expected<SearchQuery, Error> parseSearch(std::string_view text);

/// The search with another value for one kind of condition, such as "older:" and "1y", in place of all values
/// that it has; without any if `value` is empty. Any thread.
std::string withCondition(std::string_view text, std::string_view condition, std::string_view value);

/// Whether all conditions of the query hold for the item itself. Any thread.
bool finds(const SearchQuery& query, const Node& node, const FileKinds& kinds, Date now);

/// The folders of the scan that hold something, at any depth, that the query finds. Any thread.
std::unordered_set<const Node*> foldersWithHits(const Snapshot& scan, const SearchQuery& query,
                                                const FileKinds& kinds, Date now);

struct SearchResult {
  std::string path;
  /// Of the tree that was searched.
  const Node* node = nullptr;
};

/// The files and folders below the root that the query finds, largest first, at most `limit`; equal sizes in
/// the order of the tree. `found`, if given, receives the number of all of them. Any thread.
std::vector<SearchResult> search(const Snapshot& scan, const SearchQuery& query, const FileKinds& kinds,
                                 Date now, std::size_t limit, std::size_t* found = nullptr);

}  // namespace spacemint
