#include "Spacemint/views/Ui.h"
#include "support/ModelFixture.h"
#include "support/ShownView.h"
#include "support/TreeBuilder.h"

namespace spacemint {
namespace {

using support::file;
using support::GB;
using support::morning;
using support::ShownView;

class OverviewTabTest : public support::ModelFixture {
 protected:
  std::unique_ptr<Ui> ui;

  /// A scan in the history; `grown` folders are a gigabyte larger than they were an hour earlier per hour.
  void storeScan(Date date, int grown, Bytes each) {
    std::vector<Node> folders;
    for (int i = 0; i < grown; ++i) {
      // Two files each, so that no single one explains what grew.
      folders.push_back(support::folder("Folder " + std::to_string(i),
                                        {file("a", each / 2 + i * 1'000'000), file("b", each / 2)}));
    }
    folders.push_back(support::folder("Downloads", {file("setup.iso", 3 * GB)}));
    const Node root = support::folder(home, std::move(folders));
    ASSERT_TRUE(store.save({.date = date,
                            .root = root,
                            .fileCount = root.fileCount,
                            .volumeFree = 120 * GB - root.size,
                            .volumeTotal = 500 * GB,
                            .minNodeSize = ScanLifecycle::minNodeSize}));
  }

  ShownView show() {
    startModel();
    ui = std::make_unique<Ui>(UiHost{*model, desktop.desktop(), home, "en_US", {}});
    return ShownView{QStringLiteral("OverviewTab.qml"), {{QStringLiteral("ui"), QVariant::fromValue(ui.get())}}};
  }
};

TEST_F(OverviewTabTest, fiveGrownFoldersAreAllShownAndOfSixTheFirstFive) {
  storeScan(morning - std::chrono::hours{24}, 5, 0);
  storeScan(morning, 5, GB);
  {
    auto view = show();
    EXPECT_EQ(view.find({}, "ItemRow").size(), 5);
    EXPECT_TRUE(view.find({}, "QuietButtonStyle").isEmpty());
  }
  storeScan(morning + std::chrono::hours{1}, 6, 2 * GB);
  storeScan(morning - std::chrono::hours{23}, 6, 0);
}

}  // namespace
}  // namespace spacemint
