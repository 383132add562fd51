#include "core/scan/ReadAheadListing.h"

#include "core/base/LockSoon.h"
#include "core/base/Log.h"
#include "core/host/ThreadPriority.h"
#include "core/host/VolumeInfo.h"
#include "core/scan/KeptEntries.h"
#include "core/scan/NameList.h"
#include "core/tree/Paths.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <list>
#include <mutex>
#include <optional>
#include <ranges>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace spacemint {

namespace {

// How far helpers may run ahead of the walk: the number of folders listed but not visited yet, and the bytes
// of memory for their entries.
constexpr std::size_t mostFoldersAhead = 512;
constexpr std::size_t bytesAhead = 4'000'000;

// Helpers may use a quarter of the process's file handles. The rest is for the walk, which needs a handle for
// each level, and for other parts of the process.
constexpr std::size_t shareOfHandles = 4;

// How soon the walk takes a folder that is ready while helpers have further work.
constexpr std::chrono::milliseconds longestWait{50};

// How many batches of a folder a helper reads. The walk lists the rest of a huge folder itself.
constexpr std::size_t mostBatches = 2;

// One processor is busy with the walk and the locks when there are many.
constexpr unsigned mostProcessors = 8;

bool isOutOfHandles(int error) {
  return error == EMFILE || error == ENFILE;
}

}  // namespace

// A folder from the time when a helper or the walk begins to open it until the walk leaves it.
struct ReadAheadListing::Record : std::enable_shared_from_this<Record> {
  enum class State : std::uint8_t {
    inHelper,  // a helper opens and lists the folder
    inWalk,    // the walk lists the folder, or the rest of the folder
    listed,    // listed to the end: helpers may list the subfolders
  };

  void take(std::unique_ptr<OpenFolder> opened) {
    folder = std::move(opened);
    facts = folder->facts();
  }

  // As new, for another folder.
  void reset() {
    folder.reset();
    facts = {};
    openError = listingError = 0;
    for (KeptEntries& batch : batches) batch.clear();
    state = State::inHelper;
    abandoned = false;
    pending = {};
    ahead.clear();
    place.reset();
  }

  std::string name;
  std::string path;  // only if the walk may pass by folders

  // Written by the thread that lists the folder; other threads read these members only afterwards.
  std::unique_ptr<OpenFolder> folder;
  OpenFolder::Facts facts;  // also after the handle was closed
  int openError = 0;
  int listingError = 0;
  std::array<KeptEntries, mostBatches> batches;  // those without entries do not exist

  // Guarded by `Crew::mutex_`.
  State state = State::inHelper;
  bool abandoned = false;
  NameList pending;                                   // subfolders not begun by any thread, in listing order
  std::deque<std::shared_ptr<Record>> ahead;          // subfolders begun by helpers, in the walk's order
  std::optional<std::list<Record*>::iterator> place;  // in `Crew::line_`
};

// The helper threads and the state that they share with the walk.
//
// `line_` contains the folders that have pending subfolders, or whose listing is not complete, in the order
// in which the walk will visit them. A helper takes the next pending subfolder of the first listed folder in
// the line, so helpers list the folders that the walk needs next. Threads are started when there is work for
// one more, up to the depth; a thread above the depth rests.
class ReadAheadListing::Crew {
 public:
  Crew(ReadAheadDepth::Limits depth, std::size_t foldersAhead, std::uint64_t device, WalkFacts walk)
      : device_(device),
        walk_(std::move(walk)),
        foldersAhead_(foldersAhead),
        depth_(depth) {}

  ~Crew() {
    {
      const std::lock_guard lock(mutex_);
      stopping_ = true;
    }
    work_.notify_all();
    for (std::thread& thread : threads_) thread.join();
  }

  Crew(const Crew&) = delete;
  Crew& operator=(const Crew&) = delete;

  std::shared_ptr<Record> beginWith(std::unique_ptr<OpenFolder> root, std::string path) {
    auto record = std::make_shared<Record>();
    record->path = std::move(path);
    record->take(std::move(root));
    record->state = Record::State::inWalk;
    const std::lock_guard lock(mutex_);
    record->place = line_.insert(line_.end(), record.get());
    visited_.push_back(record.get());
    return record;
  }

