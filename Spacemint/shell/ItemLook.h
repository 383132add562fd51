#pragma once

#include "core/volume/Supply.h"
#include "core/volume/VolumeStatus.h"

#include <QColor>
#include <QImage>
#include <QList>
#include <QString>

#include <algorithm>
#include <optional>
#include <string>

namespace spacemint {

/// What decides the look of the status item.
struct StatusFacts {
  /// Of the free space.
  SpaceLevel level = SpaceLevel::ok;
  /// Absent while the volume cannot be read.
  std::optional<VolumeStatus> volume;
  /// The user wants to see the free space. It is shown in any case when space is low.
  bool showsFreeSpace = false;
  /// A locale name of ICU.
  std::string locale;
  /// The volume's files, if their number runs low.
  std::optional<Supply> lowFiles = {};

  /// The worse one of the space and the files.
  SpaceLevel worstLevel() const { return lowFiles ? std::max(level, lowFiles->level()) : level; }

  bool operator==(const StatusFacts&) const = default;
};

/// The texts of the status item.
struct StatusText {
  /// The free space, or empty. It begins with a space, which separates it from the icon.
  std::string title;
  std::string toolTip;

  bool operator==(const StatusText&) const = default;
};

/// Any thread.
StatusText statusText(const StatusFacts& facts);

/// The free space, in bytes, for the mark on the application's icon in a dock; absent if there is to be no
/// mark. Any thread.
std::optional<Bytes> badgeOf(const StatusFacts& facts);

/// Images for the status item, in the sizes that status areas use. An application cannot know the colour of
/// the status area. So a light colour has a dark halo and a dark colour a light halo, and the image can be
/// read on any ground. Main thread only, with a QGuiApplication.
namespace StatusIcon {

/// The logo in one colour.
QList<QImage> logo(const QColor& colour);

/// The free space instead of the logo, for status areas that show no text beside an icon: "17.3" above "GB".
QList<QImage> figure(const QString& text, const QColor& colour);

}  // namespace StatusIcon

}  // namespace spacemint
