// The main function of tests with an event loop: of those that show windows, on a screen that nobody sees,
// where SPACEMINT_TEST_WINDOWS is defined.

#include <gmock/gmock.h>

#include <cstdio>

#ifdef SPACEMINT_TEST_WINDOWS
#include <QGuiApplication>
using Application = QGuiApplication;
#else
#include <QCoreApplication>
using Application = QCoreApplication;
#endif

namespace {

// A test fails when Qt, QML or QtDBus writes a warning while the test runs. The exception is what the
// offscreen platform cannot do.
void failOnWarnings(QtMsgType type, const QMessageLogContext& context, const QString& text) {
  const QByteArray line = qFormatLogMessage(type, context, text).toLocal8Bit();
  const bool isOfOffscreen = text.startsWith(QStringLiteral("This plugin does not support "));
  if (type == QtDebugMsg || type == QtInfoMsg || isOfOffscreen) {
    std::fprintf(stderr, "%s\n", line.constData());
  } else {
    ADD_FAILURE() << line.constData();
  }
}

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  // The tests see neither the screen nor the bus of the session in which they are started.
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
  const Application application(argc, argv);
  qInstallMessageHandler(failOnWarnings);
  return RUN_ALL_TESTS();
}
