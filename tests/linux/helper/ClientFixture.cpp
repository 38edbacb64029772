#include "tests/linux/helper/ClientFixture.h"

namespace vorli {

Beat::Beat(const Scheduler& clock) : clock_(clock), last_(clock.now()) {
  timer_.setTimerType(Qt::PreciseTimer);
  timer_.callOnTimeout([this] {
    const double now = clock_.now();
    longest_ = std::max(longest_, now - last_);
    last_ = now;
  });
  timer_.start(16);
}

ClientFixture::Client::Client(ClientFixture& test)
    : service(scheduler, bus, watch,
              linuxhost::HelperFiles(test.bus.folder() / "program", test.bus.folder() / "installed"),
              [&test](ports::AskedBy) {
                ++test.ownPageShown;
                test.ownPage();
              }),
      manager(scheduler, service, transport, test.bundle) {}

}  // namespace vorli
