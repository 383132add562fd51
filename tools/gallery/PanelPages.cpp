#include "AppServices/Notices.h"
#include "AppServices/Updates.h"
#include "AppServices/Usage.h"
#include "Pages.h"
#include "Spacemint/views/Ui.h"
#include "core/base/ByteFormat.h"
#include "core/base/Isolate.h"
#include "core/base/PlatformWords.h"
#include "core/base/TextList.h"
#include "core/base/Translation.h"
#include "core/wording/FindingText.h"
#include "support/ModelFixture.h"
#include "support/TreeBuilder.h"

#include <QQmlExtensionPlugin>

Q_IMPORT_QML_PLUGIN(Spacemint_ServicesPlugin)
Q_IMPORT_QML_PLUGIN(Spacemint_ViewsPlugin)

namespace spacemint::gallery {

namespace {

using support::file;
using support::folder;
using support::GB;
using support::MB;
using support::morning;
using namespace std::chrono_literals;

/// A model in one state, with its interface.
class Scene final : public support::ModelFixture {
 public:
  using Step = void (*)(Scene&);

  Scene(Step before, Step after) {
    locale = gallery::locale;
    before(*this);
    startModel();
    ui_ = std::make_unique<Ui>(UiHost{.model = *model,
                                      .desktop = desktop.desktop(),
                                      .home = home,
                                      .locale = locale,
                                      .quit = {},
                                      .loginItem = &desktop.loginItem,
                                      .usage = &usage_,
                                      .updates = updates_.get()});
    if (after != nullptr) after(*this);
    desktop.settle();
  }
  void TestBody() override {}

  Ui& ui() { return *ui_; }
  AppModel& app() { return *model; }
  support::FakeDesktop& screen() { return desktop; }
  DefaultsStore& stored() { return defaults; }
  std::string at(std::string_view name) const { return inHome(name); }

  void withoutAccess() { hasAccess = false; }
  void withUpdates() {
    updates_ = std::make_unique<Updates>(Updates::Host{info(),
                                                       defaults,
                                                       web_,
                                                       {},
                                                       "spacemint",
                                                       folder / "updates",
                                                       [] { return "2026-03-02"; },
                                                       [](const std::string&, const auto&) {}});
  }
  void scanned() {
    addFile("Movies/holiday.mov", 1);  // its size is the one in the scan
    const Node tree = support::folder(
        home, {support::folder("Movies", {file("holiday.mov", 2 * GB), file("birthday.mov", GB)}),
               support::folder("Documents", {file("thesis.pdf", 40 * MB)})});
    const auto saved = store.save({.date = morning - 2h,
                                   .duration = Seconds{4.2},
                                   .root = tree,
                                   .fileCount = 612'345,
                                   .volumeFree = 120 * GB,
                                   .volumeTotal = 500 * GB,
                                   .minNodeSize = ScanLifecycle::minNodeSize,
                                   .fullScanDate = morning - 2h});
    EXPECT_TRUE(saved);
  }
  // A worktree with a repository in it, of which nobody knows whether it has changes.
  void askAboutWorktree() {
    addWorktree("checkout", morning - std::chrono::days{60});
    addFile("checkout/lib/.git/config", 1);
    if (const auto worktree = GitWorktrees::inspect(inHome("checkout"), 2 * GB))
      model->cleanups().ask(*worktree);
  }
  void free(Bytes bytes) { desktop.volume.current->free = bytes; }
  void startScan() {
    desktop.tasks.hold(Tasks::Priority::background);
    desktop.tasks.hold(Tasks::Priority::utility);
    model->scans().scan();
  }
  void tell(std::string text, std::optional<MessageAction> action = {}) {
    model->messages().show(std::move(text), std::move(action));
  }

 private:
  static AppInfo info() {
    return {.identifier = "app.example", .name = "Spacemint", .version = "1.0.0", .slug = "spacemint"};
  }

