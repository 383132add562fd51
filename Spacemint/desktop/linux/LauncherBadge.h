#pragma once

#include "Spacemint/desktop/Badge.h"

#include <QDBusConnection>
#include <QVariantMap>

namespace spacemint {

/// The badge by the signal com.canonical.Unity.LauncherEntry, which several docks and task bars read. It is a
/// whole number there: gigabytes.
class LauncherBadge final : public Badge {
 public:
  explicit LauncherBadge(const QDBusConnection& bus) : bus_(bus) {}

  void show(Bytes free) override;
  void clear() override;

 private:
  void send(const QVariantMap& properties);

  QDBusConnection bus_;
};

}  // namespace spacemint
