#pragma once

#include <QDBusConnection>
#include <QDBusVariant>
#include <QFileSystemWatcher>
#include <QObject>
#include <QString>
#include <QStringList>

#include <optional>

namespace spacemint {

/// Whether the panel of the desktop is dark. Plasma keeps this in its files, Xfce says it over the bus. Other
/// desktops say nothing, but several are dark unless the user changes them. Main thread only; never blocks
/// for the bus.
class PanelColour : public QObject {
  Q_OBJECT
 public:
  struct Places {
    /// The folder of the user's settings files.
    QString config;
    /// The folders with the system's data files, the most important first.
    QStringList data;

    static Places current();
  };

  /// `desktop`: the value of XDG_CURRENT_DESKTOP.
  PanelColour(const QDBusConnection& bus, const QString& desktop, Places places);

  /// Reads the colour and follows its changes from now on.
  void follow();

  /// Absent where the panel most likely looks as the windows do.
  std::optional<bool> isDark() const { return isDark_; }

 Q_SIGNALS:
  void changed();

 private Q_SLOTS:
  void xfceChanged(const QString& channel, const QString& property, const QDBusVariant& value);

 private:
  void set(std::optional<bool> isDark);
  void followPlasma();
  void followXfce();

  QDBusConnection bus_;
  QStringList desktops_;
  Places places_;
  QFileSystemWatcher files_;
  std::optional<bool> isDark_;
};

}  // namespace spacemint
