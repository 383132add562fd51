#include "spacemintctl/browse/Measurement.h"

#include "core/base/Log.h"
#include "core/scan/StoppableScan.h"

#include <atomic>
#include <chrono>
#include <exception>
#include <mutex>
#include <utility>

namespace spacemint::ctl {

namespace {

constexpr std::chrono::milliseconds pace{100};

}  // namespace

struct Measurement::Shared {
  using Clock = std::chrono::steady_clock;

  Shared(Inbox& to, Events calls) : inbox(to), events(std::move(calls)) {}

  Inbox& inbox;
  Events events;
  // False after the owner has gone. The thread of the screen sets and reads it.
  bool isWanted = true;
  std::atomic<bool> isStopped = false;
  std::atomic<bool> isKept = false;

  std::mutex mutex;
  std::string shownPath;  // guarded by `mutex`

  // The members below belong to the scan's thread.
  StoppableScan stoppable{[this] { return isKept.load(); }};
  std::optional<Node> folder = {};
  Clock::time_point next = Clock::now();

  void look(const DiskScanner::Unfinished& unfinished) {
    if (Clock::now() < next) return;
    const std::lock_guard lock{mutex};
    folder = unfinished.folder(shownPath);
  }
};

namespace {

template <class Shared>
void postProgress(const std::shared_ptr<Shared>& shared, const DiskScanner::Progress& progress) {
  const auto now = std::chrono::steady_clock::now();
  if (now < shared->next) return;
  shared->next = now + pace;
  shared->inbox.post([shared, progress, folder = std::exchange(shared->folder, std::nullopt)]() mutable {
    if (shared->isWanted && shared->events.advanced) shared->events.advanced(progress, std::move(folder));
  });
}

// What is measured so far, as a scan.
Snapshot unfinishedScan(DiskScanner::Result result) {
  Snapshot scan{
      .root = std::move(result.root), .fileCount = result.fileCount, .coverage = std::move(result.coverage)};
  scan.measuredPart = 0;
  return scan;
}

}  // namespace

Measurement::Measurement(Inbox& inbox, Work work, Events events)
    : shared_(std::make_shared<Shared>(inbox, std::move(events))) {
  thread_ = std::jthread([shared = shared_, work = std::move(work)] {
    const Watched watched = [&](DiskScanner::Arguments& arguments) {
      arguments.look = [&](const DiskScanner::Unfinished& unfinished) { shared->look(unfinished); };
      arguments.progress = [&](const DiskScanner::Progress& progress) { postProgress(shared, progress); };
      arguments.shouldCancel = [&] { return shared->isStopped.load(); };
      shared->stoppable.watch(arguments);
    };
    std::optional<Snapshot> scan;
    try {
      scan = work(watched);
    } catch (const std::exception& problem) {
      log(LogLevel::info, std::string{"a scan ended early: "} + problem.what());
    }
    auto part = shared->stoppable.takePart();
    if (!scan && part) scan = unfinishedScan(std::move(*part));
    auto result = std::make_shared<std::optional<Snapshot>>(std::move(scan));
    shared->inbox.post([shared, result] {
      if (shared->isWanted && shared->events.ended) shared->events.ended(std::move(*result));
    });
  });
}

Measurement::~Measurement() {
  shared_->isWanted = false;
  shared_->isStopped = true;
}

void Measurement::show(std::string path) {
  const std::lock_guard lock{shared_->mutex};
  shared_->shownPath = std::move(path);
}

void Measurement::stopAndKeep() {
  shared_->isKept = true;
}

}  // namespace spacemint::ctl
