#pragma once

#include <QObject>

#include <functional>
#include <optional>
#include <string>

namespace spacemint {

/// A button beside a message.
struct MessageAction {
  std::string title;
  std::function<void()> perform;
};

/// The one message that the interface shows. It stays until another takes its place or it is cleared.
class Messages : public QObject {
  Q_OBJECT
 public:
  using QObject::QObject;

  const std::optional<std::string>& message() const { return message_; }
  const std::optional<MessageAction>& action() const { return action_; }

  /// A button of an earlier message goes with it.
  void show(std::string message, std::optional<MessageAction> action = std::nullopt);
  void clear();
  /// Performs the action of the message, if there is one. The action may show another message.
  void performAction();

 Q_SIGNALS:
  void changed();

 private:
  std::optional<std::string> message_;
  std::optional<MessageAction> action_;
};

}  // namespace spacemint
