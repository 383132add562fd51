#pragma once

#include "Spacemint/desktop/Desktop.h"

#include <QObject>

#include <functional>
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

  /// Reads the volume now and then every `timing`.
  void start();
  /// Reads the volume now; `status` changes when the reading is done.
  void refresh();
  /// Reads the volume without a change of `status`, and calls `then` with the reading, perhaps at once,
  /// unless `context` was destroyed before. The reading is absent when the volume cannot be read.
  void read(QObject* context, std::function<void(std::optional<VolumeStatus>)> then);

 Q_SIGNALS:
  /// The value differs from the last one.
  void changed();
  /// After every reading, also where the value is the same.
  void wasRead();

 private:
  void take(const std::optional<VolumeStatus>& reading);

  Desktop desktop_;
  std::optional<VolumeStatus> status_;
};

}  // namespace spacemint
