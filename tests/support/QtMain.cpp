// The main function of tests that need an event loop.

#include <QCoreApplication>
#include <gmock/gmock.h>

int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  // No screen, and nothing of the session in which the tests are started.
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
  const QCoreApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
