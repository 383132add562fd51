#include "HomeOfAnn.h"
#include "Pages.h"
#include "Spacemint/views/Ui.h"
#include "core/history/NcduFormat.h"
#include "support/Files.h"
#include "support/ModelFixture.h"

#include <cmath>

namespace spacemint::gallery {

namespace {

using support::GB;
using support::morning;
using namespace std::chrono_literals;

/// A model with stored scans, and with its interface.
class PictureScene final : public support::ModelFixture {
 public:
  using Step = void (*)(PictureScene&);

  PictureScene(Tab tab, Step before, Step after) {
    locale = gallery::locale;
    desktop.volume.current = VolumeStatus{"System", 129 * GB, 38'800'000'000};
    before(*this);
    makeModel();
    recordFreeSpace();
    model->start();
    ui_ = std::make_unique<Ui>(
        UiHost{.model = *model, .desktop = desktop.desktop(), .home = home, .locale = locale, .quit = {}});
    model->setTab(tab);
    desktop.settle();
    if (after != nullptr) after(*this);
    desktop.settle();
  }
  void TestBody() override {}

  Ui& ui() { return *ui_; }
  void settle() { desktop.settle(); }

  void ann() {
    for (const int hour : {311, 287, 263, 239, 215, 191, 167, 144, 120, 96, 73, 49})
      scan(morning - std::chrono::hours{hour}, homeOfAnn(home, false), 52'900'000'000);
    once();
  }
  void once() { scan(morning - 4min, homeOfAnn(home, true), 38'800'000'000); }
  // A scan of the whole disk, of which some space is in no file.
  void wholeDisk() {
    const auto scanDisk = [&](Date date, bool isLater, Bytes free) {
      Node root = support::folder(disk, {homeOfAnn("home", isLater),
                                         support::folder("usr", {agedFile("lib", 4500 + 100 * isLater, 30)}),
                                         support::folder("var", {agedFile("log", 1900 + 200 * isLater, 1)}),
                                         support::folder("opt", {agedFile("tool", 200, 400)})});
      scan(date, std::move(root), free);
    };
    scanDisk(morning - 49h, false, 52'900'000'000);
    scanDisk(morning - 4min, true, 38'800'000'000);
    volumeFacts = VolumeFacts{
        .volume = {.pool = 1,
                   .name = "System",
                   .fileSystem = "ext4",
                   .places = {{.mountPoint = disk, .root = "/"}}},
        .space = {.total = 129 * GB,
                  .used = 88'800'000'000,
                  .free = 38'800'000'000,
                  .heldBack = 1'400'000'000},
        .ownBytes = 0,
        .deleted = {
            .files = {{.size = 4'100'000'000, .pool = 1, .path = "/a", .programs = {{812, "postgres"}}}}}};
  }
  void volumes() {
    ann();
    const auto volume = [](const char* name, Bytes total, Bytes free) {
      return VolumeReading{{.pool = std::hash<std::string>{}(name),
                            .name = name,
                            .fileSystem = "ext4",
                            .places = {{.mountPoint = std::string{"/"} + name}},
                            .isWritable = true},
                           Space{.total = total, .used = total - free, .free = free}};
    };
    desktop.volume.others = {volume("backup", 112 * GB, 6'200'000'000), volume("data", 1000 * GB, 640 * GB)};
  }
  // Says how the free space of the last days was: hours before now.
  void past(std::vector<std::pair<double, double>> gigabytes) { past_ = std::move(gigabytes); }
  void scansAt(std::vector<int> hours) {
    for (const int hour : hours) storeScan(morning - std::chrono::hours{hour});
  }
  void nowFree(double gigabytes) { desktop.volume.current->free = static_cast<Bytes>(gigabytes * 1e9); }
  void total(double gigabytes) { desktop.volume.current->total = static_cast<Bytes>(gigabytes * 1e9); }
  void open(std::string_view name) { model->setFolderPath(inHome(name)); }
  void select(std::string_view name) { ui_->explorer()->select(inHome(name)); }
  void showFiles() {
    desktop.settle();
    model->setTab(Tab::files);
  }
  void find(const char* text) { model->setFileSearch(text); }
  // A scan of a server, from a file.
  void openExport() {
    Snapshot scan{.date = morning - std::chrono::days{21}, .root = homeOfAnn("/srv", true)};
    scan.fileCount = scan.root.fileCount;
    const std::string file = folder / "usage.json";
    support::writeText(file, NcduFormat::encode(scan, "db1.example.org", "1"));
    model->open(file);
  }
  void point(int row) { ui_->explorer()->pointRow(ui_->folders()->content(), row); }
  // A recording grows for two minutes.
  void growing() {
    constexpr int refreshes = 60;
    model->growing().setSeen(true);
    growFile("Videos", "recording.mkv", refreshes, 15 * support::MB);
  }
  void byAge() { ui_->explorer()->setColouring(Explorer::Colouring::Age); }

 private:
  void scan(Date date, Node root, Bytes free) const {
    const Coverage coverage{
        .places = {{.place = {.mountPoint = disk, .root = "/", .fileSystem = "ext4"}, .size = root.size}}};
    EXPECT_TRUE(store.save({.date = date,
                            .duration = Seconds{4.2},
                            .root = std::move(root),
                            .fileCount = 612'345,
                            .volumeFree = free,
                            .volumeTotal = 129 * GB,
                            .minNodeSize = ScanLifecycle::minNodeSize,
                            .fullScanDate = date,
                            .coverage = coverage}));
  }
  // Between the given hours the line is straight, with a reading every six hours.
  void recordFreeSpace() {
    for (std::size_t i = 0; i < past_.size(); ++i) {
      const auto [from, gigabytes] = past_[i];
      const auto [to, next] = i + 1 < past_.size() ? past_[i + 1] : std::pair{from - 6, gigabytes};
      const double last = from - to > gap_ ? from - 1 : to;
      for (double hours = from; hours > last; hours -= 6)
        record(hours, gigabytes + (next - gigabytes) * (from - hours) / (from - to));
    }
  }
  void record(double hours, double gigabytes) {
    const Date date = morning - std::chrono::minutes{static_cast<int>(hours * 60)};
    EXPECT_TRUE(
        model->freeSpace().add({date, static_cast<Bytes>(gigabytes * 1e9), desktop.volume.current->total}));
  }

  std::vector<std::pair<double, double>> past_{{335, 60.1}, {288, 59.6}, {264, 61.4}, {200, 60.8},
                                               {168, 59.0}, {120, 58.1}, {72, 55.0},  {49, 52.9},
                                               {24, 46},    {1, 38.8}};
  // A longer time between two entries of `past_` has no readings.
  double gap_ = 130;
  std::unique_ptr<Ui> ui_;
};

using PictureStep = PictureScene::Step;

const PictureStep ann = [](PictureScene& s) { s.ann(); };
const PictureStep disk = [](PictureScene& s) { s.wholeDisk(); };
const PictureStep volumes = [](PictureScene& s) { s.volumes(); };
const PictureStep evening = [](PictureScene& s) { s.select("Videos/Concerts/2026-03-01 evening.mkv"); };
const PictureStep opened = [](PictureScene& s) { s.openExport(); };

// The pages of this width are of the panel, and the others of the window.
constexpr int panelWidth = 460;

struct PicturePage {
  const char* name;
  QSize size;
  Tab tab;
  PictureStep before;
  PictureStep after = nullptr;
};

const PicturePage picturePages[] = {
    {"overview", {460, 700}, Tab::overview, ann},
    {"growing", {460, 700}, Tab::overview, ann, [](PictureScene& s) { s.growing(); }},
    {"folders", {460, 700}, Tab::folders, ann, [](PictureScene& s) { s.point(1); }},
    {"folders-inside", {460, 700}, Tab::folders, ann, [](PictureScene& s) { s.open("Videos"); }},
    {"folders-disk", {460, 700}, Tab::folders, disk},
    {"folders-disk-unfolded",
     {460, 700},
     Tab::folders,
     disk,
     [](PictureScene& s) { s.ui().folders()->unfoldNotInFiles(); }},
    {"folders-once", {460, 700}, Tab::folders, [](PictureScene& s) { s.once(); }},
    {"opened-460", {460, 700}, Tab::overview, ann, opened},
    {"opened-720", {720, 640}, Tab::overview, ann, opened},
    {"opened-1080", {1080, 720}, Tab::overview, ann, opened},
    {"opened-files",
     {460, 700},
     Tab::overview,
     ann,
     [](PictureScene& s) {
       s.openExport();
       s.showFiles();
     }},
    {"window-600", {600, 640}, Tab::folders, ann},
    {"window-720", {720, 640}, Tab::folders, ann, evening},
    {"window-1080", {1080, 720}, Tab::folders, volumes, evening},
    {"window-1440", {1440, 900}, Tab::folders, volumes, evening},
    {"window-inside", {1080, 720}, Tab::folders, ann, [](PictureScene& s) { s.open("Videos/Concerts"); }},
    {"window-age", {1080, 720}, Tab::folders, ann, [](PictureScene& s) { s.byAge(); }},
    {"window-search", {1080, 720}, Tab::folders, ann, [](PictureScene& s) { s.find(".img"); }},
    {"window-nothing-found", {1080, 720}, Tab::folders, ann, [](PictureScene& s) { s.find("xyz"); }},
    {"window-once", {1080, 720}, Tab::folders, [](PictureScene& s) { s.once(); }},
    {"window-disk", {1080, 720}, Tab::folders, disk},
    {"window-low",
     {1080, 720},
     Tab::overview,
     [](PictureScene& s) {
       s.ann();
       s.nowFree(6);
     }},
    {"window-overview-1440", {1440, 900}, Tab::overview, volumes},
    {"window-overview-720", {720, 640}, Tab::overview, volumes},
    {"window-files", {1080, 720}, Tab::files, ann},
    {"window-developer", {1080, 720}, Tab::developer, ann},
};

struct LineState {
  const char* title;
  PictureStep before;
};

const LineState lineStates[] = {
    {"Fourteen days, compared with a scan, warning level below it",
     [](PictureScene& s) {
       s.scansAt({311, 263, 215, 167, 120, 72, 49, 1});
     }},
    {"The keyboard’s ring",
     [](PictureScene& s) {
       s.scansAt({311, 263, 215, 167, 120, 72, 49, 1});
     }},
    {"Much is free: no level, the line’s own scale",
     [](PictureScene& s) {
       s.past({{335, 460}, {240, 457}, {120, 455}, {49, 448}, {1, 440}});
       s.total(1000);
       s.nowFree(440);
       s.scansAt({200, 49, 1});
     }},
    {"Low: the last point takes the level’s colour",
     [](PictureScene& s) {
       s.nowFree(15);
       s.scansAt({200, 49, 1});
     }},
    {"Away for five days: dashed, not known",
     [](PictureScene& s) {
       s.past({{335, 60}, {290, 60.2}, {150, 58}, {120, 58}, {100, 57}, {70, 55}, {49, 53}, {1, 39}});
       s.scansAt({290, 100, 49, 1});
     }},
    {"Two points",
     [](PictureScene& s) {
       s.past({{6, 46}});
       s.scansAt({5, 1});
     }},
    {"One point", [](PictureScene& s) { s.past({}); }},
};

PictureScene& sceneOf(Tab tab, PictureStep before, PictureStep after) {
  // The scenes live until the program ends.
  static std::vector<std::unique_ptr<PictureScene>> scenes;
  return *scenes.emplace_back(std::make_unique<PictureScene>(tab, before, after));
}

QVariantMap lines() {
  QVariantList histories;
  QStringList titles;
  for (const LineState& state : lineStates) {
    histories << QVariant::fromValue(sceneOf(Tab::overview, state.before, nullptr).ui().spaceHistory());
    titles << QString::fromUtf8(state.title);
  }
  return {{QStringLiteral("histories"), histories}, {QStringLiteral("titles"), titles}};
}

}  // namespace

std::vector<Page> pagesOfPictures() {
  std::vector<Page> result;
  for (const PicturePage& page : picturePages) {
    const auto scene = std::make_shared<PictureScene*>(nullptr);
    result.push_back({.name = QStringLiteral("picture-") + QString::fromUtf8(page.name),
                      .url = QStringLiteral("qrc:/qt/qml/Spacemint/Views/PanelView.qml"),
                      .properties =
                          [&page, scene] {
                            *scene = &sceneOf(page.tab, page.before, page.after);
                            return QVariantMap{{QStringLiteral("ui"), QVariant::fromValue(&(*scene)->ui())},
                                               {QStringLiteral("windowed"), page.size.width() != panelWidth}};
                          },
                      .settle = [scene] { (*scene)->settle(); },
                      .size = page.size,
                      .margin = 0});
  }
  result.push_back({.name = QStringLiteral("picture-lines"),
                    .url = QStringLiteral("qrc:/qt/qml/Spacemint/Gallery/pictures/Lines.qml"),
                    .properties = lines});
  return result;
}

}  // namespace spacemint::gallery
