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

/// Answers other processes of the user from a journal, with a thread of its own that sleeps while nobody
/// asks. A peer that sends rubbish, too much or nothing, or does not read, is dropped after a while and keeps
/// nobody else waiting; questions are answered one after the other.
class JournalServer {
 public:
  struct Parts {
    EventJournal& journal;
    FileHandle listener;
    /// How long a peer may take to send its request, and to read the answer.
    std::chrono::milliseconds readingTime{2'000};
    std::chrono::milliseconds writingTime{10'000};
  };

  /// More wait until one of these is done.
  static constexpr std::size_t connectionLimit = 32;

  static std::expected<std::unique_ptr<JournalServer>, Error> start(Parts parts);
  ~JournalServer();
  JournalServer(const JournalServer&) = delete;
  JournalServer& operator=(const JournalServer&) = delete;

 private:
  using Clock = std::chrono::steady_clock;
  struct Connection {
    FileHandle handle;
    Clock::time_point deadline;
    std::string request;
    // Empty until the request is whole.
    std::string answer;
    std::size_t sent = 0;
  };

  JournalServer(Parts parts, FileHandle wake) : parts_(std::move(parts)), wake_(std::move(wake)) {}

  void run();
  int patience() const;
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