  // Called when the walk opens a subfolder. Returns the record that a helper has begun, after waiting for
  // that helper; or a new record that the walk must list. Null if the subfolder is not the next one in the
  // walk's order.
  std::shared_ptr<Record> take(Record& parent, const std::string& name) {
    const bool isWanted = !walk_.isWanted || walk_.isWanted();
    std::unique_lock lock = lockSoon(mutex_);
    if (std::exchange(mayWork_, isWanted) != isWanted) wakeHelper();
    if (parent.ahead.empty()) {
      if (parent.pending.empty() || parent.pending.last() != name) return nullptr;
      std::shared_ptr<Record> record = begin(parent, Record::State::inWalk);
      visited_.push_back(record.get());
      return record;
    }
    if (parent.ahead.front()->name != name) return nullptr;
    std::shared_ptr<Record> record = std::move(parent.ahead.front());
    parent.ahead.pop_front();
    awaited_ = record.get();
    while (record->state == Record::State::inHelper) {
      if (!listNext(lock, buffer_)) ready_.wait_for(lock, longestWait);
    }
    awaited_ = nullptr;
    noLongerAhead(*record);
    visited_.push_back(record.get());
    // Waking a helper for every folder would be too expensive: let helpers work in long runs.
    if (ahead_ <= foldersAhead_ / 2) wakeHelper();
    return record;
  }

  // Opens a subfolder for the walk. If the process has no file handle left, gives up what helpers hold, and
  // tries again.
  std::expected<std::unique_ptr<OpenFolder>, int> open(OpenFolder& parent, const std::string& name) {
    auto opened = parent.openSubfolder(name);
    if (opened || !isOutOfHandles(opened.error())) return opened;
    giveUp();
    return parent.openSubfolder(name);
  }

  // Closes all folders that helpers opened, makes those folders pending again, and stops reading ahead.
  void giveUp() {
    std::unique_lock lock(mutex_);
    if (foldersAhead_ == 0) return;
    log(LogLevel::info, "no file handle is left; the scan stops reading ahead");
    foldersAhead_ = 0;
    ready_.wait(lock, [&] { return working_ == 0; });
    for (Record* record : visited_ | std::views::reverse) {
      for (const auto& child : record->ahead | std::views::reverse) record->pending.push(child->name);
      forget(*record);
      if (record->state == Record::State::inWalk || !record->pending.empty()) {
        record->place = line_.insert(line_.end(), record);
      }
    }
  }

  // Called when the walk has read a batch of a folder that it lists itself.
  void note(Record& record, std::span<const Entry> entries) const {
    collectSubfolders(record, entries, record.pending);
  }

  // Called when the walk has listed a folder to the end.
  void finish(Record& record) {
    const std::unique_lock lock = lockSoon(mutex_);
    record.state = Record::State::listed;
    announce(record);
  }

  // Called when the walk closes a folder. Drops everything that helpers listed below the folder.
  void leave(std::shared_ptr<Record> record) {
    const std::unique_lock lock = lockSoon(mutex_);
    std::erase(visited_, record.get());
    forget(*record);
    if (record.use_count() > 1 || spare_.size() >= mostFoldersAhead) return;
    record->reset();
    spare_.push_back(std::move(record));
  }

 private:
  void help() {
    ListingBuffer buffer;
    std::unique_lock lock = lockSoon(mutex_);
    while (!stopping_) {
      if (helping_ < mostHelpers()) {
        ++helping_;
        const bool hasListed = listNext(lock, buffer);
        --helping_;
        if (!hasListed || ahead_ >= foldersAhead_ / 2) wakeWalk();
        if (hasListed) continue;
      }
      ++idle_;
      work_.wait(lock);
      --idle_;
    }
  }

