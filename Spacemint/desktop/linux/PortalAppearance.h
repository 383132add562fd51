#pragma once

#include "Spacemint/desktop/Appearance.h"

#include <QDBusConnection>
#include <QDBusVariant>

#include <optional>

namespace spacemint {

/// The appearance as the settings portal tells it; where it does not, as the palette of the application is.
class PortalAppearance final : public Appearance {
  Q_OBJECT
 public:
  explicit PortalAppearance(const QDBusConnection& bus) : bus_(bus) {}

  void follow() override;
  bool isDark() const override;
  bool reducedMotion() const override { return reducedMotion_; }

 private Q_SLOTS:
  void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);

 private:
  void ask(const QString& group, const QString& key);
  void take(const QString& group, const QString& key, const QVariant& value);

  QDBusConnection bus_;
  /// Absent while the portal has no preference.
  std::optional<bool> isDark_;
  bool reducedMotion_ = false;
};

}  // namespace spacemint
