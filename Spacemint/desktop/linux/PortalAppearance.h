#pragma once

#include "Spacemint/desktop/Appearance.h"
#include "Spacemint/desktop/linux/PanelColour.h"
#include "Spacemint/desktop/linux/X11.h"

#include <QDBusConnection>
#include <QDBusVariant>

#include <optional>

namespace spacemint {

/// The appearance from the settings portal (org.freedesktop.portal.Settings). Without an answer it follows
/// the palette of the application. Main thread only; never blocks for the portal.
class PortalAppearance final : public Appearance {
  Q_OBJECT
 public:
  /// `desktop`: the value of XDG_CURRENT_DESKTOP, which decides how the colour of the panel is found.
  PortalAppearance(const QDBusConnection& bus, const QString& desktop);

  void follow() override;
  bool isDark() const override;
  bool isStatusAreaDark() const override { return panel_.isDark().value_or(isDark()); }
  bool reducedMotion() const override { return reducedMotion_; }
  bool hasTransparency() const override { return isScreenComposited(); }

 private Q_SLOTS:
  void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);

 private:
  void ask(const QString& group, const QString& key);
  void take(const QString& group, const QString& key, const QVariant& value);

  QDBusConnection bus_;
  PanelColour panel_;
  /// Absent until the portal has answered, and if it has no preference.
  std::optional<bool> isDark_;
  bool reducedMotion_ = false;
};

}  // namespace spacemint
