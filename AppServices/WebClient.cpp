#include "AppServices/WebClient.h"

#include "core/base/Log.h"

#include <QHostAddress>
#include <QNetworkReply>
#include <QTimer>

#include <memory>

namespace spacemint {

namespace {

constexpr int mostRedirects = 5;
constexpr qint64 readAhead = 1'000'000;

void answerLater(QObject* context, WebClient::Callback callback) {
  QTimer::singleShot(0, context, [callback = std::move(callback)] { callback({}); });
}

}  // namespace

bool WebClient::mayAsk(const QUrl& url) {
  if (!url.isValid() || url.host().isEmpty() || !url.userInfo().isEmpty()) return false;
  if (url.scheme() == QStringLiteral("https")) return true;
  return url.scheme() == QStringLiteral("http") && QHostAddress(url.host()).isLoopback();
}

void WebClient::get(const QUrl& url, QObject* context, Callback callback) {
  if (!mayAsk(url)) return answerLater(context, std::move(callback));
  collect(network_.get(request(url)), context, std::move(callback));
}

void WebClient::postJson(const QUrl& url, const QByteArray& body, QObject* context, Callback callback) {
  if (!mayAsk(url)) return answerLater(context, std::move(callback));
  QNetworkRequest post = request(url);
  post.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
  collect(network_.post(post, body), context, std::move(callback));
}

QNetworkReply* WebClient::stream(const QUrl& url, qint64 offset) {
  if (!mayAsk(url)) return nullptr;
  QNetworkRequest get = request(url);
  get.setTransferTimeout(static_cast<int>(limits_.time.count()));
  if (offset > 0) get.setRawHeader("Range", "bytes=" + QByteArray::number(offset) + "-");
  QNetworkReply* reply = network_.get(get);
  reply->setReadBufferSize(readAhead);
  return reply;
}

QNetworkRequest WebClient::request(const QUrl& url) const {
  QNetworkRequest request{url};
  request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::SameOriginRedirectPolicy);
  request.setMaximumRedirectsAllowed(mostRedirects);
  request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
  request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
  request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
  request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
  request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
  request.setAttribute(QNetworkRequest::AutoDeleteReplyOnFinishAttribute, true);
  request.setRawHeader("User-Agent", QByteArray::fromStdString(agent_));
  // By default Qt would send the user's language, and accept compressed answers that unpack to a large size.
  request.setRawHeader("Accept-Language", "en");
  request.setRawHeader("Accept-Encoding", "identity");
  return request;
}

void WebClient::collect(QNetworkReply* reply, QObject* context, Callback callback) const {
  const auto body = std::make_shared<QByteArray>();
  reply->setReadBufferSize(readAhead);
  const auto read = [reply, body, limit = limits_.size] {
    body->append(reply->read(limit + 1 - body->size()));
    return body->size() <= limit;
  };
  QObject::connect(reply, &QNetworkReply::readyRead, reply, [reply, read] {
    if (!read()) reply->abort();
  });
  QObject::connect(reply, &QNetworkReply::finished, context,
                   [reply, read, body, callback = std::move(callback)] {
                     const bool isWhole = reply->error() == QNetworkReply::NoError && read();
                     const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
                     if (!isWhole || !status.isValid()) {
                       log(LogLevel::info, "no answer from " + reply->url().host().toStdString() + ": " +
                                               reply->errorString().toStdString());
                       return callback({});
                     }
                     callback(WebReply{.status = status.toInt(), .body = *body});
                   });
  QObject::connect(context, &QObject::destroyed, reply, [reply, context] {
    QObject::disconnect(reply, nullptr, context, nullptr);
    reply->abort();
  });
  QTimer::singleShot(limits_.time, reply, [reply] { reply->abort(); });
}

}  // namespace spacemint
