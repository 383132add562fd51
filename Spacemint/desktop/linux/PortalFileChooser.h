#pragma once

#include "Spacemint/desktop/Desktop.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QVariantMap>

#include <functional>
#include <string>
#include <utility>

namespace spacemint {

/// Lets the user choose a file in the desktop's own dialog (org.freedesktop.portal.FileChooser). Main thread
/// only; never blocks.
class PortalFileChooser : public QObject {
  Q_OBJECT
 public:
  explicit PortalFileChooser(QDBusConnection bus) : bus_(std::move(bus)) {}

  /// As `Opener::chooseFile`.
  void choose(const std::string& title, Opener::Chosen chosen, std::function<void()> failed);

 private Q_SLOTS:
  void responded(uint code, const QVariantMap& results, const QDBusMessage& signal);

 private:
  void follow(const QString& path);
  void unfollow();

  QDBusConnection bus_;
  /// The object path of the dialog that is open; empty if none is.
  QString request_;
  Opener::Chosen chosen_;
  int dialogs_ = 0;
};

}  // namespace spacemint
