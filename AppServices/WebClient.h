#pragma once

#include <QByteArray>
#include <QNetworkAccessManager>
#include <QNetworkRequest>
#include <QUrl>

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace spacemint {

/// What a server answered, whole.
struct WebReply {
  int status = 0;
  QByteArray body = {};
};

/// The services' way to the network. HTTPS only, but for servers on this machine; redirected only within the
/// same scheme, host and port; without cookies, caches, stored passwords or compression. Main thread only.
class WebClient {
 public:
  /// Absent for anything but a whole answer of a server.
  using Callback = std::function<void(std::optional<WebReply>)>;

  struct Limits {
    /// For a whole exchange; for a stream, between two pieces of it.
    std::chrono::milliseconds time = std::chrono::seconds{60};
    /// The longest answer, in bytes.
    qint64 size = 1'000'000;
  };

  /// `agent` is what servers are told of the program that asks.
  WebClient(std::string agent, Limits limits) : agent_(std::move(agent)), limits_(limits) {}

  /// Whether this URL may be asked at all.
  static bool mayAsk(const QUrl& url);

  /// The answer comes later, or never when `context` is gone by then.
  void get(const QUrl& url, QObject* context, Callback callback);
  void postJson(const QUrl& url, const QByteArray& body, QObject* context, Callback callback);

  /// The bytes of a file from `offset` on, in pieces of the caller's own reading. The reply deletes itself
  /// when it has finished. Null for a URL that may not be asked.
  QNetworkReply* stream(const QUrl& url, qint64 offset);

 private:
  QNetworkRequest request(const QUrl& url) const;
  void collect(QNetworkReply* reply, QObject* context, Callback callback) const;

  std::string agent_;
  Limits limits_;
  QNetworkAccessManager network_;
};

}  // namespace spacemint
