// From the feed to the installer, with real packages and real signatures, and every way to cheat.

#include "AppServices/Updates.h"

#include "services/ServicesFixture.h"

#include <QFileInfo>
#include <QProcess>

#include <sodium.h>

#include <filesystem>
#include <fstream>
#include <tuple>

namespace spacemint {
namespace {

using namespace std::chrono_literals;
using support::WebAnswer;
using support::WebRequest;
using testing::ElementsAre;
using testing::EndsWith;

struct KeyPair {
  std::array<unsigned char, crypto_sign_PUBLICKEYBYTES> open{};
  std::array<unsigned char, crypto_sign_SECRETKEYBYTES> secret{};

  KeyPair() {
    if (sodium_init() >= 0) crypto_sign_keypair(open.data(), secret.data());
  }
  std::string sign(const QByteArray& bytes) const {
    std::array<unsigned char, crypto_sign_BYTES> signature{};
    crypto_sign_detached(signature.data(), nullptr, reinterpret_cast<const unsigned char*>(bytes.constData()),
                         static_cast<std::size_t>(bytes.size()), secret.data());
    return base64(signature);
  }
  std::string openText() const { return base64(open); }

  template <std::size_t N>
  static std::string base64(const std::array<unsigned char, N>& bytes) {
    return QByteArray{reinterpret_cast<const char*>(bytes.data()), N}.toBase64().toStdString();
  }
};

class UpdatesTest : public ServicesTest {
 protected:
  static constexpr auto feedPath = "/feed.xml";
  static constexpr auto name = "spacemint_2.0_amd64.deb";
  static constexpr auto path = "/spacemint_2.0_amd64.deb";

  UpdatesTest() { publish(package("spacemint", "2.0-1", "amd64")); }

  /// Puts a file into the feed as version 2.0, signed by us.
  void publish(const QByteArray& bytes) {
    file = bytes;
    offer({});
    serve(path, {.body = file});
  }

  /// A package file.
  QByteArray package(const std::string& product, const std::string& version, const std::string& machine) {
    const std::string root = folder / "package";
    std::filesystem::create_directories(root + "/DEBIAN");
    std::ofstream(root + "/DEBIAN/control")
        << "Package: " << product << "\nVersion: " << version << "\nArchitecture: " << machine
        << "\nMaintainer: Ann <ann@spacemint.example>\nDescription: x\n";
    const QString built = QString::fromStdString(folder / "built.deb");
    EXPECT_EQ(QProcess::execute(QStringLiteral("/usr/bin/dpkg-deb"),
                                {QStringLiteral("--root-owner-group"), QStringLiteral("-Zgzip"),
                                 QStringLiteral("--build"), QString::fromStdString(root), built}),
              0);
    QFile file(built);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
  }

  struct Offer {
    std::string version = "2.0";
    std::string name = UpdatesTest::name;
    std::optional<std::string> signature = {};
    std::optional<qint64> length = {};
  };
  /// Puts one release into the feed.
  void offer(const Offer& release) {
    serve(feedPath,
          {.body = QByteArray::fromStdString(
               R"(<rss xmlns:s="http://www.andymatuschak.org/xml-namespaces/sparkle"><channel><item>)"
               "<enclosure url=\"" +
               server.address() + "/" + release.name + "\" s:version=\"" + release.version + "\" length=\"" +
               std::to_string(release.length.value_or(file.size())) + "\" s:edSignature=\"" +
               release.signature.value_or(key.sign(file)) + "\"/></item></channel></rss>")});
  }

  std::unique_ptr<Updates> make() {
    return std::make_unique<Updates>(
        Updates::Host{.info = {.name = "Spacemint",
                               .version = version,
                               .updateFeed = server.address() + feedPath,
                               .updateKey = keyText.value_or(key.openText())},
                      .defaults = defaults,
                      .web = *client,
                      .system = {.version = "12.0", .kernel = "6.1", .architecture = "amd64"},
                      .package = "spacemint",
                      .folder = downloads,
                      .today = [this] { return day; },
                      .openUrl =
                          [this](const std::string& url, const std::function<void()>& failed) {
                            opened.push_back(url);
                            if (!hasInstaller) failed();
                          },
                      .interval = interval});
  }
  static bool ends(const Updates& updates) {
    return support::waitUntil([&] { return updates.canCheck(); });
  }
  static bool checks(Updates& updates) {
    updates.checkNow();
    return ends(updates);
  }
  static bool installs(Updates& updates) {
    updates.install();
    return ends(updates);
  }
  /// How a search that a person asked for ends.
  UpdateState searched() {
    const auto updates = make();
    updates->checkNow();
    EXPECT_TRUE(ends(*updates));
    EXPECT_EQ(updates->isAvailable(), updates->state().result == UpdateState::Result::ready);
    updates->install();
    EXPECT_TRUE(ends(*updates));
    return updates->state();
  }
  void isRefused(UpdateProblem problem, const std::string& what) {
    const UpdateState state = searched();
    EXPECT_EQ(state.result, UpdateState::Result::failed) << what;
    EXPECT_EQ(state.problem, problem) << what;
    EXPECT_TRUE(opened.empty()) << what;
    std::error_code none;
    const bool isEmpty = !std::filesystem::exists(downloads) || std::filesystem::is_empty(downloads, none);
    EXPECT_TRUE(isEmpty) << what;
  }

