#include "support/ModelFixture.h"

#include "support/Files.h"
#include "support/TreeBuilder.h"

#include <filesystem>

namespace spacemint::support {

namespace fs = std::filesystem;

ModelFixture::ModelFixture() {
  fs::create_directories(home);
  desktop.clock.setDate(morning);
}

AppModel& ModelFixture::makeModel() {
  model.reset();
  model = std::make_unique<AppModel>(ModelHost{.defaults = defaults,
                                               .store = store,
                                               .journal = journal,
                                               .tools = ToolRuns{Shell{std::vector{folder / "bin"}}},
                                               .home = home,
                                               .personal = {},
                                               .data = inHome(".local/share"),
                                               .environment = {},
                                               .disk = folder.path(),
                                               .locale = locale,
                                               .timeZone = "UTC",
                                               .hasBundleIdentifier = isApplication,
                                               .hasFullDiskAccess = [this] { return hasAccess; }},
                                     desktop.desktop());
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

void ModelFixture::storeScan(Date date, Bytes size) const {
  const auto saved = store.save({.date = date,
                                 .root = support::folder(home, {file("old", size)}),
                                 .fileCount = 1,
                                 .volumeFree = 120 * GB,
                                 .volumeTotal = 500 * GB,
                                 .minNodeSize = ScanLifecycle::minNodeSize,
                                 .fullScanDate = date});
  ASSERT_TRUE(saved) << saved.error().message;
}

Bytes ModelFixture::sizeInScan(std::string_view name) const {
  const SharedSnapshot& snapshot = model->history().snapshot();
  const Node* node = snapshot ? snapshot->nodeAt(inHome(name)) : nullptr;
  return node != nullptr ? node->size / MB * MB : 0;
}

}  // namespace spacemint::support
