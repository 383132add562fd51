// The main function of tests that show windows on a screen that nobody sees.

#include "support/NoWarnings.h"

#include <QGuiApplication>
#include <gmock/gmock.h>

int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  // The tests see neither the screen nor the bus of the session in which they are started.
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
  const QGuiApplication application(argc, argv);
  spacemint::support::failOnQtWarnings();
  return RUN_ALL_TESTS();
}
