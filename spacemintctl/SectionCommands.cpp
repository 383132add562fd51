#include "spacemintctl/SectionCommands.h"

#include "core/base/ByteFormat.h"
#include "core/base/RelativeTime.h"
#include "core/base/Translation.h"
#include "core/host/AtomicFile.h"
#include "core/host/UserFolders.h"
#include "core/host/VolumeInfo.h"
#include "core/settings/Settings.h"
#include "core/volume/VolumeStatus.h"
#include "core/wording/FindingText.h"
#include "core/wording/PictureText.h"
#include "spacemintctl/Console.h"
#include "spacemintctl/ReportPicture.h"
#include "spacemintctl/SettingsCommand.h"
#include "spacemintctl/StoredScan.h"

#include <utility>

namespace spacemint::ctl {

namespace {

// The input for a section. Loads no scan unless `looksAtScan`.
std::expected<Scene, Error> sceneFor(const SectionOptions& options, bool looksAtScan) {
  std::expected<Snapshot, Error> snapshot;
  if (looksAtScan) snapshot = storedScan(options.scan);
  if (!snapshot) return std::unexpected(std::move(snapshot).error());
  return Scene{.snapshot = std::move(*snapshot),
               .wording = {.home = UserFolders::home(), .locale = userLocale()},
               .environment = UserFolders::environment,
               .now = currentTime(),
               .since = options.since,
               .isNewest = options.scan.empty(),
               .top = options.top};
}

std::expected<Findings, Error> findingsOf(const Section& section, Scene& scene,
                                          const SectionOptions& options) {
  scene.minimum = options.minimum.value_or(section.minimum.value_or(0));
  return section.find(scene);
}

int fail(const Error& error) {
  complain(printable(error.message));
  return failed;
}

std::string volumeText(const VolumeStatus& volume, std::int64_t thresholdGB, const Scene& scene) {
  const std::string text =
      i18n("{free} free of {total} on {volume}", {{"free", shownSize(volume.free, scene)},
                                                  {"total", shownSize(volume.total, scene)},
                                                  {"volume", printable(volume.name)}}) +
      '\n';
  const std::string warning = FindingText::warning(spaceLevel(volume.free, thresholdGB), thresholdGB);
  return warning.empty() ? text : text + warning + '\n';
}

std::string scanText(const Scene& scene) {
  const std::string& locale = scene.wording.locale;
  const Snapshot& scan = scene.snapshot;
  return i18np("Scanned {age}: {path}, {size} in {count} file",
               "Scanned {age}: {path}, {size} in {count} files", scan.fileCount,
               {{"age", RelativeTime::string(scan.date, scene.now, locale)},
                {"path", shownPath(scan.rootPath(), scene)},
                {"size", shownSize(scan.root.size, scene)},
                {"count", groupedNumber(scan.fileCount, locale)}}) +
         '\n';
}

const char* name(SpaceLevel level) {
  constexpr const char* names[] = {"ok", "low", "critical"};
  return names[std::to_underlying(level)];
}

// Adds the current free space (not that at the time of the scan), the warning level and the scan's facts.
void addHead(Findings& report, const Scene& scene) {
  const auto volume = VolumeStatus::current(startupVolume());
  const std::int64_t thresholdGB = storedSettings().thresholdGB;
  if (volume) {
    report.text += volumeText(*volume, thresholdGB, scene);
    report.json["volume"] = {
        {"name", jsonText(volume->name)}, {"total", volume->total}, {"free", volume->free}};
    report.json["level"] = name(spaceLevel(volume->free, thresholdGB));
  }
  report.text += scanText(scene);
  report.json["scan"] = {{"date", universalTime(scene.snapshot.date)},
                         {"root", jsonText(scene.snapshot.rootPath())},
                         {"size", scene.snapshot.root.size},
                         {"fileCount", scene.snapshot.fileCount}};
}

int writePicture(const Scene& scene, const std::string& path) {
  const auto baseline = baselineOf(scene);
  if (!baseline) return fail(baseline.error());
  const auto& earlier = *baseline;
  const auto changes = earlier ? std::optional{changeTree(*earlier, scene.snapshot)} : std::nullopt;
  const std::string legend =
      earlier ? PictureText::cameSince(localTime(earlier->date)) : PictureText::nothingCame();
  const auto written = writeFileAtomically(
      path, pictureSvg(scene.snapshot, changes ? &*changes : nullptr, legend, scene.wording.locale));
  return written ? done : fail(written.error());
}

}  // namespace

int runSection(const Section& section, const SectionOptions& options) {
  auto scene = sceneFor(options, section.looksAtScan);
  if (!scene) return fail(scene.error());
  const auto findings = findingsOf(section, *scene, options);
  if (!findings) return fail(findings.error());
  return print(options.json ? findings->json.dump() + '\n' : findings->text) ? done : failed;
}

int runReport(const SectionOptions& options) {
  auto scene = sceneFor(options, true);
  if (!scene) return fail(scene.error());
  if (!options.svg.empty()) return writePicture(*scene, options.svg);
  Findings report{.text = "", .json = Json::object()};
  addHead(report, *scene);
  for (const Section& section : sections()) {
    auto findings = findingsOf(section, *scene, options);
    if (!findings) return fail(findings.error());
    if (findings->isWorthReporting) report.text += "\n" + i18n(section.title) + '\n' + findings->text;
    report.json[section.command] = std::move(findings->json);
  }
  return print(options.json ? report.json.dump() + '\n' : report.text) ? done : failed;
}

}  // namespace spacemint::ctl
