#include "Spacemint/views/Summary.h"

#include "Spacemint/views/SummaryText.h"
#include "core/base/ByteFormat.h"
#include "core/wording/FindingText.h"

namespace spacemint {

Summary::Summary(const UiHost& host) : host_(host) {
  constexpr std::array<Setting, 1> followed{Setting::warningThresholdGB};
  threshold_ = host_.model.prefs().observe(followed, [this](Setting) { Q_EMIT changed(); });
  connect(&host_.model.volume(), &VolumeWatch::changed, this, &Summary::changed);
}

QString Summary::free() const {
  return volume() ? QString::fromStdString(ByteFormat::string(volume()->free, host_.locale)) : QString{};
}

QString Summary::total() const {
  return volume() ? QString::fromStdString(SummaryText::total(*volume(), host_.locale)) : QString{};
}

double Summary::tickFraction() const {
  return volume() ? SummaryText::tickFraction(*volume(), thresholdGB()) : 0;
}

QString Summary::tickHelp() const {
  return QString::fromStdString(SummaryText::tickHelp(thresholdGB()));
}

QString Summary::warning() const {
  return QString::fromStdString(FindingText::warning(host_.model.level(), thresholdGB()));
}

}  // namespace spacemint
