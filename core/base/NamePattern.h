#pragma once

#include <cstddef>
#include <expected>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// A compiled pattern for a whole name: "*" stands for any text, "?" for one character, "[a-z]", "[!a-z]" and
/// "[[:digit:]]" for one character of a set; "\" takes the meaning from the next character. A byte that is
/// not UTF-8 counts as a character that is in no set. Letters match in their own case. Any thread.
class NamePattern {
 public:
  struct Fault {
    /// In bytes from the start of the pattern.
    std::size_t place = 0;
    std::string reason = {};
  };

  static std::expected<NamePattern, Fault> compile(std::string_view text);

  /// In time of at most the product of both lengths.
  bool matches(std::string_view name) const;

  /// The texts with which every matching name begins and ends. If they are one text without wildcards, the
  /// pattern is that name.
  const std::string& head() const { return head_; }
  const std::string& tail() const { return tail_; }
  bool isName() const { return isName_; }
  /// The longest text between wildcards, which every matching name contains; may be empty.
  const std::string& part() const { return part_; }

  /// A pattern that only `name` matches.
  static std::string escaped(std::string_view name);

 private:
  struct Range {
    char32_t first;
    char32_t last;
  };
  struct Token {
    enum class Kind { text, one, any, set } kind = Kind::text;
    std::string text = {};
    std::vector<Range> ranges = {};
    bool isNegated = false;
  };
  class Reader;

  static bool takes(const Token& token, std::string_view& name);
  void note();

  std::vector<Token> tokens_;
  std::string head_;
  std::string tail_;
  std::string part_;
  bool isName_ = true;
};

}  // namespace spacemint
