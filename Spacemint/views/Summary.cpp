#include "Spacemint/views/Summary.h"

#include "Spacemint/views/ShownText.h"
#include "core/base/ByteFormat.h"
#include "core/volume/SpaceLevel.h"
#include "core/wording/FindingText.h"

#include <algorithm>
#include <array>
#include <functional>

namespace spacemint {

namespace {

const QString sizePlace = QStringLiteral("{size}");
const QString freeSentence = QStringLiteral("{size} free");

}  // namespace

double warningFraction(const VolumeStatus& volume, std::int64_t thresholdGB) {
  if (volume.total < 1) return 0;
  const double warning = static_cast<double>(thresholdGB) * static_cast<double>(gigabyte);
  return std::clamp(1 - warning / static_cast<double>(volume.total), 0.0, 1.0);
}

std::vector<VolumeLine> volumeLines(const std::vector<VolumeReading>& readings, std::int64_t thresholdGB,
                                    const std::string& locale) {
  std::vector<VolumeLine> lines;
  for (const auto& [volume, space] : readings) {
    if (volume.holdsHome || !volume.canFillUp()) continue;
    VolumeLine line{.name = ShownText::sentence(volume.name), .free = QStringLiteral("no answer")};
    if (space) {
      const Bytes usable = saturatingAdd(space->used, space->free);
      const auto level = mayWarnAbout({volume, space})
                             ? volumeLimits(usable, thresholdGB).levelOf(space->free)
                             : SpaceLevel::ok;
      line.usedFraction = usable > 0 ? static_cast<double>(space->used) / static_cast<double>(usable) : 0;
      line.free = ShownText::plain(ByteFormat::string(space->free, locale));
      line.total = ShownText::plain("of " + ByteFormat::string(space->total, locale));
      line.level = static_cast<int>(level);
    }
    constexpr std::array<const char*, 3> words{"", ", low", ", critical"};
    line.spoken = line.name + QStringLiteral(", ") + line.free +
                  (space ? QStringLiteral(" free ") + line.total : QString{}) +
                  QLatin1String{words.at(static_cast<std::size_t>(line.level))};
    lines.push_back(std::move(line));
  }
  std::ranges::stable_sort(lines, std::greater{}, &VolumeLine::usedFraction);
  return lines;
}

Summary::Summary(const UiHost& host) : host_(host) {
  constexpr std::array<Setting, 1> followed{Setting::warningThresholdGB};
  threshold_ = host_.model.prefs().observe(followed, [this](Setting) {
    Q_EMIT changed();
    updateVolumes();
  });
  connect(&host_.model.volume(), &VolumeWatch::changed, this, &Summary::changed);
  connect(&host_.model.volume(), &VolumeWatch::volumesWereRead, this, &Summary::updateVolumes);
  updateVolumes();
}

void Summary::updateVolumes() {
  auto lines = volumeLines(host_.model.volume().volumes(), thresholdGB(), host_.locale);
  if (lines == lines_) return;
  lines_ = std::move(lines);
  volumes_.clear();
  for (const VolumeLine& line : lines_) volumes_.append(QVariant::fromValue(line));
  Q_EMIT volumesChanged();
}

QString Summary::free() const {
  return volume() ? ShownText::plain(ByteFormat::string(volume()->free, host_.locale)) : QString{};
}

QString Summary::beforeFree() {
  return freeSentence.section(sizePlace, 0, 0);
}

QString Summary::afterFree() {
  return freeSentence.section(sizePlace, 1);
}

QString Summary::spoken() const {
  return volume() ? free() + QStringLiteral(" free ") + total() : QString{};
}

QString Summary::total() const {
  return volume() ? ShownText::plain("of " + ByteFormat::string(volume()->total, host_.locale)) : QString{};
}

double Summary::tickFraction() const {
  return volume() ? warningFraction(*volume(), thresholdGB()) : 0;
}

QString Summary::tickHelp() const {
  return ShownText::sentence("Warning below " + std::to_string(thresholdGB()) + " GB free");
}

QString Summary::warning() const {
  return ShownText::sentence(FindingText::warning(host_.model.warnings().level(), thresholdGB()));
}

}  // namespace spacemint
