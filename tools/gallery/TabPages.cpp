#include "Pages.h"
#include "Spacemint/views/Ui.h"
#include "core/base/Translation.h"
#include "support/Files.h"
#include "support/ModelFixture.h"

#include <fstream>

namespace spacemint::gallery {

namespace {

using support::file;
using support::GB;
using support::MB;
using support::morning;
using namespace std::chrono_literals;

/// A model in one state, with its tabs.
class TabScene final : public support::ModelFixture {
 public:
  using ModelFixture::storeChanges;
  using Step = void (*)(TabScene&);

  TabScene(Tab tab, Step before, Step after) {
    locale = gallery::locale;
    before(*this);
    startModel();
    ui_ = std::make_unique<Ui>(
        UiHost{.model = *model, .desktop = desktop.desktop(), .home = home, .locale = locale, .quit = {}});
    if (tab == Tab::developer) {
      if (holdsTools_) desktop.tasks.hold(Tasks::Priority::utility);
      model->dev().refreshIfNeeded();
    }
    model->setTab(tab);
    desktop.settle();
    if (after != nullptr) after(*this);
    desktop.settle();
  }
  void TestBody() override {}

  Ui& ui() { return *ui_; }

  void little() { storeHome(morning - 1h, {file("letters", 300 * MB)}); }
  void grown(int folders) { storeGrowth(folders); }
  // One file grows for minutes, another stopped; the disk fills up.
  void growing() {
    desktop.volume.current->free = 6 * GB;
    model->growing().setSeen(true);
    growFile("Videos", "recording.mkv", 60, 3 * MB);
    growFile("code/target", "app", 6, 4 * MB);
    desktop.volume.current->free -= 60 * MB;
    growFile("Videos", "recording.mkv", 4, 50 * MB);
  }
  void unfoldChanges() {
    ItemRows& rows = *ui_->overview()->firstGrowth();
    for (int i = 0; i < rows.count(); ++i) {
      const bool isClosed = !rows.data(rows.index(i), ItemRows::IsUnfoldedRole).toBool();
      if (isClosed && rows.data(rows.index(i), ItemRows::UnfoldsRole).toBool())
        rows.toggle(rows.data(rows.index(i), ItemRows::RowIdRole).toInt());
    }
  }
  void noBaseline() {
    storeGrowth(2);
    std::ofstream{store.entries().back().path} << "{";
  }
  void withoutAccess() { hasAccess = false; }
  // All cards, and suggestions with one and with several locations.
  void piledUp() {
    addBackup("2024-01-01T00:00:00Z");
    inventTrash();
    std::vector<Node> projects;
    for (const char* name : {"shop", "site", "a project with quite a long name that nobody remembers"}) {
      projects.push_back(support::folder(name, {support::folder("node_modules", {file("a", 700 * MB)})}));
    }
    storeHome(morning - 75h, {file("letters", 300 * MB)}, 140 * GB);
    storeHome(morning - 1h,
              {support::folder("code", std::move(projects)), backupTree(31 * GB),
               support::folder(".Trash", {file("film.mov", 300 * MB), file(".hidden", 900 * MB)}),
               support::folder("Downloads", {file("film.iso", 9 * GB), file("installer.deb", GB)}),
               nested(".cache/pip", {file("wheels", 2 * GB)}),
               nested(".local/share/Steam", {file("game", 60 * GB)})});
  }
  // A disk that is full although its files are not large.
  void heldSpace(bool isWholeScan) {
    const std::string mountPoint = isWholeScan ? home : "/";
    const Coverage coverage{
        .places = {{.place = {.mountPoint = mountPoint, .root = "/", .fileSystem = "ext4"},
                    .size = 83'100'000'000,
                    .folderBytes = 210 * MB}},
        .leftOut = {{.path = mountPoint + "/timeshift/2026-02-01",
                     .kind = LeftOut::Kind::snapshot,
                     .created = morning - std::chrono::days{21}}},
        .unread = {.folders = 2, .paths = {mountPoint + "/root", mountPoint + "/var/lib/private"}}};
    storeHome(morning - 1h, {file("film", 83'100'000'000)}, 38'800 * MB, coverage);
    volumeFacts = VolumeFacts{
        .volume = {.pool = 1,
                   .name = "System",
                   .fileSystem = "ext4",
                   .places = {{.mountPoint = mountPoint, .root = "/"}}},
        .space = {.total = 129 * GB,
                  .used = 88'800'000'000,
                  .free = 38'800'000'000,
                  .heldBack = 1'400'000'000},
        .ownBytes = 0,
        .deleted = {
            .files = {{.size = 2'900'000'000, .pool = 1, .path = "/a", .programs = {{812, "postgres"}}},
                      {.size = 1'200'000'000, .pool = 1, .path = "/b", .programs = {{99, "chromium"}}},
                      {.pool = 1, .path = "/c", .programs = {{99, "chromium"}, {7, "Xwayland"}}}},
            .programs = 300,
            .refused = 120}};
  }
  void smallTrash() {
    inventTrash();
    storeHome(morning - 1h, {support::folder(".Trash", {file("film.mov", 700 * MB)})});
  }
  void folders() {
    inventTrash();
    storeHome(morning - 1h,
              {support::folder("Movies", {support::folder("Old", {file("first.mov", 2 * GB)}),
                                          file("holiday.mov", 9 * GB)}),
               support::folder("Documents", {file("thesis.pdf", 400 * MB)}, {.unlisted = 90 * MB}),
               support::folder(".Trash", {file("gone.zip", 300 * MB)}),
               support::folder("Photos.photoslibrary", {file("db", 5 * GB)}),
               support::folder(
                   "A folder whose name is much longer than any panel could ever be wide, as it happens",
                   {file("x", GB)}),
               support::folder("عطلة الصيف", {file("y", 2 * GB)}), file("disk.img", 2 * GB),
               file("backup.tar.gz", GB), file("podcast.mp3", 600 * MB),
               support::folder("Mail", {}, {.unlisted = 90 * MB, .unlistedFiles = 9}),
               support::folder("Empty", {})},
              120 * GB);
  }
  void open(std::string_view name) { model->setFolderPath(inHome(name)); }
  void find(const char* words) { model->setFileSearch(words); }
  void leaveOut(std::string_view name) { model->leaveOut(inHome(name)); }
  void mark(int count) {
    desktop.settle();
    ItemRows& rows = *ui_->folders()->content();
    for (int row = 0; row < count; ++row) {
      rows.toggleMark(rows.data(rows.index(row), ItemRows::RowIdRole).toInt());
    }
  }
  void tools(std::string_view docker, std::string_view ollama) {
    addProgram("docker", docker);
    addProgram("ollama", ollama);
  }
  void waiting() {
    little();
    tools("true", "true");
    holdsTools_ = true;
  }
  void developer() {
    tools(prints(dockerUsage()), prints(ollamaList()));
    addWorktree("checkout-of-last-year", morning - std::chrono::days{200});
    addWorktree("orphan", {});
    addWorktree("feature", morning - std::chrono::days{2});
    addWorktree("fix", morning - std::chrono::days{3});
    storeHome(
        morning - 1h,
        {nested(
             ".cache",
             {support::folder("pip", {file("wheel", 2 * GB)}), support::folder("uv", {file("a", 900 * MB)}),
              support::folder(
                  "huggingface",
                  {support::folder("hub", {support::folder("models--openai--whisper", {file("a", 3 * GB)}),
                                           support::folder("datasets--squad", {file("a", GB)})}),
                   support::folder("xet", {file("b", 400 * MB)})})}),
         nested(".npm/_cacache", {file("b", 600 * MB)}), worktreeTree("checkout-of-last-year", 2 * GB),
         worktreeTree("orphan", GB), worktreeTree("feature", 700 * MB), worktreeTree("fix", 500 * MB)});
  }
  // Starts to clean a cache, which does not finish.
  void clean() {
    desktop.tasks.hold(Tasks::Priority::alone);
    model->cleanups().ask(model->findings().devCleanups.front());
    confirm();
  }
  void emptyTrash() {
    addFile(".local/share/Trash/files/film", 1);
    desktop.tasks.hold(Tasks::Priority::alone);
    model->confirmEmptyTrash();
    confirm();
  }

 private:
  // A file cannot be listed, so the Trash keeps the size of the stored scan, and nothing fills the disk.
  void inventTrash() const { support::writeText(inHome(".Trash")); }

  bool holdsTools_ = false;
  std::unique_ptr<Ui> ui_;
};

using Step = TabScene::Step;

struct TabPage {
  const char* name;
  Tab tab;
  Step before;
  const char* deed = "";
  const char* title = "";
  Step after = nullptr;
  int height = 480;
};

const Step little = [](TabScene& s) { s.little(); };
const Step piledUp = [](TabScene& s) { s.piledUp(); };
const Step folders = [](TabScene& s) { s.folders(); };
const Step developer = [](TabScene& s) { s.developer(); };

template <int Count>
void grown(TabScene& scene) {
  scene.grown(Count);
}

const TabPage tabPages[] = {
    {"overview-first-scan", Tab::overview, little},
    {"overview-unreadable-baseline", Tab::overview, [](TabScene& s) { s.noBaseline(); }},
    {"overview-grown-0", Tab::overview, grown<0>},
    {"overview-grown-5", Tab::overview, grown<5>, "", "", nullptr, 560},
    {"overview-grown-6", Tab::overview, grown<6>, "", "", nullptr, 560},
    {"overview-grown-6-all", Tab::overview, grown<6>, "showAll", "", nullptr, 600},
    {"overview-changes", Tab::overview, [](TabScene& s) { s.storeChanges(); }, "point", "code", nullptr, 520},
    {"overview-changes-unfolded", Tab::overview, [](TabScene& s) { s.storeChanges(); }, "", "",
     [](TabScene& s) { s.unfoldChanges(); }, 760},
    {"overview-growing", Tab::overview, [](TabScene& s) { s.storeChanges(); }, "", "",
     [](TabScene& s) { s.growing(); }, 620},
    {"overview-no-access", Tab::overview,
     [](TabScene& s) {
       s.little();
       s.withoutAccess();
     }},
    {"overview-cards", Tab::overview,
     [](TabScene& s) {
       s.piledUp();
       s.withoutAccess();
     },
     "", "", nullptr, 1040},
    {"overview-cards-busy", Tab::overview, piledUp, "", "", [](TabScene& s) { s.emptyTrash(); }, 800},
    {"overview-small-trash", Tab::overview, [](TabScene& s) { s.smallTrash(); }},
    {"overview-account", Tab::overview, [](TabScene& s) { s.heldSpace(true); }, "unfold",
     "Deleted, but still open", nullptr, 700},
    {"overview-account-of-home", Tab::overview, [](TabScene& s) { s.heldSpace(false); }, "", "", nullptr,
     600},
    {"overview-account-closed", Tab::overview, little},
    {"overview-suggestion-unfolded", Tab::overview, piledUp, "unfold", "node_modules", nullptr, 1060},
    {"overview-suggestion-pointed", Tab::overview, piledUp, "point", "Downloads", nullptr, 900},
    {"folders-root", Tab::folders, folders, "", "", nullptr, 640},
    {"folders-scrolls", Tab::folders, folders, "", "", nullptr, 360},
    {"folders-pointed", Tab::folders, folders, "point", "Movies"},
    {"folders-pointed-long", Tab::folders, folders, "point",
     "A folder whose name is much longer than any panel could ever be wide, as it happens", nullptr, 640},
    {"folders-focused", Tab::folders, folders, "focus", "Movies"},
    {"folders-menu", Tab::folders, folders, "menu", "Movies"},
    {"folders-inside", Tab::folders, folders, "", "", [](TabScene& s) { s.open("Documents"); }},
    {"folders-in-trash", Tab::folders, folders, "point", "gone.zip", [](TabScene& s) { s.open(".Trash"); }},
    {"folders-small-items", Tab::folders, folders, "", "", [](TabScene& s) { s.open("Mail"); }},
    {"folders-marked", Tab::folders, folders, "", "", [](TabScene& s) { s.mark(3); }, 640},
    {"folders-by-count", Tab::folders, folders, "", "", [](TabScene& s) { s.ui().folders()->setOrder(1); },
     640},
    {"folders-left-out", Tab::folders, folders, "", "", [](TabScene& s) { s.leaveOut("Movies"); }, 640},
    {"folders-empty", Tab::folders, folders, "", "", [](TabScene& s) { s.open("Empty"); }},
    {"folders-long-name", Tab::folders, folders, "", "",
     [](TabScene& s) {
       s.open("A folder whose name is much longer than any panel could ever be wide, as it happens");
     }},
    {"files-full", Tab::files, folders},
    {"files-found", Tab::files, folders, "", "", [](TabScene& s) { s.find("o >1GB"); }},
    {"files-kind", Tab::files, folders, "", "", [](TabScene& s) { s.find("type:video"); }},
    {"files-not-understood", Tab::files, folders, "", "", [](TabScene& s) { s.find("older:soon"); }},
    {"files-pointed", Tab::files, folders, "point", "holiday.mov"},
    {"files-empty", Tab::files, [](TabScene& s) { s.grown(2); }},
    {"developer-full", Tab::developer, developer, "", "", nullptr, 1560},
    {"developer-active-worktrees", Tab::developer, developer, "showActive", "", nullptr, 1700},
    {"developer-busy", Tab::developer, developer, "", "", [](TabScene& s) { s.clean(); }},
    {"developer-empty", Tab::developer, little},
    {"developer-no-data", Tab::developer,
     [](TabScene& s) {
       s.little();
       s.tools("true", "true");
     }},
    {"developer-waiting", Tab::developer, [](TabScene& s) { s.waiting(); }},
    {"developer-not-running", Tab::developer,
     [](TabScene& s) {
       s.little();
       s.tools("echo Cannot connect to the Docker daemon >&2; exit 1",
               "echo could not connect to ollama app, is it running? >&2; exit 1");
     }},
    {"developer-failed", Tab::developer,
     [](TabScene& s) {
       s.little();
       s.tools("echo /var/run/docker.sock >&2; exit 1", "echo 127.0.0.1:11434 >&2; exit 1");
     }},
};

QVariantMap propertiesOf(const TabPage& page) {
  // The scenes live until the program ends.
  static std::vector<std::unique_ptr<TabScene>> scenes;
  scenes.push_back(std::make_unique<TabScene>(page.tab, page.before, page.after));
  return {{QStringLiteral("ui"), QVariant::fromValue(&scenes.back()->ui())},
          {QStringLiteral("deed"), QString::fromUtf8(page.deed)},
          {QStringLiteral("titles"),
           QStringList{QString::fromUtf8(page.title), QString::fromStdString(i18n(page.title))}}};
}

}  // namespace

std::vector<Page> pagesOfTabs() {
  std::vector<Page> result;
  for (const TabPage& page : tabPages) {
    result.push_back({.name = QStringLiteral("tab-") + QString::fromUtf8(page.name),
                      .url = QStringLiteral("qrc:/qt/qml/Spacemint/Gallery/tabs/Tab.qml"),
                      .properties = [&page] { return propertiesOf(page); },
                      .size = {460, page.height},
                      .margin = 0});
  }
  return result;
}

}  // namespace spacemint::gallery
