#pragma once

#include "Spacemint/views/UiHost.h"

#include <QQmlEngine>
#include <QVariantList>

#include <vector>

namespace spacemint {

/// Where on the bar the warning begins, from 0 to 1.
double warningFraction(const VolumeStatus& volume, std::int64_t thresholdGB);

/// A volume besides the home folder's, as a line of the summary.
struct VolumeLine {
  Q_GADGET
  Q_PROPERTY(QString name MEMBER name)
  Q_PROPERTY(double usedFraction MEMBER usedFraction)
  Q_PROPERTY(QString free MEMBER free)
  Q_PROPERTY(QString total MEMBER total)
  Q_PROPERTY(int level MEMBER level)
  Q_PROPERTY(int filesLevel MEMBER filesLevel)
  Q_PROPERTY(QString remark MEMBER remark)
  Q_PROPERTY(QString spoken MEMBER spoken)
 public:
  QString name;
  double usedFraction = 0;
  QString free;
  QString total;
  /// A `Summary::Level` of the space, and one of the number of files.
  int level = 0;
  int filesLevel = 0;
  /// That files run low; else empty.
  QString remark;
  /// The line as a sentence: "backup, 6.2 GB free of 112 GB, low".
  QString spoken;

  bool operator==(const VolumeLine&) const = default;
};

/// The volumes besides the home folder's that can fill up, the fullest first. Pure.
std::vector<VolumeLine> volumeLines(const std::vector<VolumeReading>& readings, std::int64_t thresholdGB,
                                    const std::string& locale);

/// The free space of the volume and its warning. Main thread only.
class Summary : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("a part of the interface's model")
  /// False until the volume was read.
  Q_PROPERTY(bool known READ isKnown NOTIFY changed)
  Q_PROPERTY(Level level READ level NOTIFY changed)
  /// The free space, and what stands before and after it in the sentence that says so.
  Q_PROPERTY(QString free READ free NOTIFY changed)
  Q_PROPERTY(QString beforeFree READ beforeFree CONSTANT)
  Q_PROPERTY(QString afterFree READ afterFree CONSTANT)
  Q_PROPERTY(QString total READ total NOTIFY changed)
  /// "100 GB free of 500 GB"
  Q_PROPERTY(QString spoken READ spoken NOTIFY changed)
  Q_PROPERTY(double usedFraction READ usedFraction NOTIFY changed)
  Q_PROPERTY(double tickFraction READ tickFraction NOTIFY changed)
  Q_PROPERTY(QString tickHelp READ tickHelp NOTIFY changed)
  /// The sentence about a low level, of the space or of the number of files; empty if both are ok.
  Q_PROPERTY(QString warning READ warning NOTIFY changed)
  Q_PROPERTY(Level warningLevel READ warningLevel NOTIFY changed)
  /// A list of `VolumeLine`.
  Q_PROPERTY(QVariantList volumes READ volumes NOTIFY volumesChanged)
 public:
  enum class Level { ok, low, critical };
  Q_ENUM(Level)

  explicit Summary(const UiHost& host);

  bool isKnown() const { return volume().has_value(); }
  Level level() const { return static_cast<Level>(host_.model.warnings().level()); }
  QString free() const;
  static QString beforeFree();
  static QString afterFree();
  QString total() const;
  QString spoken() const;
  double usedFraction() const { return volume() ? volume()->usedFraction() : 0; }
  double tickFraction() const;
  QString tickHelp() const;
  QString warning() const;
  Level warningLevel() const;
  const QVariantList& volumes() const { return volumes_; }

 Q_SIGNALS:
  void changed();
  void volumesChanged();

 private:
  const std::optional<VolumeStatus>& volume() const { return host_.model.volume().status(); }
  void updateVolumes();
  std::int64_t thresholdGB() const { return host_.model.prefs().warningThresholdGB(); }

  const UiHost& host_;
  Preferences::Subscription threshold_;
  std::optional<Supply> lowFiles_;
  std::vector<VolumeLine> lines_;
  QVariantList volumes_;
};

}  // namespace spacemint
