// parseXmlPropertyList: parses the part of XML that property lists use: elements, text, character references,
// the five predefined entities, CDATA, comments and processing instructions. A document type is skipped, and
// entities that it defines are errors.

#include "core/base/AsciiText.h"
#include "core/base/DateSeconds.h"
#include "core/base/PropertyList.h"
#include "core/base/Unicode.h"

#include <unicode/unistr.h>

#include <algorithm>
#include <charconv>
#include <vector>

namespace spacemint {

namespace {

// A token of the document. An element written as <name/> is one token: `open` with `isEmpty` set.
struct Token {
  enum class Kind { open, close, text, end, broken };

  Kind kind = Kind::broken;
  std::string_view name = {};  // of the element
  std::string text = {};       // with all references resolved
  bool isEmpty = false;
};

class Tokens {
 public:
  explicit Tokens(std::string_view text) : rest_(text) {}

  // The next token. Skips blank text between elements.
  Token next() {
    while (true) {
      Token token = step();
      if (token.kind != Token::Kind::text || !trimmed(token.text).empty()) return token;
    }
  }

  // Reads the text of `element`, whose start tag was just read, up to its end tag; absent if the element
  // contains anything but text.
  std::optional<std::string> content(const Token& element) {
    std::string text;
    if (element.isEmpty) return text;
    while (true) {
      const Token token = step();
      if (token.kind == Token::Kind::text) {
        text += token.text;
      } else if (token.kind == Token::Kind::close && token.name == element.name) {
        return text;
      } else {
        return std::nullopt;
      }
    }
  }

  // Skips the rest of `element`, whose start tag was just read; false if tags inside it do not match.
  bool skip(const Token& element) {
    if (element.isEmpty) return true;
    std::vector<std::string_view> open{element.name};
    while (!open.empty()) {
      const Token token = step();
      if (token.kind == Token::Kind::open && !token.isEmpty) open.push_back(token.name);
      if (token.kind == Token::Kind::end || token.kind == Token::Kind::broken) return false;
      if (token.kind != Token::Kind::close) continue;
      if (token.name != open.back()) return false;
      open.pop_back();
    }
    return true;
  }

 private:
  Token step() {
    while (true) {
      if (rest_.empty()) return {.kind = Token::Kind::end};
      if (rest_.front() != '<') return textToken();
      if (rest_.starts_with("<![CDATA[")) return cdata();
      if (rest_.starts_with("<!--")) {
        if (!takeThrough("-->")) return {};
      } else if (rest_.starts_with("<?")) {
        if (!takeThrough("?>")) return {};
      } else if (rest_.starts_with("<!DOCTYPE")) {
        if (!takeTag(true)) return {};
      } else {
        return tag();
      }
    }
  }

  // Removes the text up to and including `end` from the front and returns the text.
  std::optional<std::string_view> takeThrough(std::string_view end) {
    const std::size_t at = rest_.find(end);
    if (at == std::string_view::npos) return std::nullopt;
    const std::string_view taken = rest_.substr(0, at + end.size());
    rest_.remove_prefix(taken.size());
    return taken;
  }

  // Reads a tag and returns the text between "<" and ">". A ">" in quotes, or within "[]" in a document type,
  // does not end the tag.
  std::optional<std::string_view> takeTag(bool isDocumentType) {
    char quote = '\0';
    bool isInBrackets = false;
    for (std::size_t at = 1; at < rest_.size(); ++at) {
      const char c = rest_[at];
      if (quote != '\0') {
        if (c == quote) quote = '\0';
      } else if (c == '"' || c == '\'') {
        quote = c;
      } else if (isDocumentType && (c == '[' || c == ']')) {
        isInBrackets = c == '[';
      } else if (c == '>' && !isInBrackets) {
        const std::string_view inner = rest_.substr(1, at - 1);
        rest_.remove_prefix(at + 1);
        return inner;
      }
    }
    return std::nullopt;
  }

  Token tag() {
    const auto taken = takeTag(false);
    if (!taken) return {};
    std::string_view inner = *taken;
    Token token{.kind = Token::Kind::open};
    if (inner.starts_with('/')) {
      token.kind = Token::Kind::close;
      inner.remove_prefix(1);
    } else if (inner.ends_with('/')) {
      token.isEmpty = true;
      inner.remove_suffix(1);
    }
    token.name = inner.substr(0, inner.find_first_of(" \t\r\n"));
    return token.name.empty() ? Token{} : token;
  }

  Token cdata() {
    constexpr std::string_view start = "<![CDATA[";
    constexpr std::string_view end = "]]>";
    const auto taken = takeThrough(end);
    if (!taken) return {};
    return {.kind = Token::Kind::text,
            .text = std::string{taken->substr(start.size(), taken->size() - start.size() - end.size())}};
  }

  Token textToken() {
    const std::string_view raw = rest_.substr(0, rest_.find('<'));
    rest_.remove_prefix(raw.size());
    Token token{.kind = Token::Kind::text};
    for (std::size_t at = 0; at < raw.size();) {
      const std::size_t reference = std::min(raw.find('&', at), raw.size());
      token.text += raw.substr(at, reference - at);
      if (reference == raw.size()) break;
      const std::size_t end = raw.find(';', reference);
      if (end == std::string_view::npos) return {};
      if (!append(token.text, raw.substr(reference + 1, end - reference - 1))) return {};
      at = end + 1;
    }
    return token;
  }

