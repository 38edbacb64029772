#include "tests/linux/helper/Waiting.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>
#include <gtest/gtest.h>

namespace vorli {

bool waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds deadline,
               const std::source_location& caller) {
  QElapsedTimer clock;
  clock.start();
  // Wakes the loop, so that the condition is checked even if nothing happens.
  QTimer tick;
  tick.start(1);
  while (!condition()) {
    if (clock.elapsed() > deadline.count()) {
      ADD_FAILURE_AT(caller.file_name(), static_cast<int>(caller.line()))
          << "waited in vain for " << deadline.count() << " ms";
      return false;
    }
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }
  return true;
}

}  // namespace vorli
