#include "Spacemint/model/VolumeWatch.h"

#include "core/base/Log.h"

#include <utility>

namespace spacemint {

void VolumeWatch::start() {
  refresh();
  desktop_.clock.every(timing, this, [this] { refresh(); });
}

void VolumeWatch::refresh() {
  read(this, [this](const std::optional<VolumeStatus>& reading) { take(reading); });
}

void VolumeWatch::read(QObject* context, std::function<void(std::optional<VolumeStatus>)> then) {
  StartupVolume& volume = desktop_.volume;
  if (!volume.mayHang()) return then(volume.status());
  desktop_.tasks.run(
      Tasks::Priority::utility, context, [&volume] { return volume.status(); }, std::move(then));
}

void VolumeWatch::take(const std::optional<VolumeStatus>& reading) {
  if (reading) {
    const bool isOther = status_ != reading;
    status_ = reading;
    if (isOther) Q_EMIT changed();
    Q_EMIT wasRead();
  } else {
    log(LogLevel::info, "the free space of the volume could not be read");
  }
  readAll();
}

// On another thread, because a volume that hangs is waited for.
void VolumeWatch::readAll() {
  desktop_.tasks.run(
      Tasks::Priority::utility, this, [&volume = desktop_.volume] { return volume.all(); },
      [this](std::vector<VolumeReading> readings) {
        volumes_ = std::move(readings);
        Q_EMIT volumesWereRead();
      });
}

}  // namespace spacemint
