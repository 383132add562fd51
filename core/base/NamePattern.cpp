#include "core/base/NamePattern.h"

#include "core/base/Translation.h"
#include "core/base/Unicode.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <utility>

namespace spacemint {

namespace {

struct NamedSet {
  std::string_view name;
  std::array<std::pair<char32_t, char32_t>, 4> ranges;
};

// An unused range repeats the first one.
constexpr NamedSet namedSets[] = {
    {"alnum", {{{'0', '9'}, {'A', 'Z'}, {'a', 'z'}, {'0', '9'}}}},
    {"alpha", {{{'A', 'Z'}, {'a', 'z'}, {'A', 'Z'}, {'A', 'Z'}}}},
    {"blank", {{{' ', ' '}, {'\t', '\t'}, {' ', ' '}, {' ', ' '}}}},
    {"cntrl", {{{0, 31}, {127, 127}, {0, 31}, {0, 31}}}},
    {"digit", {{{'0', '9'}, {'0', '9'}, {'0', '9'}, {'0', '9'}}}},
    {"graph", {{{'!', '~'}, {'!', '~'}, {'!', '~'}, {'!', '~'}}}},
    {"lower", {{{'a', 'z'}, {'a', 'z'}, {'a', 'z'}, {'a', 'z'}}}},
    {"print", {{{' ', '~'}, {' ', '~'}, {' ', '~'}, {' ', '~'}}}},
    {"punct", {{{'!', '/'}, {':', '@'}, {'[', '`'}, {'{', '~'}}}},
    {"space", {{{' ', ' '}, {'\t', '\r'}, {' ', ' '}, {' ', ' '}}}},
    {"upper", {{{'A', 'Z'}, {'A', 'Z'}, {'A', 'Z'}, {'A', 'Z'}}}},
    {"xdigit", {{{'0', '9'}, {'A', 'F'}, {'a', 'f'}, {'0', '9'}}}},
};

// Beyond Unicode, so that no range contains it.
constexpr char32_t notUtf8 = 0x11'0000;

// Removes and returns the first character of a text that is not empty.
char32_t takeCharacter(std::string_view& text) {
  std::size_t length = 0;
  const std::int32_t character = nextCharacter(text, length);
  if (character < 0) length = 1;
  text.remove_prefix(length);
  return character < 0 ? notUtf8 : static_cast<char32_t>(character);
}

}  // namespace

class NamePattern::Reader {
 public:
  explicit Reader(std::string_view text) : text_(text), rest_(text) {}

  std::expected<std::vector<Token>, Fault> read() {
    while (!rest_.empty() && !fault_) takeToken();
    if (fault_) return std::unexpected(std::move(*fault_));
    return std::move(tokens_);
  }

 private:
  using Kind = Token::Kind;

  std::size_t place() const { return text_.size() - rest_.size(); }

  void fail(std::size_t where, std::string reason) {
    if (!fault_) fault_ = Fault{where, std::move(reason)};
  }

  char take() {
    const char c = rest_.front();
    rest_.remove_prefix(1);
    return c;
  }

  void takeToken() {
    switch (const char c = take()) {
      case '*':
        if (tokens_.empty() || tokens_.back().kind != Kind::any) tokens_.push_back({.kind = Kind::any});
        break;
      case '?':
        tokens_.push_back({.kind = Kind::one});
        break;
      case '[':
        takeSet();
        break;
      case '\\':
        if (rest_.empty()) return fail(place() - 1, i18n("nothing follows “\\”"));
        takeLetter(take());
        break;
      default:
        takeLetter(c);
    }
  }

  void takeLetter(char c) {
    if (tokens_.empty() || tokens_.back().kind != Kind::text) tokens_.push_back({.kind = Kind::text});
    tokens_.back().text += c;
  }

  bool skip(char c) {
    const bool has = rest_.starts_with(c);
    if (has) rest_.remove_prefix(1);
    return has;
  }

