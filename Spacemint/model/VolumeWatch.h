#pragma once

#include "Spacemint/desktop/Desktop.h"

#include <QObject>

#include <optional>

namespace spacemint {

/// The last reading of the volume whose free space is watched. Main thread only.
class VolumeWatch : public QObject {
  Q_OBJECT
 public:
  static constexpr Clock::Repeating timing{.interval = std::chrono::seconds{60},
                                           .tolerance = std::chrono::seconds{20}};

  explicit VolumeWatch(const Desktop& desktop) : desktop_(desktop) {}

  /// Absent until the volume was read.
  const std::optional<VolumeStatus>& status() const { return status_; }

  /// Reads it now and then.
  void start();
  /// Reads it now.
  void refresh();
  /// How it is at this moment, without keeping that.
  QFuture<std::optional<VolumeStatus>> read();

 Q_SIGNALS:
  /// The reading is another than before.
  void changed();
  /// It was read, and may be as it was.
  void wasRead();

 private:
  void take(const std::optional<VolumeStatus>& reading);

  Desktop desktop_;
  std::optional<VolumeStatus> status_;
};

}  // namespace spacemint
