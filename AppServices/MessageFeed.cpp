#include "AppServices/MessageFeed.h"

#include "core/base/NumericOrder.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrl>

#include <algorithm>

namespace spacemint {

namespace {

// Reads the fields of one JSON object, and remembers whether one was missing or of the wrong type.
class Fields {
 public:
  explicit Fields(const QJsonValue& value) : object_(value.toObject()), isGood_(value.isObject()) {}

  bool isGood() const { return isGood_; }

  std::optional<QJsonValue> optional(const QString& key) const {
    const QJsonValue value = object_.value(key);
    if (value.isUndefined() || value.isNull()) return {};
    return value;
  }

  std::string text(const QString& key) {
    const QJsonValue value = object_.value(key);
    isGood_ = isGood_ && value.isString();
    return value.toString().toStdString();
  }

  std::optional<std::string> optionalText(const QString& key) {
    if (!optional(key)) return {};
    return text(key);
  }

  std::optional<std::vector<std::string>> optionalTexts(const QString& key) {
    const auto value = optional(key);
    if (!value) return {};
    isGood_ = isGood_ && value->isArray();
    std::vector<std::string> texts;
    for (const QJsonValue element : value->toArray()) {
      isGood_ = isGood_ && element.isString();
      texts.push_back(element.toString().toStdString());
    }
    return texts;
  }

  void require(bool condition) { isGood_ = isGood_ && condition; }

 private:
  QJsonObject object_;
  bool isGood_;
};

bool isWebAddress(const std::string& text) {
  const QUrl url{QString::fromStdString(text), QUrl::StrictMode};
  return (url.scheme() == QStringLiteral("https") || url.scheme() == QStringLiteral("http")) &&
         !url.host().isEmpty();
}

std::optional<AppMessage::Link> parseLink(const QJsonValue& value) {
  Fields fields{value};
  AppMessage::Link link{.title = fields.text(QStringLiteral("title")),
                        .url = fields.text(QStringLiteral("url"))};
  return fields.isGood() ? std::optional{std::move(link)} : std::nullopt;
}

std::optional<AppMessage> parseMessage(const QJsonValue& value) {
  Fields fields{value};
  AppMessage message{.id = fields.text(QStringLiteral("id")),
                     .title = fields.text(QStringLiteral("title")),
                     .body = fields.text(QStringLiteral("body")),
                     .apps = fields.optionalTexts(QStringLiteral("apps")),
                     .minVersion = fields.optionalText(QStringLiteral("minVersion")),
                     .maxVersion = fields.optionalText(QStringLiteral("maxVersion")),
                     .until = fields.optionalText(QStringLiteral("until"))};
  if (const auto link = fields.optional(QStringLiteral("link"))) {
    message.link = parseLink(*link);
    fields.require(message.link.has_value());
    // Only web pages are opened. A message with another link, such as "mailto:", is shown without a button.
    if (message.link && !isWebAddress(message.link->url)) message.link.reset();
  }
  return fields.isGood() ? std::optional{std::move(message)} : std::nullopt;
}

bool isFor(const AppMessage& message, const MessageFeed::Reader& reader) {
  if (reader.seen.contains(message.id)) return false;
  if (message.apps && std::ranges::find(*message.apps, reader.slug) == message.apps->end()) return false;
  if (message.minVersion && numericOrder(reader.version, *message.minVersion) < 0) return false;
  if (message.maxVersion && numericOrder(reader.version, *message.maxVersion) > 0) return false;
  return !message.until || *message.until >= reader.today;
}

}  // namespace

std::optional<MessageFeed> MessageFeed::parse(std::string_view document) {
  const auto bytes = QByteArray::fromRawData(document.data(), static_cast<qsizetype>(document.size()));
  const QJsonValue messages = QJsonDocument::fromJson(bytes).object().value(QStringLiteral("messages"));
  if (!messages.isArray()) return {};
  MessageFeed feed;
  for (const QJsonValue value : messages.toArray()) {
    auto message = parseMessage(value);
    if (!message) return {};
    feed.messages.push_back(*std::move(message));
  }
  return feed;
}

const AppMessage* MessageFeed::next(const Reader& reader) const {
  const auto found =
      std::ranges::find_if(messages, [&reader](const AppMessage& message) { return isFor(message, reader); });
  return found == messages.end() ? nullptr : &*found;
}

}  // namespace spacemint