  // Lists the folder that the walk needs next and that nobody has begun, without the lock meanwhile. False if
  // there is none, or if enough are being listed.
  bool listNext(std::unique_lock<std::mutex>& lock, ListingBuffer& buffer) {
    const std::shared_ptr<Record> parent = mayBegin() ? firstWithPending() : nullptr;
    if (!parent) return false;
    const std::shared_ptr<Record> record = begin(*parent, Record::State::inHelper);
    parent->ahead.push_back(record);
    ++ahead_;
    ++working_;
    wakeHelper();
    lock.unlock();
    NameList subfolders;
    ReadAheadDepth::Listed listed;
    const bool toItsEnd = openAndList(*parent, *record, buffer, subfolders, listed);
    lock = lockSoon(mutex_);
    --working_;
    depth_.note(listed);
    deliver(*record, toItsEnd, std::move(subfolders));
    if (foldersAhead_ == 0) ready_.notify_one();
    return true;
  }

  // Whether one more folder may be begun.
  bool mayBegin() const {
    return mayWork_ && working_ < depth_.now() && ahead_ < foldersAhead_ && bytes_ < bytesAhead;
  }

  // The walk lists folders, too, rather than wait.
  std::size_t mostHelpers() const { return std::max(depth_.now(), 2U) - 1; }

  std::shared_ptr<Record> firstWithPending() const {
    const auto first = std::ranges::find(line_, Record::State::listed, &Record::state);
    return first != line_.end() ? (*first)->shared_from_this() : nullptr;
  }

  void wakeHelper() {
    if (helping_ >= mostHelpers() || !mayBegin() || !firstWithPending()) return;
    if (idle_ > 0) {
      work_.notify_one();
    } else if (threads_.size() < mostThreads_ && threads_.size() < mostHelpers()) {
      startThread();
    }
  }

  void startThread() {
    try {
      threads_.emplace_back([this] { help(); });
    } catch (const std::system_error& failure) {
      // The process cannot start more threads. The walk lists all folders that no helper lists.
      mostThreads_ = threads_.size();
      log(LogLevel::debug, std::string{"fewer threads read ahead: "} + failure.what());
    }
  }

  // Wakes the walk if the folder that it waits for is ready. Helpers call this only when many folders are
  // ready or when they have no work: waking the walk for each folder would cost more than listing a folder.
  void wakeWalk() {
    if (awaited_ != nullptr && awaited_->state != Record::State::inHelper) ready_.notify_one();
  }

  // Takes the next pending subfolder of `parent` and puts its record into the line, before the parent and
  // behind the parent's subfolders that were begun earlier. This is the walk's order.
  std::shared_ptr<Record> begin(Record& parent, Record::State state) {
    std::shared_ptr<Record> record = newRecord();
    record->name = parent.pending.last();
    parent.pending.popLast();
    if (walk_.passesBy) record->path = Paths::join(parent.path, record->name);
    record->state = state;
    record->place = line_.insert(*parent.place, record.get());
    if (parent.pending.empty()) leaveLine(parent);
    return record;
  }

  // Most come from `spare_`: new ones would be freed by another thread than they came from, and these would
  // wait for each other in the allocator.
  std::shared_ptr<Record> newRecord() {
    if (spare_.empty()) return std::make_shared<Record>();
    std::shared_ptr<Record> record = std::move(spare_.back());
    spare_.pop_back();
    return record;
  }

  // Called without the lock. Returns true if the listing is complete.
  bool openAndList(const Record& parent, Record& record, ListingBuffer& buffer, NameList& subfolders,
                   ReadAheadDepth::Listed& listed) const {
    const auto start = std::chrono::steady_clock::now();
    const long waits = waitsOfThread();
    const bool toItsEnd = openAndList(parent, record, buffer, subfolders);
    for (const KeptEntries& batch : record.batches) listed.names += batch.entries().size();
    listed.elapsed = std::chrono::steady_clock::now() - start;
    listed.hasWaited = waitsOfThread() != waits;
    return toItsEnd;
  }

  bool openAndList(const Record& parent, Record& record, ListingBuffer& buffer, NameList& subfolders) const {
    auto opened = parent.folder->openSubfolder(record.name);
    if (!opened) {
      record.openError = opened.error();
      return true;
    }
    record.take(std::move(*opened));
    for (KeptEntries& kept : record.batches) {
      const Batch batch = record.folder->nextBatch(buffer);
      if (batch.entries.empty()) {
        record.listingError = batch.error;
        // Close the handle of a folder without subfolders (most folders) at once.
        if (!hasFolder(record.batches)) record.folder.reset();
        return true;
      }
      collectSubfolders(record, batch.entries, subfolders);
      kept.assign(batch.entries);
    }
    return false;
  }

