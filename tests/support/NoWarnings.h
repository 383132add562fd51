#pragma once

#include <QByteArray>
#include <QString>
#include <QtGlobal>
#include <gtest/gtest.h>

#include <cstdio>

namespace spacemint::support {

/// From now on a test fails when Qt, QML or QtDBus writes a warning while the test runs. The exception is
/// what the offscreen platform cannot do.
inline void failOnQtWarnings() {
  qInstallMessageHandler([](QtMsgType type, const QMessageLogContext& context, const QString& text) {
    const QByteArray line = qFormatLogMessage(type, context, text).toLocal8Bit();
    const bool isOfOffscreen = text.startsWith(QStringLiteral("This plugin does not support "));
    if (type == QtDebugMsg || type == QtInfoMsg || isOfOffscreen) {
      std::fprintf(stderr, "%s\n", line.constData());
    } else {
      ADD_FAILURE() << line.constData();
    }
  });
}

}  // namespace spacemint::support