  KeyPair key;
  std::optional<std::string> keyText;
  QByteArray file;
  std::string version = "1.9";
  std::string downloads = folder / "cache/updates";
  std::vector<std::string> opened;
  bool hasInstaller = true;
  std::chrono::milliseconds interval = 24h;
  WebClient impatient{"Spacemint", {.time = 300ms}};
  WebClient* client = &web;
};

TEST_F(UpdatesTest, aGenuineUpdateReachesTheInstaller) {
  const auto updates = make();
  std::vector<std::string> told;
  QObject::connect(updates.get(), &Updates::changed, updates.get(), [&] {
    if (told.empty() || told.back() != updates->status().toStdString())
      told.push_back(updates->status().toStdString());
  });
  updates->checkNow();
  EXPECT_FALSE(updates->canCheck());
  ASSERT_TRUE(ends(*updates));
  EXPECT_THAT(told, ElementsAre("Checking for updates…", "Downloading version 2.0…", "Checking version 2.0…",
                                "Version 2.0 is ready to install."));
  EXPECT_TRUE(updates->isAvailable());
  EXPECT_TRUE(opened.empty());
  ASSERT_TRUE(installs(*updates));
  EXPECT_THAT(opened, ElementsAre("file://" + downloads + "/" + name));
  const auto mode = std::filesystem::status(downloads).permissions();
  EXPECT_EQ(mode, std::filesystem::perms::owner_all);

  // It is not loaded twice.
  ASSERT_TRUE(checks(*updates));
  EXPECT_TRUE(updates->isAvailable());
  EXPECT_EQ(server.count(path), 1);
}

TEST_F(UpdatesTest, whoIsUpToDateIsToldSo) {
  version = "2.0";
  const auto updates = make();
  ASSERT_TRUE(checks(*updates));
  EXPECT_EQ(updates->status().toStdString(), "Spacemint is up to date.");
  EXPECT_EQ(server.count(path), 0);
}

TEST_F(UpdatesTest, tamperingIsRefused) {
  const auto refused = [this](UpdateProblem problem, const std::string& what) {
    isRefused(problem, what);
    publish(file);
  };
  for (const qsizetype at : {qsizetype{0}, file.size() / 2, file.size() - 1}) {
    QByteArray flipped = file;
    flipped[at] = static_cast<char>(flipped[at] ^ 1);
    serve(path, {.body = flipped});
    refused(UpdateProblem::signatureRefused, "a flipped bit");
  }
  offer({.signature = KeyPair{}.sign(file)});
  refused(UpdateProblem::signatureRefused, "another's key");
  offer({.length = file.size() - 1});
  refused(UpdateProblem::fileRefused, "longer than told");
  offer({.length = file.size() + 1});
  refused(UpdateProblem::fileRefused, "shorter than told");
  serve(path, {.body = QByteArray(100'000'000, 'x')});
  refused(UpdateProblem::fileRefused, "100 MB");
  offer({.name = "othermint_2.0_amd64.deb"});
  refused(UpdateProblem::feedRefused, "another product");
  serve(feedPath, {.body = QByteArray(50'000'000, ' ')});
  refused(UpdateProblem::feedUnreachable, "a feed of 50 MB");
  serve(feedPath, {.body = "<!DOCTYPE rss [<!ENTITY a \"a\">]><rss>&a;</rss>"});
  refused(UpdateProblem::feedUnreadable, "entities");
}

TEST_F(UpdatesTest, aSignedPackageIsTakenForWhatItIs) {
  // All of these are ours and signed by us; only the names they are offered under are not theirs.
  const std::tuple<const char*, const char*, const char*> cases[]{
      {"spacemint", "1.8", "amd64"},
      {"spacemint", "2.0.1", "amd64"},
      {"othermint", "2.0", "amd64"},
      {"spacemint", "2.0", "arm64"},
  };
  for (const auto& [product, itsVersion, machine] : cases) {
    publish(package(product, itsVersion, machine));
    isRefused(UpdateProblem::packageRefused, std::string{product} + itsVersion + machine);
  }
  publish("not a package");
  isRefused(UpdateProblem::packageRefused, "no package");
  publish(package("spacemint", "1:2.0-3", "all"));
  EXPECT_EQ(searched().result, UpdateState::Result::ready);
}

TEST_F(UpdatesTest, withoutAKeyNothingIsAskedFor) {
  for (const char* text : {"", "AAAA", "not base64 at all"}) {
    keyText = text;
    isRefused(UpdateProblem::noKey, text);
  }
  EXPECT_TRUE(server.requests().empty());
}

TEST_F(UpdatesTest, whatServersDoIsTold) {
  serve(feedPath, {.status = 500});
  isRefused(UpdateProblem::feedUnreachable, "500");
  serve(feedPath, {.isSilent = true});
  client = &impatient;
  isRefused(UpdateProblem::feedUnreachable, "never");
  client = &web;
  serve(feedPath, {.body = "{}"});
  isRefused(UpdateProblem::feedUnreadable, "no feed");
  offer({});
  serve(path, {.status = 404});
  isRefused(UpdateProblem::downloadFailed, "404");
  serve(path, {.status = 206, .body = file, .headers = "Content-Range: bytes 5-9/10\r\n"});
  isRefused(UpdateProblem::downloadFailed, "a piece that nobody asked for");
  support::WebServer other{[this](const auto&) { return WebAnswer{.body = file}; }};
  serve(path, {.status = 302,
               .headers = "Location: " + QByteArray::fromStdString(other.address() + path) + "\r\n"});
  EXPECT_EQ(searched().problem, UpdateProblem::downloadFailed);
  EXPECT_TRUE(other.requests().empty());
  serve(path, {.isSilent = true});
  client = &impatient;
  EXPECT_EQ(searched().problem, UpdateProblem::downloadFailed);
}

TEST_F(UpdatesTest, aBrokenDownloadGoesOnWhereItBrokeOrStartsOver) {
  const qsizetype half = file.size() / 2;
  serve(path, {.body = file.left(half), .length = file.size()});
  EXPECT_EQ(searched().problem, UpdateProblem::downloadFailed);
  serve(path,
        {.status = 206,
         .body = file.mid(half),
         .headers = "Content-Range: bytes " + QByteArray::number(half) + "-" +
                    QByteArray::number(file.size() - 1) + "/" + QByteArray::number(file.size()) + "\r\n"});
  EXPECT_EQ(searched().result, UpdateState::Result::ready);
  EXPECT_EQ(server.requests().back().headers.value("range"), "bytes=" + QByteArray::number(half) + "-");

  // A server that knows no pieces sends the whole file.
  std::filesystem::remove_all(downloads);
  serve(path, {.body = file.left(100), .length = file.size()});
  EXPECT_EQ(searched().problem, UpdateProblem::downloadFailed);
  serve(path, {.body = file});
  EXPECT_EQ(searched().result, UpdateState::Result::ready);
}

TEST_F(UpdatesTest, aFileThatChangesBeforeTheInstallationIsRefused) {
  const auto updates = make();
  ASSERT_TRUE(checks(*updates));
  std::ofstream(downloads + "/" + name, std::ios::app) << "x";
  ASSERT_TRUE(installs(*updates));
  EXPECT_TRUE(opened.empty());
  EXPECT_FALSE(updates->isAvailable());
  EXPECT_EQ(updates->status().toStdString(), "The update is not genuine and was not installed.");
}

TEST_F(UpdatesTest, earlierDownloadsAreRemoved) {
  std::filesystem::create_directories(downloads);
  std::ofstream(downloads + "/spacemint_1.5_amd64.deb") << "old";
  EXPECT_EQ(searched().result, UpdateState::Result::ready);
  EXPECT_FALSE(std::filesystem::exists(downloads + "/spacemint_1.5_amd64.deb"));
}

TEST_F(UpdatesTest, aFolderThatIsNotOursIsNotUsed) {
  std::filesystem::create_directories(folder / "cache");
  std::filesystem::create_directories(folder / "elsewhere");
  std::filesystem::create_symlink(folder / "elsewhere", downloads);
  EXPECT_EQ(searched().problem, UpdateProblem::cannotStore);
  std::filesystem::remove(downloads);
  std::ofstream{downloads} << "a file";
  EXPECT_EQ(searched().problem, UpdateProblem::cannotStore);
  EXPECT_EQ(server.count(path), 0);
}

TEST_F(UpdatesTest, checksByItselfOnlyWhenSwitchedOn) {
  interval = 1ms;
  auto updates = make();
  updates->start();
  settle();
  EXPECT_EQ(server.count(feedPath), 0);
  EXPECT_FALSE(updates->installAutomatically());

  updates->setInstallAutomatically(true);
  ASSERT_TRUE(support::waitUntil([&] { return updates->isAvailable(); }));
  EXPECT_EQ(defaults.boolean(Updates::checkKey), true);
  settle();
  EXPECT_EQ(server.count(feedPath), 1);  // once a day
  day = "2026-03-02";
  ASSERT_TRUE(comes(feedPath, 2));
  ASSERT_TRUE(ends(*updates));

  // The download switched off, the daily look stays on.
  updates->setInstallAutomatically(false);
  EXPECT_EQ(defaults.boolean(Updates::checkKey), true);
  std::filesystem::remove_all(downloads);
  updates = make();
  day = "2026-03-03";
  updates->start();
  ASSERT_TRUE(support::waitUntil([&] { return !updates->status().isEmpty(); }));
  EXPECT_EQ(updates->status().toStdString(), "Version 2.0 is available.");
  EXPECT_FALSE(updates->isAvailable());
  EXPECT_FALSE(std::filesystem::exists(downloads));
}

TEST_F(UpdatesTest, aReadyUpdateIsStillReadyAfterARestart) {
  {
    const auto updates = make();
    ASSERT_TRUE(checks(*updates));
    ASSERT_TRUE(updates->isAvailable());
  }
  {
    const auto again = make();
    again->start();
    ASSERT_TRUE(support::waitUntil([&] { return again->isAvailable(); }));
    EXPECT_EQ(again->status().toStdString(), "Version 2.0 is ready to install.");
    EXPECT_EQ(server.count(feedPath), 1) << "nothing is asked again";
    ASSERT_TRUE(installs(*again));
    EXPECT_THAT(opened, ElementsAre("file://" + downloads + "/" + name));
  }
  // The stored words are no more trusted than the feed's, and the file is verified again.
  std::ofstream{downloads + "/" + name, std::ios::app} << "x";
  const auto tampered = make();
  tampered->start();
  ASSERT_TRUE(ends(*tampered));
  EXPECT_FALSE(tampered->isAvailable());
  EXPECT_EQ(defaults.strings(Updates::readyKey), std::nullopt);
  version = "2.0";
  defaults.set(Updates::readyKey, DefaultsArray{"2.0", "2.0", "https://a.example/x.deb", "1", ""});
  make()->start();
  EXPECT_EQ(defaults.strings(Updates::readyKey), std::nullopt) << "it is installed by now";
}

TEST_F(UpdatesTest, saysHowToInstallWhereNoProgramOpensPackages) {
  hasInstaller = false;
  const auto updates = make();
  ASSERT_TRUE(checks(*updates));
  ASSERT_TRUE(installs(*updates));
  EXPECT_EQ(updates->status().toStdString(),
            "No program opened the update. To install it, run in a terminal: sudo apt install '" + downloads +
                "/" + name + "'");
  EXPECT_TRUE(updates->isAvailable()) << "it can be tried again";
}

TEST_F(UpdatesTest, failuresThatNobodyAskedForAreSilent) {
  defaults.set(Updates::checkKey, true);
  serve(feedPath, {.status = 500});
  const auto updates = make();
  updates->start();
  ASSERT_TRUE(ends(*updates));
  EXPECT_EQ(updates->state().result, UpdateState::Result::failed);
  EXPECT_EQ(updates->status(), QString());
  EXPECT_EQ(defaults.string(Updates::checkedOnKey), std::nullopt);
}

TEST_F(UpdatesTest, canEndAtAnyMoment) {
  for (const UpdateState::Phase phase :
       {UpdateState::Phase::checking, UpdateState::Phase::downloading, UpdateState::Phase::verifying}) {
    auto updates = make();
    updates->checkNow();
    ASSERT_TRUE(support::waitUntil([&] { return updates->state().phase == phase || updates->canCheck(); }));
    EXPECT_EQ(updates->state().phase, phase);
    updates.reset();
    settle();
    std::filesystem::remove_all(downloads);
  }
}

}  // namespace
}  // namespace spacemint
