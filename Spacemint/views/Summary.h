#pragma once

#include "Spacemint/views/UiHost.h"

#include <QQmlEngine>

namespace spacemint {

/// Where on the bar the warning begins, from 0 to 1.
double warningFraction(const VolumeStatus& volume, std::int64_t thresholdGB);

/// The free space of the volume and its warning. Main thread only.
class Summary : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("a part of the interface's model")
  /// False until the volume was read.
  Q_PROPERTY(bool known READ isKnown NOTIFY changed)
  Q_PROPERTY(Level level READ level NOTIFY changed)
  Q_PROPERTY(QString free READ free NOTIFY changed)
  Q_PROPERTY(QString total READ total NOTIFY changed)
  Q_PROPERTY(double usedFraction READ usedFraction NOTIFY changed)
  Q_PROPERTY(double tickFraction READ tickFraction NOTIFY changed)
  Q_PROPERTY(QString tickHelp READ tickHelp NOTIFY changed)
  /// The sentence about a low level; empty if the level is ok.
  Q_PROPERTY(QString warning READ warning NOTIFY changed)
 public:
  enum class Level { ok, low, critical };
  Q_ENUM(Level)

  explicit Summary(const UiHost& host);

  bool isKnown() const { return volume().has_value(); }
  Level level() const { return static_cast<Level>(host_.model.warnings().level()); }
  QString free() const;
  QString total() const;
  double usedFraction() const { return volume() ? volume()->usedFraction() : 0; }
  double tickFraction() const;
  QString tickHelp() const;
  QString warning() const;

 Q_SIGNALS:
  void changed();

 private:
  const std::optional<VolumeStatus>& volume() const { return host_.model.volume().status(); }
  std::int64_t thresholdGB() const { return host_.model.prefs().warningThresholdGB(); }

  const UiHost& host_;
  Preferences::Subscription threshold_;
};

}  // namespace spacemint
