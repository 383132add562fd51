#include "core/analysis/Search.h"

#include "core/analysis/SizeText.h"
#include "core/base/AsciiText.h"
#include "core/base/Translation.h"
#include "core/base/Unicode.h"
#include "core/tree/TreeWalk.h"

#include <algorithm>
#include <charconv>
#include <iterator>

namespace spacemint {

namespace {

using std::chrono::days;
using std::chrono::seconds;

struct Word {
  std::size_t place;
  std::string text;
  bool isQuoted;
};

// Splits at spaces; a pair of double quotes keeps what is in it together.
std::vector<Word> wordsOf(std::string_view text) {
  std::vector<Word> words;
  for (std::size_t at = 0; at < text.size();) {
    const bool isQuoted = text[at] == '"';
    const std::size_t start = isQuoted ? at + 1 : at;
    const std::size_t end = std::min(text.find(isQuoted ? '"' : ' ', start), text.size());
    if (end > start) words.push_back({at, std::string{text.substr(start, end - start)}, isQuoted});
    at = end + 1;
  }
  return words;
}

struct AgeUnit {
  char letter;
  days length;
};
constexpr AgeUnit ageUnits[] = {{'d', days{1}}, {'w', days{7}}, {'m', days{30}}, {'y', days{365}}};

std::optional<seconds> parseAge(std::string_view text) {
  constexpr int most = 1'000'000;
  int number = 0;
  const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
  const std::string_view rest = text.substr(static_cast<std::size_t>(end - text.data()));
  if (failure != std::errc{} || number < 0 || number > most || rest.size() != 1) return std::nullopt;
  const auto* unit = std::ranges::find(ageUnits, rest.front(), &AgeUnit::letter);
  return unit == std::end(ageUnits) ? std::nullopt : std::optional<seconds>{unit->length * number};
}

// False if there is no value, or the condition has one already.
template <class Value>
bool assign(std::optional<Value>& member, std::optional<Value> value) {
  return value && !std::exchange(member, value);
}

bool setSize(std::optional<Bytes>& member, std::string_view text) {
  const auto size = DevTools::parseSize(text);
  return size && *size >= 0 && assign(member, size);
}

bool setType(SearchQuery& query, std::string_view word) {
  if (word == "file" || word == "folder") return assign<bool>(query.isFolder, word == "folder");
  const auto row = std::ranges::find(fileKindRows, word, &FileKindRow::word);
  if (row == fileKindRows.end()) return false;
  return assign<FileKind>(query.kind, static_cast<FileKind>(row - fileKindRows.begin()));
}

struct Condition {
  std::string_view prefix;
  bool (*set)(SearchQuery& query, std::string_view value);
};
constexpr Condition conditions[] = {
    {">", [](SearchQuery& query, std::string_view value) { return setSize(query.above, value); }},
    {"<", [](SearchQuery& query, std::string_view value) { return setSize(query.below, value); }},
    {"older:",
     [](SearchQuery& query, std::string_view value) { return assign(query.olderThan, parseAge(value)); }},
    {"newer:",
     [](SearchQuery& query, std::string_view value) { return assign(query.newerThan, parseAge(value)); }},
    {"type:", setType},
};

// False if the word has the form of a condition, but says nothing, or what another word said already.
bool add(SearchQuery& query, const Word& word) {
  const auto* rule = std::ranges::find_if(
      conditions, [&](const Condition& each) { return word.text.starts_with(each.prefix); });
  if (!word.isQuoted && rule != std::end(conditions)) {
    return rule->set(query, std::string_view{word.text}.substr(rule->prefix.size()));
  }
  const bool isPattern = !word.isQuoted && word.text.find_first_of("*?") != std::string::npos;
  (isPattern ? query.patterns : query.names).push_back(caseFolded(word.text));
  return true;
}

std::string_view withoutFirstCharacter(std::string_view text) {
  text.remove_prefix(1);
  while (!text.empty() && (static_cast<unsigned char>(text.front()) & 0xC0U) == 0x80) text.remove_prefix(1);
  return text;
}

// Goes back to the last "*" where a character does not fit, so the time is at most the product of the
// lengths.
bool matches(std::string_view text, std::string_view pattern) {
  std::optional<std::string_view> afterStar;
  std::string_view skipped;
  while (!text.empty()) {
    if (!pattern.empty() && pattern.front() == '*') {
      pattern.remove_prefix(1);
      afterStar = pattern;
      skipped = text;
    } else if (!pattern.empty() && pattern.front() == '?') {
      pattern.remove_prefix(1);
      text = withoutFirstCharacter(text);
    } else if (!pattern.empty() && pattern.front() == text.front()) {
      pattern.remove_prefix(1);
      text.remove_prefix(1);
    } else if (afterStar) {
      skipped.remove_prefix(1);
      text = skipped;
      pattern = *afterStar;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*') == std::string_view::npos;
}

bool hasAge(const SearchQuery& query, const Node& node, Date now) {
  if (!query.olderThan && !query.newerThan) return true;
  if (!node.modified) return false;
  const Seconds age{timeBetween(*node.modified, now)};
  return (!query.olderThan || age >= Seconds{*query.olderThan}) &&
         (!query.newerThan || age <= Seconds{*query.newerThan});
}

bool hasName(const SearchQuery& query, const std::string& name) {
  if (query.names.empty() && query.patterns.empty()) return true;
  const std::string folded = caseFolded(name);
  return std::ranges::all_of(query.names, [&](const std::string& part) { return folded.contains(part); }) &&
         std::ranges::all_of(query.patterns,
                             [&](const std::string& pattern) { return matches(folded, pattern); });
}

}  // namespace

std::expected<SearchQuery, Error> parseSearch(std::string_view text) {
  SearchQuery query;
  for (const Word& word : wordsOf(text)) {
    if (add(query, word)) continue;
    return std::unexpected(
        Error{.domain = std::string{searchDomain},
              .code = static_cast<int>(word.place),
              .message = i18n("“{word}” is not understood, or said twice", {{"word", word.text}})});
  }
  return query;
}

std::string withCondition(std::string_view text, std::string_view condition, std::string_view value) {
  std::string result;
  const auto append = [&](const std::string& word) { result += (result.empty() ? "" : " ") + word; };
  for (const Word& word : wordsOf(text)) {
    if (!word.isQuoted && word.text.starts_with(condition)) continue;
    append(word.isQuoted ? '"' + word.text + '"' : word.text);
  }
  if (!value.empty()) append(std::string{condition} + std::string{value});
  return result;
}

bool finds(const SearchQuery& query, const Node& node, const FileKinds& kinds, Date now) {
  if (query.above && node.size <= *query.above) return false;
  if (query.below && node.size >= *query.below) return false;
  if (query.isFolder && node.isDirectory != *query.isFolder) return false;
  if (!hasAge(query, node, now) || !hasName(query, node.name)) return false;
  return !query.kind || (!node.isDirectory && kinds.of(node.name) == *query.kind);
}

std::unordered_set<const Node*> foldersWithHits(const Snapshot& scan, const SearchQuery& query,
                                                const FileKinds& kinds, Date now) {
  struct Level {
    const Node* folder;
    std::size_t next = 0;
    bool hasHit = false;
  };
  std::unordered_set<const Node*> folders;
  std::vector<Level> levels{{.folder = &scan.root}};
  while (!levels.empty()) {
    Level& level = levels.back();
    if (level.next < level.folder->children.size()) {
      const Node& child = level.folder->children[level.next++];
      level.hasHit = level.hasHit || finds(query, child, kinds, now);
      if (!child.children.empty()) levels.push_back({.folder = &child});
      continue;
    }
    const bool hasHit = level.hasHit;
    if (hasHit) folders.insert(level.folder);
    levels.pop_back();
    if (hasHit && !levels.empty()) levels.back().hasHit = true;
  }
  return folders;
}

std::vector<SearchResult> search(const Snapshot& scan, const SearchQuery& query, const FileKinds& kinds,
                                 Date now, std::size_t limit, std::size_t* found) {
  std::vector<const Node*> hits;
  walkTree(scan.root, [&](const std::string&, const Node& node) {
    if (&node != &scan.root && finds(query, node, kinds, now)) hits.push_back(&node);
  });
  if (found != nullptr) *found = hits.size();
  const std::size_t count = std::min(limit, hits.size());
  if (count == 0) return {};
  // Paths are built for the largest only, in the order of the tree.
  std::vector<Bytes> sizes(hits.size());
  std::ranges::transform(hits, sizes.begin(), &Node::size);
  const auto last = sizes.begin() + static_cast<std::ptrdiff_t>(count) - 1;
  std::ranges::nth_element(sizes, last, std::greater{});
  std::vector<SearchResult> results;
  auto hit = hits.begin();
  walkTree(scan.root, [&](const std::string& path, const Node& node) {
    if (hit == hits.end() || *hit != &node) return;
    ++hit;
    if (node.size >= *last) results.push_back({path, &node});
  });
  std::ranges::stable_sort(results, std::greater{}, [](const SearchResult& each) { return each.node->size; });
  results.resize(count);
  return results;
}

}  // namespace spacemint