  WebClient web_{"gallery", {}};
  Usage usage_{{info(), defaults, web_, [] { return "2026-03-02"; }, "12"}};
  std::unique_ptr<Updates> updates_;
  std::unique_ptr<Ui> ui_;
};

void nothing(Scene&) {}
void scanned(Scene& scene) {
  scene.scanned();
}
void withoutAccess(Scene& scene) {
  scene.withoutAccess();
}
void settings(Scene& scene) {
  scene.app().panelWillShow();
  scene.app().setShowingSettings(true);
}
void askToDelete(Scene& scene, const std::string& name) {
  scene.app().cleanups().ask(DeleteRequest{scene.at(name), name.substr(name.rfind('/') + 1), 2 * GB,
                                           i18n("This removes it for good.")});
}

std::string movedText(const std::string& name) {
  const std::string moved = i18n("Moved “{name}” to the Trash. Empty it to free {size}",
                                 {{"name", name}, {"size", ByteFormat::string(2 * GB, locale)}});
  return i18n("{text}.", {{"text", moved}});
}
std::string closedText() {
  return sentences({i18n("Some items, like hidden ones, are still in the Trash."),
                    i18n("{text}.", {{"text", i18n(PlatformWords::foldersAreClosed)}})});
}

VolumeReading volumeOf(const std::string& name, bool holdsHome, Bytes total, Bytes free) {
  return {{.pool = std::hash<std::string>{}(name),
           .name = name,
           .fileSystem = "ext4",
           .places = {{.mountPoint = "/" + name}},
           .holdsHome = holdsHome,
           .isWritable = true},
          Space{.total = total, .used = total - free, .free = free}};
}

struct PanelPage {
  const char* name;
  Scene::Step before = scanned;
  Scene::Step after = nullptr;
  bool windowed = false;
  /// If empty, the size of the panel.
  QSize size = {};
};

constexpr PanelPage panelPages[] = {
    {"panel-welcome", nothing},
    {"panel-welcome-no-access", withoutAccess},
    {"panel-first-scan", nothing, [](Scene& s) { s.startScan(); }},
    {"panel-first-scan-unknown", [](Scene& s) { s.screen().volume.current.reset(); },
     [](Scene& s) { s.startScan(); }},
    {"panel-scanning", scanned, [](Scene& s) { s.startScan(); }},
    {"panel-ok"},
    {"panel-window", scanned, nullptr, true},
    {"panel-updated", scanned, [](Scene& s) { s.app().history().update(*s.app().history().snapshot()); }},
    {"panel-low",
     [](Scene& s) {
       s.scanned();
       s.free(15 * GB);
     }},
    {"panel-critical",
     [](Scene& s) {
       s.scanned();
       s.free(3 * GB);
     }},
    {"panel-wide-numbers",
     [](Scene& s) {
       s.scanned();
       s.screen().volume.current = VolumeStatus{"Disk", 8'888'880 * MB, 888'888 * MB};
     }},
    {"panel-volumes",
     [](Scene& s) {
       s.scanned();
       s.screen().volume.others = {volumeOf("Home", true, 500 * GB, 100 * GB),
                                   volumeOf(i18n("System"), false, 60 * GB, 21 * GB),
                                   volumeOf("archive 2019 to 2024", false, 2'000 * GB, 640 * GB),
                                   volumeOf("backup", false, 112 * GB, 6'200 * MB)};
     }},
    {"panel-files-low",
     [](Scene& s) {
       s.scanned();
       s.screen().volume.others = {volumeOf("Home", true, 500 * GB, 100 * GB),
                                   volumeOf("mail", false, 60 * GB, 21 * GB),
                                   volumeOf("backup", false, 112 * GB, 6'200 * MB)};
       s.screen().volume.others[0].space->files = {.total = 30'000'000, .free = 1'200'000};
       s.screen().volume.others[1].space->files = {.total = 4'000'000, .free = 12'000};
     }},
    {"panel-message", scanned, [](Scene& s) { s.tell(movedText("thesis.pdf")); }},
    {"panel-message-action", scanned,
     [](Scene& s) { s.tell(closedText(), MessageAction{.title = i18n("Open Settings"), .perform = [] {}}); }},
    {"panel-confirmation", scanned, [](Scene& s) { askToDelete(s, "Movies/holiday.mov"); }},
    {"panel-confirmation-long", scanned,
     [](Scene& s) {
       std::string path = "Movies";
       for (int i = 0; i < 12; ++i) path += "/a folder with quite a long name " + std::to_string(i);
       askToDelete(s, path +
                          "/the film of the holiday that nobody will ever watch again, in the version with "
                          "all the scenes and a subtitle for everybody.mov");
     }},
    {"panel-confirmation-several", scanned,
     [](Scene& s) {
       SeveralRequest request;
       for (const char* name :
            {"Movies/holiday.mov", "Movies/the film of the holiday that nobody will ever watch again.mov",
             "Downloads/debian.iso", "Documents", "backup.tar.gz", "VMs/old.qcow2"}) {
         request.items.emplace_back(TrashRequest{s.at(name), 2 * GB});
       }
       s.app().cleanups().ask(std::move(request));
     }},
    {"panel-confirmation-loss", scanned, [](Scene& s) { s.askAboutWorktree(); }},
    {"panel-confirmation-rtl", scanned, [](Scene& s) { askToDelete(s, "Movies/عطلة الصيف.mov"); }},
    {"panel-confirmation-rtl-path", scanned,
     [](Scene& s) { askToDelete(s, "صور/עבודה/holiday 2024/عطلة الصيف.mov"); }},
    {"panel-settings", scanned, settings},
    {"panel-settings-left-out", scanned,
     [](Scene& s) {
       s.app().prefs().setExcludes({"node_modules", "*.iso", "~/VMs"});
       settings(s);
       s.ui().settings()->addExclude(QStringLiteral("photos-[0-9"));
     },
     true, QSize{460, 920}},
    {"panel-settings-no-access",
     [](Scene& s) {
       s.scanned();
       s.withoutAccess();
       s.screen().notifier.allowed = false;
     },
     settings},
    {"panel-settings-updates",
     [](Scene& s) {
       s.scanned();
       s.withUpdates();
     },
     settings, true, QSize{460, 920}},
    {"panel-settings-off-list",
     [](Scene& s) {
       s.scanned();
       s.stored().set("warningThresholdGB", 25).value();
       s.stored().set("scanIntervalHours", 8).value();
     },
     settings},
    {"panel-settings-login-error", scanned,
     [](Scene& s) {
       settings(s);
       s.screen().loginItem.failure = Error{.message = "~/.config/autostart"};
       // When the page exists.
       QMetaObject::invokeMethod(
           s.ui().settings(), [form = s.ui().settings()] { form->setLaunchesAtLogin(true); },
           Qt::QueuedConnection);
     }},
};

QVariantMap propertiesOf(const PanelPage& page) {
  // The scenes live until the program ends.
  static std::vector<std::unique_ptr<Scene>> scenes;
  scenes.push_back(std::make_unique<Scene>(page.before, page.after));
  return {{QStringLiteral("ui"), QVariant::fromValue(&scenes.back()->ui())},
          {QStringLiteral("windowed"), page.windowed}};
}

QString panel(const char* file) {
  return QStringLiteral("qrc:/qt/qml/Spacemint/Gallery/panel/%1.qml").arg(QLatin1StringView(file));
}

QString shown(const std::string& text) {
  return QString::fromStdString(text);
}

QVariantMap messages() {
  const std::string freed = ByteFormat::string(2'400 * MB, locale);
  return {{QStringLiteral("texts"),
           QStringList{shown(i18n("{done} and freed {size}.",
                                  {{"done", i18n("Emptied the Trash")}, {"size", freed}})),
                       shown(closedText()),
                       shown(movedText("the film of the holiday that nobody will ever watch again, in the "
                                       "version with all the scenes.mov")),
                       shown(i18n("That didn't work: {reason}",
                                  {{"reason",
                                    "/home/someone/anameofafolderthathasnospaceatallandsocannotbewrapped"
                                    "anywhere/another"}})),
                       shown(movedText(isolatedName("عطلة الصيف.mov")))}},
          {QStringLiteral("action"), shown(i18n("Open Settings"))}};
}

QVariantMap statusCards() {
  return {
      {QStringLiteral("texts"), QStringList{shown(i18n("Checking Docker…")),
                                            shown(i18n("Start Docker to see what can be cleaned up.")),
                                            shown(FindingText::dockerFailed("unix:///var/run/docker.sock"))}},
      {QStringLiteral("title"), shown(i18n("Some folders are closed to Spacemint"))},
      {QStringLiteral("line"),
       shown(i18n("Spacemint can't see your whole disk, so some sizes may be out of date."))}};
}

/// A notice of each kind.
QVariantMap notices() {
  const AppMessage tip{.id = "tip",
                       .title = i18n("Scans you'll never notice"),
                       .body = i18n("You choose the level. 20 GB free by default.")};
  const AppMessage version{
      .id = "new",
      .title = "Spacemint 1.2",
      .body = i18n("Runs quietly in the background while your computer has nothing else to do."),
      .link = AppMessage::Link{.title = i18n("Show what to free"), .url = "https://example.org/"}};
  AppMessage longest = version;
  longest.title = i18n("Spacemint can't see your whole disk, so some sizes may be out of date.");
  for (int i = 0; i < 5; ++i) longest.body += " " + version.body + " " + tip.body;
  longest.link->title = i18n("Show what is not in files");
  QVariantList cards;
  for (const Notice& notice : {Notice{UsageQuestion{}}, Notice{tip}, Notice{version}, Notice{longest}}) {
    const NoticeText text = noticeText(notice, "Spacemint");
    cards << QVariantMap{{QStringLiteral("title"), QString::fromStdString(text.title)},
                         {QStringLiteral("body"), QString::fromStdString(text.body)},
                         {QStringLiteral("primary"), QString::fromStdString(text.primary)},
                         {QStringLiteral("secondary"), QString::fromStdString(text.secondary)},
                         {QStringLiteral("closeHelp"), Notices::closeHelp()}};
  }
  return {{QStringLiteral("notices"), cards}};
}

}  // namespace

std::vector<Page> pagesOfPanel() {
  std::vector<Page> result;
  for (const PanelPage& page : panelPages) {
    result.push_back({.name = QString::fromUtf8(page.name),
                      .url = QStringLiteral("qrc:/qt/qml/Spacemint/Views/PanelView.qml"),
                      .properties = [page] { return propertiesOf(page); },
                      .size = page.size,
                      .margin = page.windowed ? 0 : 12});
  }
  result.push_back(
      {.name = QStringLiteral("panel-messages"), .url = panel("Messages"), .properties = messages});
  result.push_back(
      {.name = QStringLiteral("panel-status-cards"), .url = panel("StatusCards"), .properties = statusCards});
  result.push_back({.name = QStringLiteral("panel-notices"), .url = panel("Notices"), .properties = notices});
  return result;
}

}  // namespace spacemint::gallery
