#include "Spacemint/desktop/linux/LauncherBadge.h"

#include <QDBusMessage>

namespace spacemint {

namespace {

const QString countKey = QStringLiteral("count");
const QString isVisibleKey = QStringLiteral("count-visible");

}  // namespace

void LauncherBadge::show(Bytes free) {
  constexpr Bytes gigabyte = 1'000'000'000;
  send({{countKey, QVariant::fromValue<qlonglong>(free / gigabyte)}, {isVisibleKey, true}});
}

void LauncherBadge::clear() {
  send({{countKey, QVariant::fromValue<qlonglong>(0)}, {isVisibleKey, false}});
}

void LauncherBadge::send(const QVariantMap& properties) {
  QDBusMessage update = QDBusMessage::createSignal(QStringLiteral("/app/spacemint/Spacemint"),
                                                   QStringLiteral("com.canonical.Unity.LauncherEntry"),
                                                   QStringLiteral("Update"));
  bus_.send(update << QStringLiteral("application://app.spacemint.Spacemint.desktop") << properties);
}

}  // namespace spacemint
