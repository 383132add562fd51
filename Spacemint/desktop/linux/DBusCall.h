#pragma once

#include <QDBusConnection>
#include <QDBusMessage>

#include <functional>

namespace spacemint {

/// Calls a D-Bus method without blocking. Later calls `answered` with the reply or the error, unless
/// `context` was destroyed meanwhile; without a bus it calls `answered` at once. Main thread only.
void callAsync(const QDBusConnection& bus, const QDBusMessage& call, QObject* context,
               std::function<void(const QDBusMessage& reply)> answered);

}  // namespace spacemint
