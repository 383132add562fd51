#include "support/ModelFixture.h"

#include "support/Files.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace spacemint::support {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view backups = "Library/Application Support/MobileSync/Backup";

void write(const fs::path& path, std::string_view text) {
  fs::create_directories(path.parent_path());
  std::ofstream{path} << text;
}

void touch(const fs::path& path, Date date) {
  // The epoch of file times is not that of Date.
  const auto age = date - std::chrono::time_point_cast<Date::duration>(std::chrono::system_clock::now());
  fs::last_write_time(path, fs::file_time_type::clock::now() + age);
}

}  // namespace

ModelFixture::ModelFixture() {
  fs::create_directories(home);
  desktop.clock.setDate(morning);
}

AppModel& ModelFixture::makeModel(EventJournal& events, const Desktop& on) {
  model.reset();
  model = std::make_unique<AppModel>(AppContext{.defaults = defaults,
                                                .store = store,
                                                .journal = events,
                                                .tools = ToolRuns{Shell{std::vector{folder / "bin"}}},
                                                .home = home,
                                                .personal = {},
                                                .data = inHome(".local/share"),
                                                .state = folder / "state",
                                                .environment = {},
                                                .disk = disk,
                                                .homeVolume = home,
                                                .locale = locale,
                                                .timeZone = "UTC",
                                                .mayNotify = isApplication,
                                                .hasFullDiskAccess = [this] { return hasAccess; },
                                                .volumeFacts = [this] { return volumeFacts; }},
                                     on);
  return *model;
}

AppModel& ModelFixture::startModel() {
  makeModel().start();
  desktop.settle();
  return *model;
}

void ModelFixture::addFile(std::string_view name, Bytes size) const {
  EXPECT_TRUE(allocateFile(inHome(name), size)) << name;
}

void ModelFixture::addProgram(std::string_view name, std::string_view script) const {
  writeProgram(folder / ("bin/" + std::string{name}), std::string{script});
}

bool ModelFixture::exists(std::string_view name) const {
  return fs::exists(fs::symlink_status(inHome(name)));
}

std::string ModelFixture::actionTitle() const {
  const auto& action = model->messages().action();
  return action ? action->title : "";
}

Bytes ModelFixture::sizeInScan(std::string_view name) const {
  const SharedSnapshot& snapshot = model->history().snapshot();
  const Node* node = snapshot ? snapshot->nodeAt(inHome(name)) : nullptr;
  return node != nullptr ? node->size / MB * MB : 0;
}

void ModelFixture::storeHome(Date date, std::vector<Node> children, Bytes free, Coverage coverage) const {
  const auto saved = store.save({.date = date,
                                 .duration = Seconds{4.2},
                                 .root = support::folder(home, std::move(children)),
                                 .fileCount = 612'345,
                                 .volumeFree = free,
                                 .volumeTotal = 500 * GB,
                                 .minNodeSize = ScanLifecycle::minNodeSize,
                                 .fullScanDate = date,
                                 .coverage = std::move(coverage)});
  ASSERT_TRUE(saved) << saved.error().message;
}

