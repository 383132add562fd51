// The main function of tests of what is shown, where nobody sees it.

#include <QGuiApplication>
#include <gmock/gmock.h>

int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  // No screen, and nothing of the session in which the tests are started.
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
  const QGuiApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