  // After "[".
  void takeSet() {
    const std::size_t start = place() - 1;
    Token set{.kind = Kind::set};
    set.isNegated = skip('!') || skip('^');
    std::optional<char32_t> before;  // the start of a range, if "-" follows
    for (bool isFirst = true; !fault_; isFirst = false) {
      if (rest_.empty()) return fail(start, i18n("“[” has no “]”"));
      if (!isFirst && skip(']')) break;
      if (rest_.starts_with("[:") && takeNamedSet(set)) {
        before.reset();
      } else if (before && rest_.size() > 1 && rest_[0] == '-' && rest_[1] != ']') {
        takeRangeEnd(set, *std::exchange(before, std::nullopt));
      } else {
        before = takeMember(start);
        set.ranges.push_back({*before, *before});
      }
    }
    tokens_.push_back(std::move(set));
  }

  char32_t takeMember(std::size_t start) {
    skip('\\');
    if (!rest_.empty()) return takeCharacter(rest_);
    fail(start, i18n("“[” has no “]”"));
    return 0;
  }

  void takeRangeEnd(Token& set, char32_t first) {
    const std::size_t dash = place();
    skip('-');
    const char32_t last = takeMember(dash);
    if (last < first) fail(dash, i18n("the range ends before it begins"));
    set.ranges.push_back({first, last});
  }

  // False if it is no "[:name:]" but an ordinary "[".
  bool takeNamedSet(Token& set) {
    const std::size_t close = rest_.find(']', 2);
    if (close == std::string_view::npos || close < 3 || rest_[close - 1] != ':') return false;
    const std::string_view name = rest_.substr(2, close - 3);
    const auto* const found = std::ranges::find(namedSets, name, &NamedSet::name);
    if (found == std::end(namedSets)) {
      fail(place(), i18n("there is no set “{name}”", {{"name", name}}));
    } else {
      for (const auto& [first, last] : found->ranges) set.ranges.push_back({first, last});
    }
    rest_.remove_prefix(close + 1);
    return true;
  }

  std::string_view text_;
  std::string_view rest_;
  std::vector<Token> tokens_;
  std::optional<Fault> fault_;
};

std::expected<NamePattern, NamePattern::Fault> NamePattern::compile(std::string_view text) {
  auto tokens = Reader{text}.read();
  if (!tokens) return std::unexpected(std::move(tokens).error());
  NamePattern pattern;
  pattern.tokens_ = std::move(*tokens);
  pattern.note();
  return pattern;
}

void NamePattern::note() {
  isName_ = std::ranges::all_of(tokens_, [](const Token& token) { return token.kind == Token::Kind::text; });
  if (tokens_.empty()) return;
  part_ = std::ranges::max(tokens_, {}, [](const Token& token) { return token.text.size(); }).text;
  if (tokens_.front().kind == Token::Kind::text) head_ = tokens_.front().text;
  if (tokens_.back().kind == Token::Kind::text) tail_ = tokens_.back().text;
}

// Removes what a token other than `any` stands for from the start of `name`; false if it is not there.
bool NamePattern::takes(const Token& token, std::string_view& name) {
  if (token.kind == Token::Kind::text) {
    if (!name.starts_with(token.text)) return false;
    name.remove_prefix(token.text.size());
    return true;
  }
  if (name.empty()) return false;
  const char32_t character = takeCharacter(name);
  if (token.kind == Token::Kind::one) return true;
  return token.isNegated != std::ranges::any_of(token.ranges, [&](const Range& range) {
           return range.first <= character && character <= range.last;
         });
}

// Goes back to the last "*" where a token does not fit.
bool NamePattern::matches(std::string_view name) const {
  if (isName_) return name == head_;
  std::size_t next = 0;
  std::optional<std::size_t> afterAny;
  std::string_view skipped;
  for (;;) {
    if (next < tokens_.size() && tokens_[next].kind == Token::Kind::any) {
      if (++next == tokens_.size()) return true;
      afterAny = next;
      skipped = name;
    } else if (next == tokens_.size() ? name.empty() : takes(tokens_[next], name)) {
      if (next++ == tokens_.size()) return true;
    } else {
      if (!afterAny || skipped.empty()) return false;
      takeCharacter(skipped);
      name = skipped;
      next = *afterAny;
    }
  }
}

std::string NamePattern::escaped(std::string_view name) {
  std::string pattern;
  for (const char c : name) {
    if (std::string_view{R"(*?[\)"}.contains(c)) pattern += '\\';
    pattern += c;
  }
  return pattern;
}

}  // namespace spacemint
