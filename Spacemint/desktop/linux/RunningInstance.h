#pragma once

#include <QDBusConnection>
#include <QObject>

namespace spacemint {

/// The one running application of a session, known on the bus by the application's identifier. Main thread
/// only.
///
/// The application with windows and the one without are the same one: whoever starts the first while the
/// second runs gets the first instead of it.
class RunningInstance : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")
 public:
  enum class Kind { windows, background };

  RunningInstance(const QDBusConnection& bus, Kind kind);
  ~RunningInstance() override;

  /// Whether this process is the one now; else another one is. Blocks for as long as the bus takes. Without a
  /// bus nobody can be found, and so this is the one.
  bool become();

  /// Has the other one show its interface.
  void showOther() const;

 public Q_SLOTS:
  // The desktop's interface of applications; its callers are others that were started, and launchers.
  Q_SCRIPTABLE void Activate(const QVariantMap& platformData);
  Q_SCRIPTABLE void Open(const QStringList& uris, const QVariantMap& platformData);
  Q_SCRIPTABLE void ActivateAction(const QString& name, const QVariantList& parameter,
                                   const QVariantMap& platformData);

 Q_SIGNALS:
  /// Somebody wants to see the interface.
  void activated();
  /// Another process is the one from now on, and this one has to go.
  void replaced();

 private:
  QDBusConnection bus_;
  Kind kind_;
};

}  // namespace spacemint
