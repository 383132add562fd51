// The main function of tests that need an event loop and no windows.

#include "support/NoWarnings.h"

#include <QCoreApplication>
#include <gmock/gmock.h>

int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  // The tests see neither the screen nor the bus of the session in which they are started.
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
  const QCoreApplication application(argc, argv);
  spacemint::support::failOnQtWarnings();
  return RUN_ALL_TESTS();
}
