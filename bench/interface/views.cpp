// Measures how fast the panel reacts with a scan of 100,000 nodes and software rendering.

#include "Spacemint/views/Ui.h"
#include "support/FakeDesktop.h"
#include "support/TemporaryFolder.h"
#include "support/TreeBuilder.h"
#include "ui_kit/Theme.h"
#include "ui_kit/UiKit.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QQmlExtensionPlugin>
#include <QQuickItem>
#include <QQuickView>

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <iostream>

Q_IMPORT_QML_PLUGIN(Spacemint_ServicesPlugin)
Q_IMPORT_QML_PLUGIN(Spacemint_UiKitPlugin)
Q_IMPORT_QML_PLUGIN(Spacemint_ViewsPlugin)

namespace spacemint {
namespace {

using support::file;
using support::folder;

constexpr QSize panelSize{460, 700};
constexpr QSize windowSize{1440, 900};
constexpr Bytes MB = 1'000'000;
const Date today = dateFromUnixSeconds(1'772'438'400);

class NoJournal final : public EventJournal {
 public:
  std::uint64_t currentEventID(const JournalQuery&) override { return 0; }
  std::expected<FolderChanges, JournalError> changes(const JournalQuery&) override {
    return std::unexpected(JournalError::notRecording);
  }
};

// A folder of 5,000 children, and 95,000 further nodes, many of them in folders that the suggestions list.
Node homeTree(const std::string& home, Bytes grownBy) {
  std::vector<Node> top;
  std::vector<Node> many;
  for (int i = 0; i < 5'000; ++i) {
    const std::string name = "A child of the large folder, number " + std::to_string(i);
    many.push_back(i % 3 == 0 ? folder(name, {}, {.unlisted = (6'000 - i) * MB})
                              : file(name + ".mov", (6'000 - i) * MB));
  }
  top.push_back(folder("Many", std::move(many)));
  for (int project = 0; project < 950; ++project) {
    std::vector<Node> modules;
    for (int i = 0; i < 97; ++i) modules.push_back(file("module-" + std::to_string(i) + ".js", 20 * MB + i));
    modules.push_back(folder("cache", {}, {.unlisted = project < 12 ? grownBy * (project + 1) : 0}));
    top.push_back(folder("project-" + std::to_string(project), {folder("node_modules", std::move(modules))}));
  }
  return folder(home, std::move(top));
}

double percentile(std::vector<double> times, double part) {
  std::ranges::sort(times);
  return times[static_cast<std::size_t>(std::ceil(part * static_cast<double>(times.size()))) - 1];
}

void print(const std::string& name, double milliseconds, double limit) {
  std::cout << std::left << std::setw(52) << name << std::right << std::fixed << std::setprecision(1)
            << std::setw(8) << milliseconds << " ms" << (milliseconds <= limit ? "" : "  TOO SLOW")
            << std::endl;
}

/// The whole program without its windows, with stored scans of a generated tree.
class Application {
 public:
  Application() {
    store({.date = today - std::chrono::hours{75}, .root = homeTree(home_, 0)});
    store({.date = today - std::chrono::hours{1}, .root = homeTree(home_, 200 * MB)});
    desktop_.clock.setDate(today);
    model_.start();
    desktop_.settle();
  }

  AppModel& model() { return model_; }
  Ui& ui() { return ui_; }
  std::string home() const { return home_; }
  std::string inHome(std::string_view name) const { return home_ + "/" + std::string{name}; }

 private:
  void store(Snapshot snapshot) {
    snapshot.fileCount = 100'000;
    snapshot.volumeFree = 100'000 * MB;
    snapshot.volumeTotal = 500'000 * MB;
    snapshot.minNodeSize = ScanLifecycle::minNodeSize;
    snapshot.fullScanDate = snapshot.date;
    if (!store_.save(snapshot)) throw std::runtime_error("the scan cannot be stored");
  }

  support::TemporaryFolder folder_;
  std::string home_ = folder_ / "home";
  support::FakeDesktop desktop_;
  DefaultsStore defaults_{folder_ / "settings.json"};
  SnapshotStore store_{folder_ / "history"};
  NoJournal journal_;
  AppModel model_{{.defaults = defaults_,
                   .store = store_,
                   .journal = journal_,
                   .tools = ToolRuns{Shell{std::vector{folder_ / "bin"}}},
                   .home = home_,
                   .personal = {},
                   .data = inHome(".local/share"),
                   .environment = {},
                   .disk = folder_.path(),
                   .homeVolume = home_,
                   .locale = "en_US",
                   .timeZone = "UTC",
                   .hasFullDiskAccess = [] { return true; }},
                  desktop_.desktop()};
  Ui ui_{
      UiHost{.model = model_, .desktop = desktop_.desktop(), .home = home_, .locale = "en_US", .quit = {}}};
};

/// The panel or the window on the screen.
class Panel {
 public:
  Panel(Ui& ui, const QSize& size, bool windowed) {
    UiKit::install(*view_.engine());
    view_.setResizeMode(QQuickView::SizeRootObjectToView);
    view_.resize(size);
    view_.setInitialProperties(
        {{QStringLiteral("ui"), QVariant::fromValue(&ui)}, {QStringLiteral("windowed"), QVariant{windowed}}});
    view_.setSource(QUrl{QStringLiteral("qrc:/qt/qml/Spacemint/Views/PanelView.qml")});
    view_.show();
    for (int i = 0; i < 10; ++i) frameAfter([&] { view_.update(); });
  }

  /// Calls `change` and returns the milliseconds until the next frame is drawn.
  double frameAfter(const std::function<void()>& change) {
    QEventLoop loop;
    QElapsedTimer time;
    double taken = 0;
    const auto connection = QObject::connect(&view_, &QQuickWindow::frameSwapped, &loop, [&] {
      taken = static_cast<double>(time.nsecsElapsed()) / 1e6;
      loop.quit();
    });
    time.start();
    change();
    view_.update();
    loop.exec();
    QObject::disconnect(connection);
    return taken;
  }

  /// Moves the pointer to a place given from the middle.
  void pointAt(const QPointF& place) {
    const QPointF at = QRectF{QPointF{}, QSizeF{view_.size()}}.center() + place;
    QMouseEvent move(QEvent::MouseMove, at, view_.mapToGlobal(at), Qt::NoButton, Qt::NoButton, {});
    QCoreApplication::sendEvent(&view_, &move);
  }

  /// The scrollable item of the current tab; null if there is none.
  QQuickItem* scrollable() { return scrollableIn(*view_.contentItem()); }

 private:
  static QQuickItem* scrollableIn(const QQuickItem& item) {
    const auto children = item.childItems();
    for (QQuickItem* child : children) {
      if (!child->isVisible()) continue;
      const bool scrolls =
          child->inherits("QQuickFlickable") && child->property("contentHeight").toDouble() > child->height();
      if (QQuickItem* found = scrolls ? child : scrollableIn(*child)) return found;
    }
    return nullptr;
  }

  QQuickView view_;
};

struct Scrolling {
  const char* name;
  Tab tab;
  double step;
};

// Measures frames while the tab scrolls: a frame lasts from the change of the position until it is drawn.
void scroll(Panel& panel, AppModel& model, const Scrolling& scrolling) {
  panel.frameAfter([&] { model.setTab(scrolling.tab); });
  QQuickItem* view = panel.scrollable();
  if (view == nullptr) throw std::runtime_error("nothing scrolls here");
  panel.pointAt({0, 100});
  const double end = view->property("contentHeight").toDouble() - view->height();
  double y = 0;
  double step = scrolling.step;
  std::vector<double> frames;
  for (int i = 0; i < 600; ++i) {
    if (y + step > end || y + step < 0) step = -step;
    y += step;
    frames.push_back(panel.frameAfter([&] { view->setProperty("contentY", y); }));
  }
  print(std::string{"scrolling "} + scrolling.name + ", median", percentile(frames, 0.5), 1000.0 / 60);
  print(std::string{"scrolling "} + scrolling.name + ", 95th of 100", percentile(frames, 0.95), 1000.0 / 60);
}

void measurePanel(Application& application) {
  AppModel& model = application.model();
  Panel panel{application.ui(), panelSize, false};

  for (const char* time : {"first", "second"}) {
    for (const Tab tab : {Tab::folders, Tab::files, Tab::developer, Tab::overview}) {
      print("switching to " + std::string{titleOf(tab)} + ", " + time + " time",
            panel.frameAfter([&] { model.setTab(tab); }), 100);
    }
  }
  panel.frameAfter([&] { model.setTab(Tab::folders); });
  std::vector<double> openings;
  for (int i = 0; i < 15; ++i) {
    panel.frameAfter([&] { model.setFolderPath(application.inHome("project-1")); });
    openings.push_back(panel.frameAfter([&] { model.setFolderPath(application.inHome("Many")); }));
  }
  print("opening a folder with 5,000 children, median", percentile(openings, 0.5), 100);
  print("opening a folder with 5,000 children, longest", percentile(openings, 1), 100);

  for (const Scrolling& scrolling :
       {Scrolling{"5,000 rows slowly", Tab::folders, 6}, Scrolling{"5,000 rows fast", Tab::folders, 90},
        Scrolling{"the large files", Tab::files, 24}}) {
    scroll(panel, model, scrolling);
  }
}

void measureWindow(Application& application) {
  AppModel& model = application.model();
  Panel window{application.ui(), windowSize, true};
  window.frameAfter([&] { model.setTab(Tab::folders); });
  std::vector<double> maps;
  for (int i = 0; i < 15; ++i) {
    window.frameAfter([&] { model.setFolderPath(application.inHome("project-1")); });
    maps.push_back(window.frameAfter([&] { model.setFolderPath(application.home()); }));
  }
  print("list and map of 100,000 nodes, median", percentile(maps, 0.5), 50);
  print("list and map of 100,000 nodes, longest", percentile(maps, 1), 50);
  std::vector<double> hovers;
  for (int i = 0; i < 200; ++i)
    hovers.push_back(window.frameAfter([&] { window.pointAt({i % 20 * 20.0, i / 20 * 20.0 - 100}); }));
  print("the pointer over the map, median", percentile(hovers, 0.5), 1000.0 / 60);
  print("the pointer over the map, 95th of 100", percentile(hovers, 0.95), 1000.0 / 60);
}

}  // namespace
}  // namespace spacemint

int main(int argc, char** argv) {
  // Draw a frame immediately after a change.
  qputenv("QT_QPA_UPDATE_IDLE_TIME", "0");
  qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
  QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
  const QGuiApplication qt(argc, argv);
  spacemint::Application application;
  spacemint::measurePanel(application);
  spacemint::measureWindow(application);
}
