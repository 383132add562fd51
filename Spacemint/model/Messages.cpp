#include "Spacemint/model/Messages.h"

namespace spacemint {

void Messages::show(std::string message, std::optional<MessageAction> action) {
  const bool isSame = message_ == message && !action_ && !action;
  message_ = std::move(message);
  action_ = std::move(action);
  if (!isSame) Q_EMIT changed();
}

void Messages::clear() {
  if (!message_ && !action_) return;
  message_.reset();
  action_.reset();
  Q_EMIT changed();
}

void Messages::performAction() {
  // A copy, because the action may replace the one that is kept.
  if (const auto action = action_) action->perform();
}

}  // namespace spacemint
