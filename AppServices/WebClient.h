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

/// The complete answer of a server.
struct WebReply {
  int status = 0;
  QByteArray body = {};
};

/// The only way to the network. HTTPS only, except to servers on this machine (loopback). Follows
/// redirections only to the same scheme, host and port. No cookies, caches, stored passwords or compression.
/// Main thread only.
class WebClient {
 public:
  /// Absent if there was no complete answer within the limits.
  using Callback = std::function<void(std::optional<WebReply>)>;

  struct Limits {
    /// For a whole exchange; for a stream, the longest pause between two pieces.
    std::chrono::milliseconds time = std::chrono::seconds{60};
    /// The longest answer, in bytes.
    qint64 size = 1'000'000;
  };

  /// `agent`: the value of the header User-Agent.
  WebClient(std::string agent, Limits limits) : agent_(std::move(agent)), limits_(limits) {}

  /// Whether requests to this URL are allowed.
  static bool mayAsk(const QUrl& url);

  /// Calls `callback` later; never if `context` is destroyed before, which also aborts the request.
  void get(const QUrl& url, QObject* context, Callback callback);
  void postJson(const QUrl& url, const QByteArray& body, QObject* context, Callback callback);

  /// Requests the bytes of a file from `offset` on. The caller reads them from the reply, which deletes
  /// itself when it has finished. Null for a URL that is not allowed.
  QNetworkReply* stream(const QUrl& url, qint64 offset);

 private:
  QNetworkRequest request(const QUrl& url) const;
  void collect(QNetworkReply* reply, QObject* context, Callback callback) const;

  std::string agent_;
  Limits limits_;
  QNetworkAccessManager network_;
};

}  // namespace spacemint
