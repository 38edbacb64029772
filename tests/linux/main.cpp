#include <QCoreApplication>
#include <gtest/gtest.h>

// Descriptor watchers need the thread to have a Qt event dispatcher.
int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const QCoreApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
