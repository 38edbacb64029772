#include <QApplication>
#include <gmock/gmock.h>

int main(int argc, char** argv) {
  // Uses neither the desktop nor the bus of the user who runs the tests.
  qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
  qunsetenv("DISPLAY");
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  testing::InitGoogleMock(&argc, argv);
  return RUN_ALL_TESTS();
}
