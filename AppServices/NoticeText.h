#pragma once

#include "AppServices/MessageFeed.h"

#include <string>
#include <variant>

namespace spacemint {

/// The one-time question for consent to usage reports.
struct UsageQuestion {
  bool operator==(const UsageQuestion&) const = default;
};

/// What a card may be about.
using Notice = std::variant<AppMessage, UsageQuestion>;

/// What a card says.
struct NoticeText {
  std::string title = {};
  std::string body = {};
  /// Its buttons; empty for none.
  std::string primary = {};
  std::string secondary = {};

  bool operator==(const NoticeText&) const = default;
};

NoticeText noticeText(const Notice& notice, const std::string& appName);

}  // namespace spacemint
