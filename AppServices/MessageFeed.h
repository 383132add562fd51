#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// A short message of the maker.
struct AppMessage {
  /// A button; its URL is one of the web.
  struct Link {
    std::string title;
    std::string url;

    bool operator==(const Link&) const = default;
  };

  std::string id;
  std::string title;
  std::string body;
  std::optional<Link> link = {};
  /// The slugs of the products it is for; absent means all.
  std::optional<std::vector<std::string>> apps = {};
  /// The lowest and the highest version that gets it.
  std::optional<std::string> minVersion = {};
  std::optional<std::string> maxVersion = {};
  /// The last day on which it is shown, "yyyy-MM-dd".
  std::optional<std::string> until = {};

  bool operator==(const AppMessage&) const = default;
};

/// The messages that the maker has published.
struct MessageFeed {
  /// Most important first.
  std::vector<AppMessage> messages;

  /// Absent for a document that is not as described above; unknown keys are ignored.
  static std::optional<MessageFeed> parse(std::string_view document);

  struct Reader {
    std::string slug;
    std::string version;
    /// "yyyy-MM-dd".
    std::string today;
    /// Ids of the messages that were dismissed.
    std::set<std::string> seen;
  };
  /// The first message for this reader; null for none.
  const AppMessage* next(const Reader& reader) const;
};

}  // namespace spacemint
