#include "support/ModelFixture.h"

#include "support/TreeBuilder.h"

#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

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
                                               .data = inHome(".local/share"),
                                               .environment = {},
                                               .disk = folder.path(),
                                               .locale = "en_US",
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
  const fs::path path = inHome(name);
  fs::create_directories(path.parent_path());
  const int handle = open(path.c_str(), O_CREAT | O_TRUNC | O_WRONLY | O_CLOEXEC, 0644);
  ASSERT_GE(handle, 0) << path;
  EXPECT_EQ(posix_fallocate(handle, 0, size), 0) << path;
  close(handle);
}

void ModelFixture::addProgram(std::string_view name, std::string_view script) const {
  const fs::path path = fs::path{folder / "bin"} / name;
  fs::create_directories(path.parent_path());
  std::ofstream{path} << "#!/bin/sh\n" << script << '\n';
  fs::permissions(path, fs::perms::owner_all);
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