  // Appends the character of a reference, given without "&" and ";"; false for an unknown reference.
  static bool append(std::string& text, std::string_view reference) {
    constexpr std::pair<std::string_view, char> named[]{
        {"lt", '<'}, {"gt", '>'}, {"amp", '&'}, {"quot", '"'}, {"apos", '\''}};
    const auto* known = std::ranges::find(named, reference, &std::pair<std::string_view, char>::first);
    if (known != std::end(named)) {
      text += known->second;
      return true;
    }
    if (!reference.starts_with('#')) return false;
    reference.remove_prefix(1);
    const bool isHexadecimal = reference.starts_with('x');
    if (isHexadecimal) reference.remove_prefix(1);
    std::uint32_t character = 0;
    const char* const end = reference.data() + reference.size();
    const auto [read, problem] = std::from_chars(reference.data(), end, character, isHexadecimal ? 16 : 10);
    if (problem != std::errc{} || read != end || character == 0 || character > 0x10'ffff ||
        (character >= 0xd800 && character <= 0xdfff)) {
      return false;
    }
    icu::UnicodeString{static_cast<UChar32>(character)}.toUTF8String(text);
    return true;
  }

  std::string_view rest_;
};

template <class Number>
std::optional<Number> numberIn(std::string_view text, auto... base) {
  text = trimmed(text);
  if (text.starts_with('+')) text.remove_prefix(1);
  Number number{};
  const char* const end = text.data() + text.size();
  const auto [read, problem] = std::from_chars(text.data(), end, number, base...);
  return problem == std::errc{} && read == end ? std::optional{number} : std::nullopt;
}

std::optional<std::int64_t> integerIn(std::string_view text) {
  if (const auto number = numberIn<std::int64_t>(text)) return number;
  const auto natural = trimmed(text).starts_with("0x") ? numberIn<std::uint64_t>(trimmed(text).substr(2), 16)
                                                       : numberIn<std::uint64_t>(text);
  return natural ? std::optional{static_cast<std::int64_t>(*natural)} : std::nullopt;
}

// "2026-03-01T12:30:00Z"
std::optional<Date> dateIn(std::string_view text) {
  text = trimmed(text);
  constexpr std::string_view form = "dddd-dd-ddTdd:dd:ddZ";
  if (text.size() != form.size()) return std::nullopt;
  for (std::size_t at = 0; at < form.size(); ++at) {
    const bool isDigit = text[at] >= '0' && text[at] <= '9';
    if (form[at] == 'd' ? !isDigit : text[at] != form[at]) return std::nullopt;
  }
  const auto part = [&](std::size_t at, std::size_t length) {
    return numberIn<unsigned>(text.substr(at, length)).value_or(0);
  };
  const auto day = std::chrono::year{static_cast<int>(part(0, 4))} / static_cast<int>(part(5, 2)) /
                   static_cast<int>(part(8, 2));
  if (!day.ok() || part(11, 2) > 23 || part(14, 2) > 59 || part(17, 2) > 60) return std::nullopt;
  return std::chrono::sys_days{day} + std::chrono::hours{part(11, 2)} + std::chrono::minutes{part(14, 2)} +
         std::chrono::seconds{part(17, 2)};
}

// Reads the value of `element`, whose start tag was just read; absent if the document is broken.
std::optional<PropertyValue> valueOf(const Token& element, Tokens& tokens) {
  constexpr std::string_view scalars[]{"true", "false", "string", "integer", "real", "date"};
  if (std::ranges::find(scalars, element.name) == std::end(scalars)) {
    return tokens.skip(element) ? std::optional{PropertyValue{}} : std::nullopt;
  }
  auto text = tokens.content(element);
  if (!text) return std::nullopt;
  const auto asValue = [](auto value) { return value ? std::optional<PropertyValue>{*value} : std::nullopt; };
  if (element.name == "string") return withInvalidUtf8Replaced(*text);
  if (element.name == "integer") return asValue(integerIn(*text));
  if (element.name == "real") return asValue(numberIn<double>(*text));
  if (element.name == "date") return asValue(dateIn(*text));
  return element.name == "true";
}

bool isOpen(const Token& token, std::string_view name) {
  return token.kind == Token::Kind::open && token.name == name;
}

}  // namespace

std::optional<PropertyDictionary> parseXmlPropertyList(std::string_view text,
                                                       std::span<const char* const> keys) {
  Tokens tokens{text};
  if (const Token list = tokens.next(); !isOpen(list, "plist") || list.isEmpty) return std::nullopt;
  const Token top = tokens.next();
  if (!isOpen(top, "dict")) return std::nullopt;
  PropertyDictionary dictionary;
  for (Token token = top; !top.isEmpty;) {
    token = tokens.next();
    if (token.kind == Token::Kind::close && token.name == "dict") break;
    const auto key = isOpen(token, "key") ? tokens.content(token) : std::nullopt;
    if (!key) return std::nullopt;
    const Token element = tokens.next();
    if (element.kind != Token::Kind::open) return std::nullopt;
    const bool isWanted = std::ranges::find(keys, *key) != keys.end();
    auto value = isWanted               ? valueOf(element, tokens)
                 : tokens.skip(element) ? std::optional{PropertyValue{}}
                                        : std::nullopt;
    if (!value) return std::nullopt;
    if (isWanted) dictionary.emplace(*key, std::move(*value));
  }
  const Token end = tokens.next();
  const bool isWhole =
      end.kind == Token::Kind::close && end.name == "plist" && tokens.next().kind == Token::Kind::end;
  return isWhole ? std::optional{std::move(dictionary)} : std::nullopt;
}

}  // namespace spacemint
