#pragma once

#include "Spacemint/desktop/Appearance.h"
#include "Spacemint/desktop/linux/Compositing.h"

#include <QDBusConnection>
#include <QDBusVariant>

#include <optional>

namespace spacemint {

/// The appearance as the settings portal tells it; where it does not, as the palette of the application is.
class PortalAppearance final : public Appearance {
  Q_OBJECT
 public:
  /// `desktop` is the name of the desktop as XDG_CURRENT_DESKTOP has it: some always have a dark status area.
  PortalAppearance(const QDBusConnection& bus, const QString& desktop);

  void follow() override;
  bool isDark() const override;
  bool isStatusAreaDark() const override { return hasDarkStatusArea_ || isDark(); }
  bool reducedMotion() const override { return reducedMotion_; }
  bool hasTransparency() const override { return isScreenComposited(); }

 private Q_SLOTS:
  void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);

 private:
  void ask(const QString& group, const QString& key);
  void take(const QString& group, const QString& key, const QVariant& value);

  QDBusConnection bus_;
  bool hasDarkStatusArea_;
  /// Absent while the portal has no preference.
  std::optional<bool> isDark_;
  bool reducedMotion_ = false;
};

}  // namespace spacemint