void ModelFixture::storeGrowth(int folders) const {
  std::vector<Node> before{file("letters", 300 * MB)};
  std::vector<Node> after = before;
  for (int i = 1; i <= folders; ++i) {
    const std::string name = "Folder " + std::to_string(i);
    // One folder has most of the growth; otherwise only the home folder would be listed.
    const Bytes delta = i == 1 ? 30 * GB : (2'000 - 100 * i) * MB;
    before.push_back(support::folder(name, {}, {.unlisted = 50 * MB, .unlistedFiles = 9}));
    after.push_back(support::folder(name, {}, {.unlisted = 50 * MB + delta, .unlistedFiles = 9}));
  }
  storeHome(morning - 75h, std::move(before), 140 * GB);
  storeHome(morning - 1h, std::move(after));
}

void ModelFixture::storeChanges() const {
  const auto code = [](Bytes shop, Bytes site) {
    return support::folder("code", {nested("shop/target", {file("app", shop)}),
                                    nested("site/node_modules", {file("pack", site)}),
                                    support::folder("notes", {file("all", (shop + site) / 3)})});
  };
  storeHome(
      morning - 73h,
      {code(200 * MB, 100 * MB), support::folder("Downloads", {file("film.mkv", 4 * GB), file("a", GB)}),
       support::folder("Music", {}, {.unlisted = 3 * GB, .unlistedFiles = 900})},
      120 * GB);
  storeHome(morning - 1h,
            {code(2'200 * MB, 1'300 * MB), support::folder("Downloads", {file("a", GB)}),
             support::folder("Music", {}, {.unlisted = 2 * GB, .unlistedFiles = 600}),
             support::folder("vm", {file("disk.img", 12 * GB)})},
            108 * GB);
}

void ModelFixture::growFile(const std::string& folderName, const std::string& name, int refreshes,
                            Bytes each) {
  journal.id = 1;
  journal.answer = FolderChanges{.directories = {inHome(folderName)}, .trees = {}};
  model->growing().refresh();
  desktop.settle();
  for (int i = 1; i <= refreshes; ++i) {
    addFile(folderName + "/" + name, i * each);
    desktop.volume.current->free -= each;
    desktop.advance(2s);
    model->growing().refresh();
    desktop.settle();
  }
}

Node ModelFixture::nested(std::string_view path, std::vector<Node> children) {
  const std::size_t slash = path.rfind('/');
  Node inner = support::folder(std::string{path.substr(slash + 1)}, std::move(children));  // npos + 1 is 0
  if (slash == std::string_view::npos) return inner;
  return nested(path.substr(0, slash), {std::move(inner)});
}

std::vector<Node> ModelFixture::numbered(const std::string& name, int count, Bytes largest, Bytes step) {
  std::vector<Node> nodes;
  for (int i = 1; i <= count; ++i) nodes.push_back(file(name + std::to_string(i), largest - (i - 1) * step));
  return nodes;
}

void ModelFixture::addBackup(std::string_view lastDate) const {
  write(
      fs::path{inHome(backups)} / "phone/Info.plist",
      R"(<?xml version="1.0"?><plist version="1.0"><dict><key>Device Name</key><string>Ann's phone</string>)"
      "<key>Last Backup Date</key><date>" +
          std::string{lastDate} + "</date></dict></plist>");
}

Node ModelFixture::backupTree(Bytes size) {
  return nested(backups, {support::folder("phone", {file("data", size)})});
}

void ModelFixture::addWorktree(const std::string& name, std::optional<Date> lastUsed) const {
  std::string id = name;
  std::ranges::replace(id, '/', '-');
  const fs::path administrative = fs::path{inHome("shop/.git/worktrees")} / id;
  write(inHome(name + "/.git"), "gitdir: " + administrative.string() + "\n");
  if (!lastUsed) return;
  write(inHome("shop/.git/HEAD"), "ref: refs/heads/main\n");
  write(administrative / "gitdir", inHome(name + "/.git") + "\n");
  write(administrative / "commondir", "../..\n");
  for (const char* file : {"HEAD", "index"}) {
    write(administrative / file, "ref: refs/heads/" + name + "\n");
    touch(administrative / file, *lastUsed);
  }
}

Node ModelFixture::worktreeTree(std::string name, Bytes size) {
  Node node = support::folder(std::move(name), {file("data", size)});
  node.isWorktree = true;
  return node;
}

std::string ModelFixture::prints(std::string_view text) {
  return "/bin/cat <<'END'\n" + std::string{text} + "\nEND";
}

std::string ModelFixture::dockerUsage() {
  return R"~({"Active":"3","Reclaimable":"1.1GB (26%)","Size":"4.2GB","TotalCount":"12","Type":"Images"}
{"Active":"1","Reclaimable":"230MB","Size":"300MB","TotalCount":"4","Type":"Containers"}
{"Active":"2","Reclaimable":"6.5GB","Size":"7GB","TotalCount":"5","Type":"Local Volumes"}
{"Active":"0","Reclaimable":"2.4GB","Size":"2.4GB","TotalCount":"87","Type":"Build Cache"})~";
}

std::string ModelFixture::ollamaList() {
  return "NAME             ID            SIZE    MODIFIED\n"
         "mistral:7b       f974a74358d6  4.1 GB  5 months ago\n"
         "llama3.2:latest  a80c4f17acd5  2.0 GB  3 weeks ago";
}

}  // namespace spacemint::support
