#pragma once

#include "Spacemint/desktop/Desktop.h"

#include <QObject>

#include <functional>
#include <optional>
#include <vector>

namespace spacemint {

/// The last readings of the home folder's volume and of all volumes. Main thread only.
class VolumeWatch : public QObject {
  Q_OBJECT
 public:
  static constexpr Clock::Repeating timing{.interval = std::chrono::seconds{60},
                                           .tolerance = std::chrono::seconds{20}};

  explicit VolumeWatch(const Desktop& desktop) : desktop_(desktop) {}

  /// Absent until the volume was read.
  const std::optional<VolumeStatus>& status() const { return status_; }

  /// All volumes as last read, the home folder's first; empty until they were read.
  const std::vector<VolumeReading>& volumes() const { return volumes_; }

  /// Reads the volumes now and then every `timing`.
  void start();
  /// Reads the volumes now; `status` and then `volumes` change when the readings are done.
  void refresh();
  /// Reads the volume without a change of `status`, and calls `then` with the reading, perhaps at once,
  /// unless `context` was destroyed before. The reading is absent when the volume cannot be read.
  void read(QObject* context, std::function<void(std::optional<VolumeStatus>)> then);

 Q_SIGNALS:
  /// The value differs from the last one.
  void changed();
  /// After every reading, also where the value is the same.
  void wasRead();
  /// All volumes were read; comes after `wasRead`.
  void volumesWereRead();

 private:
  void take(const std::optional<VolumeStatus>& reading);
  void readAll();

  Desktop desktop_;
  std::optional<VolumeStatus> status_;
  std::vector<VolumeReading> volumes_;
};

}  // namespace spacemint
