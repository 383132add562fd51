#pragma once

#include "core/base/Error.h"
#include "core/base/NamePattern.h"

#include <bitset>
#include <compare>
#include <cstdint>
#include <expected>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// Patterns of files and folders that scans leave out, as in a .gitignore file in "/": a pattern without a
/// "/" is for names anywhere, one that begins with "/" or "**/" for paths, "**" stands for any number of
/// folders, a "/" at the end limits a pattern to folders, and "!" in front takes back what an earlier pattern
/// left out. The last pattern that fits decides. What is below a folder that is left out is left out too.
///
/// Compiled once; any thread.
class Excludes {
 public:
  /// Leaves nothing out.
  Excludes() = default;

  /// Fails if a pattern is wrong. The message names the pattern, the place of the fault and the reason. A
  /// "~/" in front stands for `home`.
  static std::expected<Excludes, Error> compile(const std::vector<std::string>& patterns,
                                                std::string_view home);

  /// The same without the wrong patterns.
  static Excludes usable(const std::vector<std::string>& patterns, std::string_view home);

  /// The pattern for one file or folder.
  static std::string patternFor(std::string_view path);

  bool isEmpty() const { return rules_.empty(); }

  /// As they were given, with the home folder in place of "~", and without blanks at the end.
  const std::vector<std::string>& patterns() const { return patterns_; }

  /// What the patterns for paths still expect at or below one folder.
  struct Place {
    struct Expected {
      std::uint32_t rule = 0;
      /// The part of the rule's path that comes next.
      std::uint32_t part = 0;

      auto operator<=>(const Expected&) const = default;
    };
    std::vector<Expected> expected = {};
  };

  /// The place of a folder by its absolute path.
  Place at(std::string_view folder) const;
  Place below(const Place& parent, std::string_view name) const;

  /// Whether the item with this name in the folder of `place` is left out. Says nothing about the folder
  /// itself.
  bool leavesOut(const Place& place, std::string_view name, bool isFolder) const;

  /// Whether a scan of `root` leaves the item out, or a folder above it.
  bool leavesOutBelow(std::string_view root, std::string_view path, bool isFolder) const;

 private:
  // One pattern: for a name anywhere, or for a path.
  struct Rule {
    std::optional<NamePattern> name = {};
    // The parts of the path; absent for any number of folders.
    std::vector<std::optional<NamePattern>> path = {};
    bool isNegated = false;
    bool isForFolders = false;
  };

  std::expected<void, Error> add(std::string pattern);
  // Rules by a key of 16 bits.
  struct KeyedRules {
    std::bitset<65'536> keys;
    std::multimap<std::size_t, std::uint32_t> rules;

    void add(std::size_t key, std::uint32_t rule) {
      keys.set(key);
      rules.emplace(key, rule);
    }
    template <class Visit>
    void forEach(std::size_t key, Visit visit) const {
      if (!keys.test(key)) return;
      for (auto [at, end] = rules.equal_range(key); at != end; ++at) visit(at->second);
    }
  };

  static std::expected<Rule, NamePattern::Fault> ruleFrom(std::string_view text);
  static std::expected<void, NamePattern::Fault> readPath(Rule& rule, std::string_view text, std::size_t at);
  void noteName(const NamePattern& name, std::uint32_t rule);
  void expect(Place& place, std::uint32_t rule, std::uint32_t part) const;

  std::vector<std::string> patterns_;
  std::vector<Rule> rules_;
  Place top_;
  // The rules for names by the last, or else the first, two bytes of the names that they fit. Most names
  // have other bytes and need no closer look.
  KeyedRules byTail_;
  KeyedRules byHead_;
  // The rules for names that have two fixed bytes elsewhere, by these.
  KeyedRules byPart_;
  // The rules for names that have no two fixed bytes.
  std::vector<std::uint32_t> otherNames_;
};

}  // namespace spacemint
