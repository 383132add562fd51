#include "Spacemint/desktop/linux/PortalAppearance.h"

#include "Spacemint/desktop/linux/DBusCall.h"
#include "core/base/Log.h"

#include <QGuiApplication>
#include <QPalette>

#include <utility>

namespace spacemint {

namespace {

const QString portalName = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString settingsInterface = QStringLiteral("org.freedesktop.portal.Settings");

const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString colourScheme = QStringLiteral("color-scheme");
// Old portals do not know "reduced-motion", but pass on this setting of GNOME.
const QString reduced = QStringLiteral("reduced-motion");
const QString gnome = QStringLiteral("org.gnome.desktop.interface");
const QString animations = QStringLiteral("enable-animations");

// Some portals wrap the value in a second variant.
QVariant unwrapped(QVariant value) {
  while (value.metaType() == QMetaType::fromType<QDBusVariant>()) {
    value = value.value<QDBusVariant>().variant();
  }
  return value;
}

std::optional<bool> isDarkScheme(uint scheme) {
  constexpr uint dark = 1;
  constexpr uint light = 2;
  if (scheme == dark) return true;
  if (scheme == light) return false;
  return std::nullopt;
}

bool isPaletteDark() {
  constexpr int middle = 128;
  return qGuiApp && QGuiApplication::palette().color(QPalette::Window).lightness() < middle;
}

}  // namespace

PortalAppearance::PortalAppearance(const QDBusConnection& bus, const QString& desktop)
    : bus_(bus),
      panel_(bus, desktop, PanelColour::Places::current()) {
  connect(&panel_, &PanelColour::changed, this, &Appearance::changed);
}

void PortalAppearance::follow() {
  qRegisterMetaType<QDBusVariant>("QDBusVariant");  // without it, connect fails
  bus_.connect(portalName, portalPath, settingsInterface, QStringLiteral("SettingChanged"), this,
               SLOT(settingChanged(QString, QString, QDBusVariant)));
  ask(appearance, colourScheme);
  ask(appearance, reduced);
  ask(gnome, animations);
  panel_.follow();
}

bool PortalAppearance::isDark() const {
  return isDark_.value_or(isPaletteDark());
}

void PortalAppearance::ask(const QString& group, const QString& key) {
  QDBusMessage call =
      QDBusMessage::createMethodCall(portalName, portalPath, settingsInterface, QStringLiteral("Read"));
  callAsync(bus_, call << group << key, this, [this, group, key](const QDBusMessage& reply) {
    if (reply.type() == QDBusMessage::ReplyMessage) return take(group, key, reply.arguments().value(0));
    log(LogLevel::debug, "the settings portal does not tell " + (group + u' ' + key).toStdString() + ": " +
                             reply.errorMessage().toStdString());
  });
}

void PortalAppearance::settingChanged(const QString& group, const QString& key, const QDBusVariant& value) {
  take(group, key, value.variant());
}

void PortalAppearance::take(const QString& group, const QString& key, const QVariant& value) {
  const QVariant plain = unwrapped(value);
  const bool wasDark = isDark();
  const bool wasReduced = reducedMotion_;
  if (group == appearance && key == colourScheme) isDark_ = isDarkScheme(plain.toUInt());
  if (group == appearance && key == reduced) reducedMotion_ = plain.toUInt() == 1;
  if (group == gnome && key == animations) reducedMotion_ = !plain.toBool();
  if (isDark() != wasDark || reducedMotion_ != wasReduced) Q_EMIT changed();
}

}  // namespace spacemint
