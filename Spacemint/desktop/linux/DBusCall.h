#pragma once

#include <QDBusConnection>
#include <QDBusMessage>

#include <functional>

namespace spacemint {

/// Calls a method without waiting for it. `answered` gets the reply or the error, on the main thread, unless
/// `context` is gone by then; at once where there is no bus.
void callAsync(const QDBusConnection& bus, const QDBusMessage& call, QObject* context,
               std::function<void(const QDBusMessage& reply)> answered);

}  // namespace spacemint
