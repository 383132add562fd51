#include "core/scan/Excludes.h"

#include "core/base/AsciiText.h"
#include "core/base/ByteFormat.h"
#include "core/base/Log.h"
#include "core/base/Translation.h"
#include "core/tree/Paths.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace spacemint {

namespace {

using Fault = NamePattern::Fault;

// The key of two bytes; a name of one byte has a zero byte in front.
std::size_t keyOf(char before, char after) {
  return static_cast<std::size_t>(static_cast<unsigned char>(before)) << 8U |
         static_cast<unsigned char>(after);
}

std::size_t tailKey(std::string_view name) {
  return keyOf(name.size() > 1 ? name[name.size() - 2] : '\0', name.back());
}

std::size_t headKey(std::string_view name) {
  return keyOf(name.front(), name.size() > 1 ? name[1] : '\0');
}

// Without blanks at the end, except one that a "\" keeps.
std::string_view withoutBlanks(std::string_view pattern) {
  while (pattern.ends_with(' ')) {
    const std::string_view shorter = pattern.substr(0, pattern.size() - 1);
    const std::size_t letters = shorter.find_last_not_of('\\') + 1;
    if ((shorter.size() - letters) % 2 == 1) break;
    pattern = shorter;
  }
  return pattern;
}

bool isAnyFolders(std::string_view part) {
  return part.size() > 1 && part.find_first_not_of('*') == std::string_view::npos;
}

std::optional<Fault> wrongForm(std::string_view text, std::size_t start) {
  const std::string_view path = text.substr(start);
  if (path.empty() || path == "/") return Fault{0, i18n("it names nothing")};
  if (text.starts_with('#')) return Fault{0, i18n("a name that begins with “#” is written “\\#”")};
  const std::size_t slash = path.substr(0, path.size() - 1).find('/');
  if (slash != std::string_view::npos && slash != 0 && !isAnyFolders(path.substr(0, slash))) {
    return Fault{start + slash, i18n("a path begins with “/” for one place, or with “**/” for any")};
  }
  return std::nullopt;
}

std::size_t charactersBefore(std::string_view text, std::size_t place) {
  return static_cast<std::size_t>(std::ranges::count_if(
      text.substr(0, place), [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80; }));
}

Error wrongPattern(std::string_view pattern, const Fault& fault) {
  return {.domain = "excludes",
          .message = i18n(
              "“{pattern}” is wrong at character {place}: {reason}",
              {{"pattern", pattern},
               {"place", numberText(static_cast<std::int64_t>(charactersBefore(pattern, fault.place) + 1))},
               {"reason", fault.reason}})};
}

// Without blanks at the end, and with the home folder in place of "~".
std::string expanded(std::string_view text, std::string_view home) {
  std::string pattern{withoutBlanks(text)};
  const std::size_t tilde = pattern.starts_with('!') ? 1 : 0;
  if (pattern.substr(tilde).starts_with("~/")) {
    pattern.replace(tilde, 1, NamePattern::escaped(Paths::withoutTrailingSlash(home)));
  }
  return pattern;
}

}  // namespace

std::expected<Excludes::Rule, Fault> Excludes::ruleFrom(std::string_view text) {
  Rule rule{.isNegated = text.starts_with('!')};
  const std::size_t start = rule.isNegated ? 1 : 0;
  if (auto fault = wrongForm(text, start)) return std::unexpected(std::move(*fault));
  if (text.ends_with('/')) {
    rule.isForFolders = true;
    text.remove_suffix(1);
  }
  const std::string_view path = text.substr(start);
  const std::size_t at = path.starts_with('/') ? start + 1 : start;
  if (path.contains('/')) {
    if (auto read = readPath(rule, text, at); !read) return std::unexpected(std::move(read).error());
  } else {
    auto name = NamePattern::compile(path);
    if (!name) return std::unexpected(Fault{start + name.error().place, std::move(name.error().reason)});
    rule.name = std::move(*name);
  }
  return rule;
}

std::expected<void, Fault> Excludes::readPath(Rule& rule, std::string_view text, std::size_t at) {
  for (std::size_t end = 0; end < text.size(); at = end + 1) {
    end = std::min(text.find('/', at), text.size());
    const std::string_view part = text.substr(at, end - at);
    if (part.empty() || part == "." || part == "..")
      return std::unexpected(Fault{at, i18n("no path has this part")});
    if (isAnyFolders(part)) {
      // Several in a row mean the same as one. Each would have to be followed at every folder.
      if (rule.path.empty() || rule.path.back()) rule.path.emplace_back();
      continue;
    }
    auto name = NamePattern::compile(part);
    if (!name) return std::unexpected(Fault{at + name.error().place, std::move(name.error().reason)});
    rule.path.emplace_back(std::move(*name));
  }
  const bool isNameAnywhere = rule.path.size() == 2 && !rule.path[0] && rule.path[1];
  if (isNameAnywhere) rule.name = std::move(std::exchange(rule.path, {})[1]);
  return {};
}

