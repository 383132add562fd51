// The program itself, as a login starts it, on a bus with a notification service.

#include "core/history/SnapshotStore.h"
#include "support/BusServices.h"
#include "support/TemporaryFolder.h"
#include "support/Waiting.h"

#include <QProcess>
#include <QTimer>
#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <fstream>

namespace spacemint {
namespace {

using namespace std::chrono_literals;
using support::FakeNotifications;
using support::PrivateBus;
using support::waitUntil;
namespace fs = std::filesystem;

class BackgroundProgram : public testing::Test {
 protected:
  BackgroundProgram() {
    fs::create_directories(home / ".config/spacemint");
    fs::create_directories(home / "run");
    fs::permissions(home / "run", fs::perms::owner_all);
    look.start(20);
  }
  ~BackgroundProgram() override {
    program.kill();
    program.waitForFinished();
    EXPECT_EQ(program.readAllStandardError().toStdString(), "") << "a warning of Qt or QtDBus is a fault";
  }

  void setUp(const std::string& settings) const {
    std::ofstream{home / ".config/spacemint/app.spacemint.Spacemint.json"} << settings;
  }
  void start(const QString& busAddress) {
    auto environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_STATE_HOME", "XDG_CACHE_HOME"}) {
      environment.remove(QString::fromLatin1(name));
    }
    environment.insert(QStringLiteral("HOME"), QString::fromStdString(home.path()));
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), QString::fromStdString(home / "run"));
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), busAddress);
    program.setProcessEnvironment(environment);
    program.start(QStringLiteral(SPACEMINT), {QStringLiteral("--background")});
    ASSERT_TRUE(program.waitForStarted());
  }
  // How long it took to end when it was asked to.
  std::chrono::milliseconds terminate() {
    const auto asked = std::chrono::steady_clock::now();
    program.terminate();
    EXPECT_TRUE(waitUntil([this] { return program.state() == QProcess::NotRunning; }));
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(program.exitCode(), 0);
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - asked);
  }
  // What lies in the history's folder besides scans that can be read.
  std::vector<std::string> strangers() const {
    std::vector<std::string> names;
    if (!fs::exists(store.directory)) return names;
    for (const auto& entry : fs::directory_iterator(store.directory)) names.push_back(entry.path().string());
    for (const auto& entry : store.entries()) {
      if (store.load(entry)) std::erase(names, entry.path);
    }
    return names;
  }

  PrivateBus bus;
  support::TemporaryFolder home;
  SnapshotStore store{home / ".local/share/Spacemint/Snapshots"};
  QProcess program;
  QTimer look;  // nothing tells that a file has come
};

TEST_F(BackgroundProgram, warnsScansStoresAndEndsWhenItIsTold) {
  setUp(R"({"hasStarted": true, "warningThresholdGB": 1000000})");
  std::ofstream{home / "letter"} << "Dear Ann";
  FakeNotifications service{bus.connection(), {}};
  start(bus.address());
  ASSERT_TRUE(waitUntil([&] { return !service.shown.empty(); }));
  EXPECT_EQ(service.shown.front().summary, QStringLiteral("Your disk is almost full"));
  ASSERT_TRUE(waitUntil([this] { return !store.entries().empty(); }));
  EXPECT_LT(terminate(), 2s * SPACEMINT_SLOWNESS);
  const auto scan = store.load(store.entries().front());
  ASSERT_TRUE(scan);
  EXPECT_EQ(scan->rootPath(), home.path());
  EXPECT_GE(scan->fileCount, 1);
  EXPECT_THAT(strangers(), testing::IsEmpty());
}

TEST_F(BackgroundProgram, endsSoonInTheMiddleOfAScan) {
  setUp(R"({"hasStarted": true, "warningThresholdGB": 1000000})");
  for (int i = 0; i < 200; ++i) {
    const fs::path folder = home / "many" + std::string{"/"} + std::to_string(i);
    fs::create_directories(folder);
    for (int j = 0; j < 100; ++j) std::ofstream{folder / std::to_string(j)};
  }
  FakeNotifications service{bus.connection(), {}};
  start(bus.address());
  // The scan begins with the warning.
  ASSERT_TRUE(waitUntil([&] { return !service.shown.empty(); }));
  EXPECT_LT(terminate(), 2s * SPACEMINT_SLOWNESS);
  EXPECT_THAT(strangers(), testing::IsEmpty());
}

TEST_F(BackgroundProgram, worksWithoutABus) {
  setUp(R"({"hasStarted": true, "warningThresholdGB": 1000000})");
  start(QStringLiteral("unix:path=/nowhere"));
  EXPECT_TRUE(waitUntil([this] { return !store.entries().empty(); }));
  EXPECT_LT(terminate(), 2s * SPACEMINT_SLOWNESS);
}

TEST_F(BackgroundProgram, scansNothingBeforeTheUserBegins) {
  setUp(R"({"warningThresholdGB": 1000000})");
  FakeNotifications service{bus.connection(), {}};
  start(bus.address());
  ASSERT_TRUE(waitUntil([&] { return !service.shown.empty(); }));
  EXPECT_LT(terminate(), 2s * SPACEMINT_SLOWNESS);
  EXPECT_TRUE(store.entries().empty());
}

}  // namespace
}  // namespace spacemint
