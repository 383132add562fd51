#include "Spacemint/desktop/linux/PanelColour.h"

#include "Spacemint/desktop/linux/DBusCall.h"

#include <QColor>
#include <QSettings>
#include <QStandardPaths>

#include <algorithm>
#include <array>
#include <utility>

namespace spacemint {

namespace {

// Their panels are dark until the user changes them, also beside light windows. "wlroots" stands for the
// compositors whose panel is a program of its own.
constexpr std::array darkPanels{
    QLatin1String{"GNOME"}, QLatin1String{"Unity"},    QLatin1String{"XFCE"}, QLatin1String{"X-Cinnamon"},
    QLatin1String{"sway"},  QLatin1String{"Hyprland"}, QLatin1String{"niri"}, QLatin1String{"wlroots"}};

const QString xfceSettings = QStringLiteral("org.xfce.Xfconf");
const QString xfcePath = QStringLiteral("/org/xfce/Xfconf");
const QString xfcePanel = QStringLiteral("xfce4-panel");
const QString xfceIsDark = QStringLiteral("/panels/dark-mode");

// The ground of windows in a colour scheme; absent where the file does not name it.
std::optional<bool> isSchemeDark(const QString& file) {
  constexpr int middle = 128;
  const QStringList parts = QSettings{file, QSettings::IniFormat}
                                .value(QStringLiteral("Colors:Window/BackgroundNormal"))
                                .toStringList();
  if (parts.size() < 3) return std::nullopt;
  return qGray(parts[0].toInt(), parts[1].toInt(), parts[2].toInt()) < middle;
}

// A Plasma theme with colours of its own has them in its folder; the others follow the colours of windows.
std::optional<bool> isPlasmaDark(const PanelColour::Places& places) {
  const QString theme = QSettings{places.config + QStringLiteral("/plasmarc"), QSettings::IniFormat}
                            .value(QStringLiteral("Theme/name"), QStringLiteral("default"))
                            .toString();
  for (const QString& folder : places.data) {
    const QString colours =
        folder + QStringLiteral("/plasma/desktoptheme/") + theme + QStringLiteral("/colors");
    if (const auto isDark = isSchemeDark(colours)) return isDark;
  }
  return isSchemeDark(places.config + QStringLiteral("/kdeglobals"));
}

}  // namespace

PanelColour::Places PanelColour::Places::current() {
  return {.config = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation),
          .data = QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation)};
}

PanelColour::PanelColour(const QDBusConnection& bus, const QString& desktop, Places places)
    : bus_(bus),
      desktops_(desktop.split(u':')),
      places_(std::move(places)) {
  const bool isUsuallyDark =
      std::ranges::any_of(darkPanels, [this](const QLatin1String& name) { return desktops_.contains(name); });
  if (isUsuallyDark) isDark_ = true;
}

void PanelColour::follow() {
  if (desktops_.contains(QStringLiteral("KDE"))) followPlasma();
  if (desktops_.contains(QStringLiteral("XFCE"))) followXfce();
}

// Watches the folder, because Plasma replaces its files.
void PanelColour::followPlasma() {
  files_.addPath(places_.config);
  connect(&files_, &QFileSystemWatcher::directoryChanged, this, [this] { set(isPlasmaDark(places_)); });
  set(isPlasmaDark(places_));
}

void PanelColour::followXfce() {
  qRegisterMetaType<QDBusVariant>("QDBusVariant");  // without it, connect fails
  bus_.connect(xfceSettings, xfcePath, xfceSettings, QStringLiteral("PropertyChanged"), this,
               SLOT(xfceChanged(QString, QString, QDBusVariant)));
  QDBusMessage call =
      QDBusMessage::createMethodCall(xfceSettings, xfcePath, xfceSettings, QStringLiteral("GetProperty"));
  callAsync(bus_, call << xfcePanel << xfceIsDark, this, [this](const QDBusMessage& reply) {
    if (reply.type() != QDBusMessage::ReplyMessage) return;
    xfceChanged(xfcePanel, xfceIsDark, reply.arguments().value(0).value<QDBusVariant>());
  });
}

void PanelColour::xfceChanged(const QString& channel, const QString& property, const QDBusVariant& value) {
  if (channel == xfcePanel && property == xfceIsDark) set(value.variant().toBool());
}

void PanelColour::set(std::optional<bool> isDark) {
  if (std::exchange(isDark_, isDark) != isDark) Q_EMIT changed();
}

}  // namespace spacemint
