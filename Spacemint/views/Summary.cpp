#include "Spacemint/views/Summary.h"

#include "Spacemint/views/ShownText.h"
#include "Spacemint/views/Words.h"
#include "core/base/ByteFormat.h"
#include "core/base/TextList.h"
#include "core/base/Translation.h"
#include "core/wording/FindingText.h"
#include "core/wording/SupplyText.h"

#include <algorithm>
#include <array>
#include <functional>

namespace spacemint {

namespace {

// The sentence in which the size stands larger than the words around it.
QStringList aroundFree() {
  return ShownText::plain(i18n("{size} free")).split(QStringLiteral("{size}"));
}

QString ofTotal(Bytes total, const std::string& locale) {
  return ShownText::plain(i18nc("20 GB free", "of {total}", {{"total", ByteFormat::string(total, locale)}}));
}

QString freeOf(Bytes free, Bytes total, const std::string& locale) {
  return ShownText::plain(i18n("{free} free of {total}", {{"free", ByteFormat::string(free, locale)},
                                                          {"total", ByteFormat::string(total, locale)}}));
}

QString wordOf(SpaceLevel level) {
  if (level == SpaceLevel::ok) return {};
  return ShownText::plain(level == SpaceLevel::low ? i18nc("free space", "low")
                                                   : i18nc("free space", "critical"));
}

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
    VolumeLine line{.name = ShownText::sentence(volume.name),
                    .free = ShownText::plain(i18nc("a disk", "no answer"))};
    QString spoken = line.free;
    auto level = SpaceLevel::ok;
    for (const Supply& supply : suppliesOf({volume, space}, thresholdGB)) {
      if (supply.resource == Resource::space) {
        level = supply.level();
      } else if (supply.level() != SpaceLevel::ok) {
        line.filesLevel = static_cast<int>(supply.level());
        line.remark = ShownText::sentence(SupplyText::title(supply));
      }
    }
    if (space) {
      const Bytes usable = saturatingAdd(space->used, space->free);
      line.usedFraction = usable > 0 ? static_cast<double>(space->used) / static_cast<double>(usable) : 0;
      line.free = ShownText::plain(ByteFormat::string(space->free, locale));
      line.total = ofTotal(space->total, locale);
      spoken = freeOf(space->free, space->total, locale);
      line.level = static_cast<int>(level);
    }
    line.spoken = Words::spoken({line.name, spoken, wordOf(level), line.remark});
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
  if (const auto low = host_.model.warnings().lowFiles(); low != lowFiles_) {
    lowFiles_ = low;
    Q_EMIT changed();
  }
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
  return aroundFree().first();
}

QString Summary::afterFree() {
  return aroundFree().last();
}

QString Summary::spoken() const {
  return volume() ? freeOf(volume()->free, volume()->total, host_.locale) : QString{};
}

QString Summary::total() const {
  return volume() ? ofTotal(volume()->total, host_.locale) : QString{};
}

double Summary::tickFraction() const {
  return volume() ? warningFraction(*volume(), thresholdGB()) : 0;
}

QString Summary::tickHelp() const {
  return ShownText::sentence(
      i18n("Warning below {number} GB free", {{"number", groupedNumber(thresholdGB(), host_.locale)}}));
}

Summary::Level Summary::warningLevel() const {
  return lowFiles_ ? std::max(level(), static_cast<Level>(lowFiles_->level())) : level();
}

QString Summary::warning() const {
  return ShownText::sentence(sentences({FindingText::warning(host_.model.warnings().level(), thresholdGB()),
                                        lowFiles_ ? SupplyText::sentence(*lowFiles_, host_.locale) : ""}));
}

}  // namespace spacemint
