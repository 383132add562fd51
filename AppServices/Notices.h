#pragma once

#include "AppServices/NoticeText.h"
#include "AppServices/Usage.h"

#include <QObject>
#include <QQmlEngine>

#include <chrono>
#include <set>

namespace spacemint {

/// Shows at most one notice at a time: the question for consent, or a message of the maker. Main thread only.
class Notices : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("one of the services")
  Q_PROPERTY(bool showing READ isShowing NOTIFY currentChanged)
  // These keep their values after the notice is closed: the card still shows them while it fades out.
  Q_PROPERTY(QString title READ title NOTIFY currentChanged)
  Q_PROPERTY(QString body READ body NOTIFY currentChanged)
  Q_PROPERTY(QString primary READ primary NOTIFY currentChanged)
  Q_PROPERTY(QString secondary READ secondary NOTIFY currentChanged)
  Q_PROPERTY(QString closeHelp READ closeHelp CONSTANT)
 public:
  /// The referenced objects outlive the notices.
  struct Host {
    AppInfo info;
    DefaultsStore& defaults;
    WebClient& web;
    Usage& usage;
    std::function<std::string()> today;
    /// Opens a page in the user's browser; calls `failed`, which may be empty, if no program does.
    std::function<void(const std::string& url, std::function<void()> failed)> openUrl;
    std::chrono::milliseconds interval = std::chrono::hours{24};
  };

  static constexpr const char* seenKey = "BrindlefoxSeenMessages";

  explicit Notices(Host host);

  /// Looks for a notice now and then every `interval`. Further calls do nothing.
  void start();
  /// Sends the usage report if it is due, and looks for a notice unless one is shown.
  void refresh();
  /// Asks the feed. Failures are ignored; the next refresh tries again.
  void showNextMessage();

  /// Closes the notice. A message is not shown again; the question counts as answered with no.
  Q_INVOKABLE void dismiss();
  void answerUsage(bool isAllowed);
  /// For the card's buttons.
  Q_INVOKABLE void choosePrimary();
  Q_INVOKABLE void chooseSecondary();

  const std::optional<Notice>& current() const { return current_; }
  bool isShowing() const { return current_.has_value(); }
  QString title() const { return QString::fromStdString(text_.title); }
  QString body() const { return QString::fromStdString(text_.body); }
  QString primary() const { return QString::fromStdString(text_.primary); }
  QString secondary() const { return QString::fromStdString(text_.secondary); }
  static QString closeHelp();

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
  /// The ids of messages that were closed since the start. If an id cannot be stored, its message comes again
  /// at the next start.
  std::set<std::string> seen_;
};

/// The address of a product's feed; invalid if `site` is no URL.
QUrl feedAddress(const std::string& site, const std::string& slug);

}  // namespace spacemint