std::expected<Excludes, Error> Excludes::compile(const std::vector<std::string>& patterns,
                                                 std::string_view home) {
  Excludes excludes;
  for (const std::string& pattern : patterns) {
    if (auto added = excludes.add(expanded(pattern, home)); !added) {
      return std::unexpected(std::move(added).error());
    }
  }
  return excludes;
}

Excludes Excludes::usable(const std::vector<std::string>& patterns, std::string_view home) {
  Excludes excludes;
  for (const std::string& pattern : patterns) {
    const auto added = excludes.add(expanded(pattern, home));
    if (!added) log(LogLevel::info, "this pattern is not used: " + added.error().message);
  }
  return excludes;
}

std::string Excludes::patternFor(std::string_view path) {
  std::string pattern = NamePattern::escaped(path);
  if (pattern.ends_with(' ')) pattern.insert(pattern.size() - 1, 1, '\\');
  return pattern;
}

std::expected<void, Error> Excludes::add(std::string pattern) {
  auto rule = ruleFrom(pattern);
  if (!rule) return std::unexpected(wrongPattern(pattern, rule.error()));
  const auto number = static_cast<std::uint32_t>(rules_.size());
  if (rule->name) noteName(*rule->name, number);
  rules_.push_back(std::move(*rule));
  patterns_.push_back(std::move(pattern));
  if (!rules_.back().name) expect(top_, number, 0);
  return {};
}

void Excludes::noteName(const NamePattern& name, std::uint32_t rule) {
  if (name.tail().size() > 1 || name.isName()) {
    byTail_.add(tailKey(name.tail()), rule);
  } else if (name.head().size() > 1) {
    byHead_.add(headKey(name.head()), rule);
  } else if (name.part().size() > 1) {
    byPart_.add(tailKey(name.part()), rule);
  } else {
    otherNames_.push_back(rule);
  }
}

// "**" may stand for no folder at all.
void Excludes::expect(Place& place, std::uint32_t rule, std::uint32_t part) const {
  const auto& path = rules_[rule].path;
  for (; part < path.size(); ++part) {
    place.expected.push_back({rule, part});
    if (path[part]) return;
  }
}

Excludes::Place Excludes::below(const Place& parent, std::string_view name) const {
  Place place;
  for (const auto& [rule, part] : parent.expected) {
    const auto& wanted = rules_[rule].path[part];
    if (!wanted) {
      expect(place, rule, part);
    } else if (wanted->matches(name)) {
      expect(place, rule, part + 1);
    }
  }
  std::ranges::sort(place.expected);
  const auto repeated = std::ranges::unique(place.expected);
  place.expected.erase(repeated.begin(), repeated.end());
  return place;
}

Excludes::Place Excludes::at(std::string_view folder) const {
  Place place = top_;
  for (const std::string_view name : pieces(folder, '/')) place = below(place, name);
  return place;
}

bool Excludes::leavesOut(const Place& place, std::string_view name, bool isFolder) const {
  if (name.empty()) return false;
  std::optional<std::uint32_t> last;
  const auto note = [&](std::uint32_t number) {
    if (isFolder || !rules_[number].isForFolders) last = std::max(last.value_or(0), number);
  };
  const auto look = [&](std::uint32_t number) {
    if (rules_[number].name->matches(name)) note(number);
  };
  byTail_.forEach(tailKey(name), look);
  byHead_.forEach(headKey(name), look);
  if (!byPart_.rules.empty()) {
    for (std::size_t end = 1; end < name.size(); ++end)
      byPart_.forEach(keyOf(name[end - 1], name[end]), look);
  }
  for (const std::uint32_t number : otherNames_) look(number);
  for (const auto& [number, part] : place.expected) {
    const auto& path = rules_[number].path;
    if (part + 1 == path.size() && (!path[part] || path[part]->matches(name))) note(number);
  }
  return last && !rules_[*last].isNegated;
}

bool Excludes::leavesOutBelow(std::string_view root, std::string_view path, bool isFolder) const {
  if (isEmpty() || !isAtOrBelow(path, root)) return false;
  Place place = at(root);
  const auto names = pieces(path.substr(root.size()), '/');
  for (std::size_t i = 0; i < names.size(); ++i) {
    const bool isLast = i + 1 == names.size();
    if (leavesOut(place, names[i], isFolder || !isLast)) return true;
    place = below(place, names[i]);
  }
  return false;
}

}  // namespace spacemint