  static bool hasFolder(std::span<const KeptEntries> batches) {
    const auto isFolder = [](const Entry& entry) { return entry.type == EntryType::folder; };
    return std::ranges::any_of(
        batches, [&](const KeptEntries& batch) { return std::ranges::any_of(batch.entries(), isFolder); });
  }

  void collectSubfolders(const Record& folder, std::span<const Entry> entries, NameList& names) const {
    for (const Entry& entry : entries) {
      const bool mayBeOpened = entry.error == 0 && entry.type == EntryType::folder && entry.device == device_;
      if (mayBeOpened && !(walk_.passesBy && walk_.passesBy(Paths::join(folder.path, entry.name))))
        names.push(entry.name);
    }
  }

  void deliver(Record& record, bool toItsEnd, NameList subfolders) {
    if (record.abandoned) return;
    record.state = toItsEnd ? Record::State::listed : Record::State::inWalk;
    record.pending = std::move(subfolders);
    for (const KeptEntries& batch : record.batches) bytes_ += batch.bytes();
    if (toItsEnd) announce(record);
  }

  // Called when a folder is listed to the end: wakes a helper for the subfolders, or takes a folder without
  // subfolders out of the line.
  void announce(Record& record) {
    if (record.pending.empty()) {
      leaveLine(record);
    } else {
      wakeHelper();
    }
  }

  void leaveLine(Record& record) {
    if (record.place) line_.erase(*record.place);
    record.place.reset();
  }

  void noLongerAhead(const Record& record) {
    --ahead_;
    for (const KeptEntries& batch : record.batches) bytes_ -= batch.bytes();
  }

  // Takes the record out of the line, and drops all records that helpers have begun below it.
  void forget(Record& record) {
    leaveLine(record);
    for (const auto& child : record.ahead) {
      child->abandoned = true;
      if (child->state == Record::State::inHelper) {
        --ahead_;  // its entries are not in `bytes_` yet
      } else {
        noLongerAhead(*child);
      }
      forget(*child);
    }
    record.ahead.clear();
  }

  const std::uint64_t device_;
  const WalkFacts walk_;
  std::mutex mutex_;
  std::condition_variable work_;   // a helper may have work
  std::condition_variable ready_;  // the folder that the walk waits for may be ready
  std::list<Record*> line_;
  std::vector<Record*> visited_;  // the walk's open folders, from the root down
  const Record* awaited_ = nullptr;
  std::vector<std::shared_ptr<Record>> spare_;  // records that nobody uses
  ListingBuffer buffer_;                        // of the walk
  bool mayWork_ = false;
  std::size_t foldersAhead_;
  ReadAheadDepth depth_;
  std::size_t ahead_ = 0;    // records begun by helpers and not yet taken by the walk
  std::size_t bytes_ = 0;    // the memory of their entries
  std::size_t working_ = 0;  // threads that open or list a folder ahead of the walk now
  std::size_t helping_ = 0;  // the helpers among them
  int idle_ = 0;
  bool stopping_ = false;
  std::size_t mostThreads_ = ReadAheadDepth::highest;
  std::vector<std::thread> threads_;  // last: the threads use all members above
};

// A folder that the walk opened out of the helpers' order. Helpers list nothing below it, but may hold the
// handles that the walk needs there.
class ReadAheadListing::LoneFolder final : public OpenFolder {
 public:
  LoneFolder(std::shared_ptr<Crew> crew, std::unique_ptr<OpenFolder> folder)
      : crew_(std::move(crew)),
        folder_(std::move(folder)) {}

  // Opens a subfolder of `parent` as such a folder.
  static std::expected<std::unique_ptr<OpenFolder>, int> openIn(OpenFolder& parent, const std::string& name,
                                                                const std::shared_ptr<Crew>& crew) {
    auto opened = crew->open(parent, name);
    if (!opened) return std::unexpected(opened.error());
    return std::make_unique<LoneFolder>(crew, std::move(*opened));
  }

