#include "HomeOfAnn.h"
#include "Pages.h"
#include "Spacemint/views/Ui.h"
#include "support/ModelFixture.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace spacemint::gallery {

namespace {

using support::GB;

/// Called when all entries of the folder with this name are listed.
using Listed = std::function<void(const std::string& name)>;

std::int64_t secondsOf(const Node& node) {
  return node.modified ? std::chrono::floor<std::chrono::seconds>(*node.modified).time_since_epoch().count()
                       : 0;
}

/// A folder of an invented tree.
class InventedFolder final : public OpenFolder {
 public:
  InventedFolder(const Node& node, const Listed& listed) : node_(node), listed_(listed) {}

  std::uint64_t device() const override { return 1; }
  Batch nextBatch(ListingBuffer& buffer) override {
    buffer.entries.clear();
    if (std::exchange(isListed_, true)) {
      listed_(node_.name);
      return {};
    }
    for (const Node& child : node_.children)
      buffer.entries.push_back({.name = child.name,
                                .type = child.isDirectory ? EntryType::folder : EntryType::file,
                                .device = device(),
                                .modified = secondsOf(child),
                                .allocated = child.isDirectory ? 0 : child.size,
                                .length = child.isDirectory ? 0 : child.size});
    return {.entries = buffer.entries};
  }
  std::expected<std::unique_ptr<OpenFolder>, int> openSubfolder(const std::string& name) override {
    return std::make_unique<InventedFolder>(*std::ranges::find(node_.children, name, &Node::name), listed_);
  }

 private:
  const Node& node_;
  const Listed& listed_;
  bool isListed_ = false;
};

class InventedCrawl final : public RecordingCrawl {
 public:
  InventedCrawl(const Node& root, const Listed& listed) : root_(root), listed_(listed) {}

  std::expected<std::unique_ptr<OpenFolder>, Error> open(const std::string& /*root*/) override {
    return std::make_unique<InventedFolder>(root_, listed_);
  }
  std::uint64_t eventID() const override { return 1; }
  void finish() override {}
  bool hasFailed() const override { return false; }

 private:
  const Node& root_;
  const Listed& listed_;
};

/// Lists an invented tree, whatever the root.
class InventedJournal final : public EventJournal {
 public:
  std::uint64_t currentEventID(const JournalQuery& /*query*/) override { return 0; }
  std::expected<FolderChanges, JournalError> changes(const JournalQuery& /*query*/) override {
    return std::unexpected(JournalError::notRecording);
  }
  std::unique_ptr<RecordingCrawl> beginCrawl(const std::string& /*root*/) override {
    return std::make_unique<InventedCrawl>(root, listed);
  }

  Node root;
  Listed listed;
};

/// A model in the middle of a scan, or after one that was stopped, with its interface.
class ScanScene final : public support::ModelFixture {
 public:
  ScanScene(bool isFirst, bool isStopped) {
    locale = gallery::locale;
    desktop.volume.current = VolumeStatus{"System", 129 * GB, 38'800'000'000};
    if (!isFirst)
      storeHome(support::morning - std::chrono::hours{49}, homeOfAnn("", false).children, 52'900'000'000);
    tree_.root = homeOfAnn("", true);
    // The scanner takes the last folder first.
    std::ranges::swap(tree_.root.children[0], tree_.root.children[1]);
    const auto downloads = std::ranges::find(tree_.root.children, "Downloads", &Node::name);
    std::rotate(tree_.root.children.begin(), downloads, downloads + 1);
    tree_.listed = [this, isStopped](const std::string& name) {
      if (name != "vm") return;
      // What is found is shown twice a second.
      std::this_thread::sleep_for(ScanJob::progressInterval + std::chrono::milliseconds{50});
      if (isStopped) model->scans().stop();
    };
    makeModel(tree_, desktop.desktop()).start();
    ui_ = std::make_unique<Ui>(
        UiHost{.model = *model, .desktop = desktop.desktop(), .home = home, .locale = locale, .quit = {}});
    desktop.settle();
    model->setTab(Tab::folders);
    desktop.tasks.hold(Tasks::Priority::background);
    model->scans().scan();
    desktop.tasks.runHeldWork(Tasks::Priority::background);
    desktop.settle();
  }
  void TestBody() override {}

  Ui& ui() { return *ui_; }

 private:
  InventedJournal tree_;
  std::unique_ptr<Ui> ui_;
};

struct ScanPage {
  const char* name;
  QSize size;
  bool isFirst = true;
  bool isStopped = false;
};

constexpr ScanPage scanPages[] = {
    {"first", {460, 700}},
    {"first-1080", {1080, 720}},
    {"stopped", {460, 700}, true, true},
    {"stopped-1080", {1080, 720}, true, true},
    {"again", {460, 700}, false},
    {"again-1080", {1080, 720}, false},
};

}  // namespace

std::vector<Page> pagesOfScans() {
  std::vector<Page> result;
  for (const ScanPage& page : scanPages) {
    result.push_back({.name = QStringLiteral("scan-") + QString::fromUtf8(page.name),
                      .url = QStringLiteral("qrc:/qt/qml/Spacemint/Views/PanelView.qml"),
                      .properties =
                          [&page] {
                            // The scenes live until the program ends.
                            static std::vector<std::unique_ptr<ScanScene>> scenes;
                            scenes.push_back(std::make_unique<ScanScene>(page.isFirst, page.isStopped));
                            return QVariantMap{
                                {QStringLiteral("ui"), QVariant::fromValue(&scenes.back()->ui())},
                                {QStringLiteral("windowed"), true}};
                          },
                      .size = page.size,
                      .margin = 0});
  }
  return result;
}

}  // namespace spacemint::gallery
