#pragma once

#include "AppServices/MessageFeed.h"

#include <string>
#include <variant>

namespace spacemint {

/// The question for consent to usage reports. It is asked once.
struct UsageQuestion {
  bool operator==(const UsageQuestion&) const = default;
};

/// What a card shows.
using Notice = std::variant<AppMessage, UsageQuestion>;

/// The texts of a card. All are plain text.
struct NoticeText {
  std::string title = {};
  std::string body = {};
  /// The titles of the buttons; empty for no button.
  std::string primary = {};
  std::string secondary = {};

  bool operator==(const NoticeText&) const = default;
};

NoticeText noticeText(const Notice& notice, const std::string& appName);

}  // namespace spacemint