  std::uint64_t device() const override { return folder_->device(); }
  Facts facts() const override { return folder_->facts(); }
  Batch nextBatch(ListingBuffer& buffer) override { return folder_->nextBatch(buffer); }
  std::expected<std::unique_ptr<OpenFolder>, int> openSubfolder(const std::string& name) override {
    return openIn(*folder_, name, crew_);
  }

 private:
  std::shared_ptr<Crew> crew_;
  std::unique_ptr<OpenFolder> folder_;
};

// The open folder that the walk uses.
class ReadAheadListing::Folder final : public OpenFolder {
 public:
  Folder(std::shared_ptr<Crew> crew, std::shared_ptr<Record> record, std::uint64_t device)
      : crew_(std::move(crew)),
        record_(std::move(record)),
        device_(device),
        atEnd_(record_->state == Record::State::listed) {}

  ~Folder() override { crew_->leave(std::move(record_)); }

  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  std::uint64_t device() const override { return device_; }
  Facts facts() const override { return record_->facts; }

  Batch nextBatch(ListingBuffer& buffer) override {
    if (served_ < mostBatches && !record_->batches[served_].empty())
      return {.entries = record_->batches[served_++].entries()};
    for (KeptEntries& batch : record_->batches) batch.clear();
    served_ = mostBatches;
    if (atEnd_) return {.error = std::exchange(record_->listingError, 0)};
    const Batch batch = record_->folder->nextBatch(buffer);
    crew_->note(*record_, batch.entries);
    if (batch.entries.empty()) {
      atEnd_ = true;
      crew_->finish(*record_);
    }
    return batch;
  }

  std::expected<std::unique_ptr<OpenFolder>, int> openSubfolder(const std::string& name) override {
    // The handle was closed early, so the folder had no subfolders.
    if (!record_->folder) return std::unexpected(ENOENT);
    auto record = crew_->take(*record_, name);
    if (!record) return LoneFolder::openIn(*record_->folder, name, crew_);
    if (record->state == Record::State::inWalk && !record->folder) {
      auto opened = crew_->open(*record_->folder, name);
      if (opened) {
        record->take(std::move(*opened));
      } else {
        record->openError = opened.error();
      }
    }
    if (const int error = record->openError; error != 0) {
      crew_->leave(std::move(record));
      // The helper found no free file handle; the walk tries again.
      if (isOutOfHandles(error)) return LoneFolder::openIn(*record_->folder, name, crew_);
      return std::unexpected(error);
    }
    return std::make_unique<Folder>(crew_, std::move(record), device_);
  }

 private:
  std::shared_ptr<Crew> crew_;
  std::shared_ptr<Record> record_;
  std::uint64_t device_;
  std::size_t served_ = 0;
  bool atEnd_;
};

ReadAheadListing::Limits ReadAheadListing::limitsFor(const std::string& root, std::size_t openFiles) {
  return {.depth = {.processors = std::clamp(std::thread::hardware_concurrency(), 1U, mostProcessors),
                    .most = diskTraits(root).requestsAtOnce.value_or(ReadAheadDepth::highest)},
          .openFiles = openFiles};
}

ReadAheadListing::ReadAheadListing(FolderListing& inner, Limits limits, WalkFacts walk)
    : inner_(inner),
      limits_(limits),
      walk_(std::move(walk)) {}

std::expected<std::unique_ptr<OpenFolder>, Error> ReadAheadListing::open(const std::string& root) {
  auto opened = inner_.open(root);
  if (!opened) return std::unexpected(std::move(opened).error());
  const std::uint64_t device = (*opened)->device();
  const std::size_t foldersAhead = std::min(mostFoldersAhead, limits_.openFiles / shareOfHandles);
  auto crew = std::make_shared<Crew>(limits_.depth, foldersAhead, device, walk_);
  auto record = crew->beginWith(std::move(*opened), root);
  return std::make_unique<Folder>(std::move(crew), std::move(record), device);
}

}  // namespace spacemint
