#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// A short message of the maker. All texts are plain text.
struct AppMessage {
  /// A button that opens a web page (http or https). A link to anything else is left out when the feed is
  /// read.
  struct Link {
    std::string title;
    std::string url;

    bool operator==(const Link&) const = default;
  };

  std::string id;
  std::string title;
  std::string body;
  std::optional<Link> link = {};
  /// The slugs of the products that show the message; absent means all.
  std::optional<std::vector<std::string>> apps = {};
  /// The lowest and the highest version that shows it.
  std::optional<std::string> minVersion = {};
  std::optional<std::string> maxVersion = {};
  /// The last day on which it is shown, "yyyy-MM-dd".
  std::optional<std::string> until = {};

  bool operator==(const AppMessage&) const = default;
};

/// The messages that the maker has published. Pure functions; any thread.
struct MessageFeed {
  /// Most important first.
  std::vector<AppMessage> messages;

  /// Reads a JSON document. Absent if a field is missing or has the wrong type; unknown keys are ignored.
  static std::optional<MessageFeed> parse(std::string_view document);

  struct Reader {
    std::string slug;
    std::string version;
    /// "yyyy-MM-dd".
    std::string today;
    /// The ids of the messages that the user has closed.
    std::set<std::string> seen;
  };
  /// The first message for this reader; null for none.
  const AppMessage* next(const Reader& reader) const;
};

}  // namespace spacemint
