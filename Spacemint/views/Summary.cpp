#include "Spacemint/views/Summary.h"

#include "Spacemint/views/ShownText.h"
#include "core/base/ByteFormat.h"
#include "core/volume/SpaceLevel.h"
#include "core/wording/FindingText.h"

#include <algorithm>

namespace spacemint {

double warningFraction(const VolumeStatus& volume, std::int64_t thresholdGB) {
  if (volume.total < 1) return 0;
  const double warning = static_cast<double>(thresholdGB) * static_cast<double>(gigabyte);
  return std::clamp(1 - warning / static_cast<double>(volume.total), 0.0, 1.0);
}

Summary::Summary(const UiHost& host) : host_(host) {
  constexpr std::array<Setting, 1> followed{Setting::warningThresholdGB};
  threshold_ = host_.model.prefs().observe(followed, [this](Setting) { Q_EMIT changed(); });
  connect(&host_.model.volume(), &VolumeWatch::changed, this, &Summary::changed);
}

QString Summary::free() const {
  return volume() ? ShownText::plain(ByteFormat::string(volume()->free, host_.locale)) : QString{};
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
