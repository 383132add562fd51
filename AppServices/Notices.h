#pragma once

#include "AppServices/NoticeText.h"
#include "AppServices/Usage.h"

#include <QObject>
#include <QQmlEngine>

#include <chrono>
#include <set>

namespace spacemint {

/// At most one notice at a time: the question for consent, or a message of the maker. Main thread only.
class Notices : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("one of the services")
  Q_PROPERTY(bool showing READ isShowing NOTIFY currentChanged)
  // These stay as they are after the notice is gone, so that it can leave with its text.
  Q_PROPERTY(QString title READ title NOTIFY currentChanged)
  Q_PROPERTY(QString body READ body NOTIFY currentChanged)
  Q_PROPERTY(QString primary READ primary NOTIFY currentChanged)
  Q_PROPERTY(QString secondary READ secondary NOTIFY currentChanged)
 public:
  /// All but `info` and the functions outlives this.
  struct Host {
    AppInfo info;
    DefaultsStore& defaults;
    WebClient& web;
    Usage& usage;
    std::function<std::string()> today;
    /// Opens a page in the user's browser.
    std::function<void(const std::string& url)> openUrl;
    std::chrono::milliseconds interval = std::chrono::hours{24};
  };

  static constexpr const char* seenKey = "BrindlefoxSeenMessages";

  explicit Notices(Host host);

  /// Looks for a notice at once and then every `interval`; only the first call counts.
  void start();
  /// Sends the usage report that is due and looks for a notice unless one is showing.
  void refresh();
  /// Asks the feed. Any failure is silent; the next refresh tries again.
  void showNextMessage();

  /// Closes the notice for good: a message counts as seen, the question as answered with no.
  Q_INVOKABLE void dismiss();
  void answerUsage(bool isAllowed);
  /// What the card's buttons do.
  Q_INVOKABLE void choosePrimary();
  Q_INVOKABLE void chooseSecondary();

  const std::optional<Notice>& current() const { return current_; }
  bool isShowing() const { return current_.has_value(); }
  QString title() const { return QString::fromStdString(text_.title); }
  QString body() const { return QString::fromStdString(text_.body); }
  QString primary() const { return QString::fromStdString(text_.primary); }
  QString secondary() const { return QString::fromStdString(text_.secondary); }

 Q_SIGNALS:
  void currentChanged();

 private:
  void show(Notice notice);
  void showFrom(const std::optional<WebReply>& reply);
  void finish();
  void usageAnswered();
  bool isAsking() const { return current_ && std::holds_alternative<UsageQuestion>(*current_); }
  void remember(const std::string& id);

  Host host_;
  bool isStarted_ = false;
  std::optional<Notice> current_;
  NoticeText text_;
  /// Also those whose ids could not be stored; they come again at the next start.
  std::set<std::string> seen_;
};

/// Where the feed of a product lies; not valid where `site` is no URL.
QUrl feedAddress(const std::string& site, const std::string& slug);

}  // namespace spacemint
