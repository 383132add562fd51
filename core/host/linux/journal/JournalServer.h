#pragma once

#include "core/base/Error.h"
#include "core/host/EventJournal.h"
#include "core/host/FileHandle.h"

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace spacemint {

/// Answers other processes of the user from a journal. Its own thread sleeps while no client asks, and
/// answers queries one after the other. It disconnects a client that sends no valid request, sends too much,
/// or does not send or read in time; other clients do not wait for such a client.
class JournalServer {
 public:
  struct Parts {
    EventJournal& journal;
    FileHandle listener;
    /// How long a client may take to send its request, and to read the answer.
    std::chrono::milliseconds readingTime{2'000};
    std::chrono::milliseconds writingTime{10'000};
  };

  /// The largest number of clients served at the same time. More clients wait.
  static constexpr std::size_t connectionLimit = 32;

  /// The journal must outlive the server. Fails with an errno when the system has no descriptor left.
  static std::expected<std::unique_ptr<JournalServer>, Error> start(Parts parts);
  /// Disconnects all clients and waits for the thread.
  ~JournalServer();
  JournalServer(const JournalServer&) = delete;
  JournalServer& operator=(const JournalServer&) = delete;

 private:
  using Clock = std::chrono::steady_clock;
  struct Connection {
    FileHandle handle;
    Clock::time_point deadline;
    std::string request;
    // Empty until the whole request was received.
    std::string answer;
    std::size_t sent = 0;
  };

  JournalServer(Parts parts, FileHandle wake) : parts_(std::move(parts)), wake_(std::move(wake)) {}

  void run();
  int untilDeadline() const;
  void accept();
  bool serve(Connection& connection);
  bool receive(Connection& connection);
  bool send(Connection& connection) const;
  std::string answerTo(const std::string& request);

  Parts parts_;
  FileHandle wake_;
  std::vector<Connection> connections_;
  std::atomic<bool> stopping_ = false;
  std::thread thread_;
};

}  // namespace spacemint
