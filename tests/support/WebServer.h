#pragma once

#include "support/Files.h"

#include <QByteArray>
#include <QHostAddress>
#include <QMap>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <QUrl>

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace spacemint::support {

/// What somebody asked the server for.
struct WebRequest {
  QByteArray method;
  QByteArray path;
  /// Names in lower case.
  QMap<QByteArray, QByteArray> headers = {};
  QByteArray body = {};
};

/// What the server does with a request.
struct WebAnswer {
  int status = 200;
  QByteArray body = {};
  QByteArray type = "application/json";
  /// More header lines, each with its line break.
  QByteArray headers = {};
  /// How many bytes the head promises, where that is not the body's length.
  qint64 length = -1;
  /// The body comes in pieces of so many bytes, one a `pause`; 0 for at once.
  qint64 piece = 0;
  std::chrono::milliseconds pause{0};
  /// Says nothing and leaves the line open.
  bool isSilent = false;
};

/// A web server on this machine that runs on the test's own event loop.
class WebServer {
 public:
  using Handler = std::function<WebAnswer(const WebRequest&)>;

  explicit WebServer(Handler handler)
      : WebServer(std::move(handler), "http", std::make_unique<QTcpServer>()) {}

  /// One that speaks HTTPS under the certificate of the tests.
  static WebServer secure(Handler handler) {
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setLocalCertificate(certificate());
    configuration.setPrivateKey(QSslKey{bytesOf("key"), QSsl::Ec});
    auto server = std::make_unique<QSslServer>();
    server->setSslConfiguration(configuration);
    return {std::move(handler), "https", std::move(server)};
  }
  /// For 127.0.0.1. Nobody trusts it, and its key is no secret: for tests only.
  static QSslCertificate certificate() { return QSslCertificate{bytesOf("pem")}; }

  std::string address() const { return scheme_ + "://127.0.0.1:" + std::to_string(server_->serverPort()); }
  const std::vector<WebRequest>& requests() const { return requests_; }
  /// How many requests for this path came.
  std::ptrdiff_t count(const QByteArray& path) const {
    return std::ranges::count(requests_, path, &WebRequest::path);
  }
  void setHandler(Handler handler) { handler_ = std::move(handler); }

 private:
  WebServer(Handler handler, std::string scheme, std::unique_ptr<QTcpServer> server)
      : scheme_(std::move(scheme)),
        server_(std::move(server)),
        handler_(std::move(handler)) {
    server_->listen(QHostAddress::LocalHost);
    QObject::connect(server_.get(), &QTcpServer::pendingConnectionAvailable, server_.get(),
                     [this] { accept(); });
  }

  static QByteArray bytesOf(const char* kind) {
    return QByteArray::fromStdString(readText(std::string{SPACEMINT_TEST_CERTIFICATE "."} + kind));
  }

  void accept() {
    while (QTcpSocket* socket = server_->nextPendingConnection()) {
      QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
      QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { read(socket); });
    }
  }

  void read(QTcpSocket* socket) {
    const QByteArray seen = socket->peek(socket->bytesAvailable());
    const qsizetype end = seen.indexOf("\r\n\r\n");
    if (end < 0) return;
    const QList<QByteArray> lines = seen.left(end).split('\n');
    const QList<QByteArray> words = lines[0].split(' ');
    WebRequest request{.method = words.value(0), .path = words.value(1)};
    for (const QByteArray& line : lines.mid(1)) {
      const qsizetype colon = line.indexOf(':');
      request.headers.insert(line.left(colon).toLower(), line.mid(colon + 1).trimmed());
    }
    const qsizetype length = request.headers.value("content-length").toLongLong();
    if (seen.size() < end + 4 + length) return;
    request.body = socket->read(end + 4 + length).mid(end + 4);
    requests_.push_back(request);
    answer(socket, handler_(request));
  }

  static void answer(QTcpSocket* socket, const WebAnswer& answer) {
    if (answer.isSilent) return;
    const qint64 length = answer.length < 0 ? answer.body.size() : answer.length;
    socket->write("HTTP/1.1 " + QByteArray::number(answer.status) +
                  " Said\r\nConnection: close\r\nContent-Type: " + answer.type +
                  "\r\nContent-Length: " + QByteArray::number(length) + "\r\n" + answer.headers + "\r\n");
    if (answer.piece == 0) {
      socket->write(answer.body);
      socket->disconnectFromHost();
      return;
    }
    auto* timer = new QTimer(socket);
    QObject::connect(timer, &QTimer::timeout, socket, [socket, answer, sent = qint64{0}]() mutable {
      socket->write(answer.body.mid(sent, answer.piece));
      sent += answer.piece;
      if (sent >= answer.body.size()) socket->disconnectFromHost();
    });
    timer->start(answer.pause);
  }

  std::string scheme_;
  std::unique_ptr<QTcpServer> server_;
  Handler handler_;
  std::vector<WebRequest> requests_;
};

}  // namespace spacemint::support
