#pragma once

#include "AppServices/WebClient.h"
#include "core/host/DefaultsStore.h"
#include "support/TemporaryFolder.h"
#include "support/Waiting.h"
#include "support/WebServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace spacemint {

/// A server, a store and a day, all of the test's own.
class ServicesTest : public testing::Test {
 protected:
  /// Whether the server has been asked for this so many times.
  bool comes(const QByteArray& path, std::ptrdiff_t times = 1) {
    return support::waitUntil([&] { return server.count(path) >= times; });
  }
  /// Lets everything happen that is going to: asks the server something of our own and waits for the answer,
  /// which comes after all that was asked before.
  void settle() {
    bool isAnswered = false;
    QObject context;
    web.get(QUrl{QString::fromStdString(server.address() + "/settle")}, &context,
            [&](const std::optional<WebReply>&) { isAnswered = true; });
    ASSERT_TRUE(support::waitUntil([&] { return isAnswered; }));
  }
  /// What the server says to requests for `path`; 404 to all else.
  void serve(const QByteArray& path, support::WebAnswer answer) { answers.insert(path, std::move(answer)); }

  QMap<QByteArray, support::WebAnswer> answers;
  support::WebServer server{[this](const support::WebRequest& request) {
    return answers.value(request.path, support::WebAnswer{.status = 404});
  }};
  support::TemporaryFolder folder;
  DefaultsStore defaults{folder / "settings.json"};
  WebClient web{"Spacemint", {.time = std::chrono::seconds{60}}};
  std::string day = "2026-03-01";
};

}  // namespace spacemint
