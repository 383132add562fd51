#include "Spacemint/model/VolumeWatch.h"

#include "core/base/Log.h"

namespace spacemint {

void VolumeWatch::start() {
  refresh();
  desktop_.clock.every(timing, this, [this] { refresh(); });
}

void VolumeWatch::refresh() {
  read().then(whileAlive(this, [this](const std::optional<VolumeStatus>& reading) { take(reading); }));
}

QFuture<std::optional<VolumeStatus>> VolumeWatch::read() {
  StartupVolume& volume = desktop_.volume;
  if (!volume.mayHang()) return QtFuture::makeReadyFuture(volume.status());
  return desktop_.tasks.run(Tasks::Priority::utility, [&volume] { return volume.status(); });
}

void VolumeWatch::take(const std::optional<VolumeStatus>& reading) {
  if (!reading) return log(LogLevel::info, "the free space of the volume could not be read");
  const bool isOther = status_ != reading;
  status_ = reading;
  if (isOther) Q_EMIT changed();
  Q_EMIT wasRead();
}

}  // namespace spacemint
