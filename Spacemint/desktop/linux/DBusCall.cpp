#include "Spacemint/desktop/linux/DBusCall.h"

#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>

#include <utility>

namespace spacemint {

void callAsync(const QDBusConnection& bus, const QDBusMessage& call, QObject* context,
               std::function<void(const QDBusMessage& reply)> answered) {
  const QDBusPendingCall pending = bus.asyncCall(call);
  // Without a connection the call has failed already, and a watcher would never signal that.
  if (pending.isFinished()) return answered(pending.reply());
  auto* watcher = new QDBusPendingCallWatcher(pending, context);
  QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context,
                   [answered = std::move(answered)](QDBusPendingCallWatcher* finished) {
                     finished->deleteLater();
                     answered(finished->reply());
                   });
}

}  // namespace spacemint
