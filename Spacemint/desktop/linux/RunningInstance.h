#pragma once

#include "Spacemint/desktop/LaunchAction.h"

#include <QDBusConnection>
#include <QObject>

#include <string>

namespace spacemint {

/// Ensures that only one instance of the application runs in a session. The instance owns the application's
/// identifier as a name on the session bus. Main thread only.
///
/// An instance with windows replaces a background instance.
class RunningInstance : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")
 public:
  enum class Kind { windows, background };

  RunningInstance(QDBusConnection bus, Kind kind);
  ~RunningInstance() override;

  /// Whether this process is the instance from now on; false if another process stays the instance. True
  /// without a bus, because other processes cannot be found then. Blocks until the bus answers.
  bool become();

  /// Asks the other instance for `action`, or to open `path` if that is not empty, and hands it the
  /// activation token with which the launcher started this process. Blocks until it answers.
  void askOther(LaunchAction action, const std::string& path) const;

 public Q_SLOTS:
  // The D-Bus interface org.freedesktop.Application. Launchers and other processes of this program call it.
  Q_SCRIPTABLE void Activate(const QVariantMap& platformData);
  Q_SCRIPTABLE void Open(const QStringList& uris, const QVariantMap& platformData);
  Q_SCRIPTABLE void ActivateAction(const QString& name, const QVariantList& parameter,
                                   const QVariantMap& platformData);

 Q_SIGNALS:
  /// Another process asks for this.
  void asked(spacemint::LaunchAction action);
  /// Another process asks to open a folder or a file, by its absolute path.
  void askedFor(const std::string& path);
  /// Another process is the instance now. This one must end.
  void replaced();

 private:
  void ask(LaunchAction action, const QVariantMap& platformData);

  QDBusConnection bus_;
  Kind kind_;
};

}  // namespace spacemint
