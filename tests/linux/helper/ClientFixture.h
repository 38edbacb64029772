#pragma once

#include "base/TaskScope.h"
#include "helper/HelperManager.h"
#include "helper/HelperTimings.h"
#include "linux/helper/HelperService.h"
#include "linux/helper/HelperTransport.h"
#include "linux/helper/SystemBus.h"
#include "tests/fakes/ApplicationBundle.h"
#include "tests/fakes/CapturedLog.h"
#include "tests/helper/Outcome.h"
#include "tests/linux/helper/PrivateBus.h"
#include "tests/linux/helper/Waiting.h"
#include "ui/loop/QtScheduler.h"

#include <QTimer>
#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>

namespace vorli {

#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr bool isInstrumented = true;
#else
constexpr bool isInstrumented = false;
#endif

/// Measures the longest pause of a 60 Hz beat on the main loop.
class Beat {
 public:
  explicit Beat(const Scheduler& clock);
  double longestGap() const { return std::max(longest_, clock_.now() - last_); }

 private:
  const Scheduler& clock_;
  QTimer timer_;
  double last_;
  double longest_ = 0.0;
};

/// The daemon's client as in the program, on a private bus and in real time.
struct ClientFixture : testing::Test {
  // A bus that hangs holds up its callers for as long as it hangs, which is seconds in these tests. A pause
  // below this limit comes from the load of the machine. An instrumented program may pause as long as
  // those hangs, so that only the plain build is strict.
  static constexpr double loadSeconds = isInstrumented ? 8.0 : 1.0;

  /// Everything that uses the bus; made after the test has prepared the bus.
  struct Client {
    explicit Client(ClientFixture& test);

    ui::QtScheduler scheduler;
    linuxhost::SystemBus bus;
    std::shared_ptr<linuxhost::HelperNameWatch> watch = linuxhost::HelperNameWatch::on(bus);
    linuxhost::HelperTransport transport{scheduler, bus, watch};
    linuxhost::HelperService service;
    HelperManager manager;
    Beat beat{scheduler};
    TaskScope tasks{scheduler};
  };

  fakes::CapturedLog log;
  fakes::ApplicationBundle bundle;
  PrivateBus bus;
  int ownPageShown = 0;
  std::function<void()> ownPage = [] {};  // called each time the program's own page is shown
  std::optional<Client> client;

  Client& startClient() { return client.emplace(*this); }
  HelperManager& manager() { return client->manager; }

  template <typename T>
  std::shared_ptr<Outcome<T>> start(Task<T> task) {
    auto outcome = std::make_shared<Outcome<T>>();
    client->tasks.spawn(collect(std::move(task), outcome, &client->scheduler));
    return outcome;
  }
  template <typename T>
  T resultOf(Task<T> task) {
    const auto outcome = start(std::move(task));
    waitUntil([&] { return outcome->resumes > 0; }, std::chrono::seconds(30));
    return outcome->value.value_or(T{});
  }

  /// Pings with a long limit, because a busy machine may be slow to start the daemon.
  bool ping() { return resultOf(manager().pingWithTimeout(20.0)); }

  bool isLogged(std::string_view message) const { return log.count(message) > 0; }
  bool isNoted(const std::vector<std::string>& lines, std::string_view line) const {
    return std::ranges::find(lines, line) != lines.end();
  }
  /// Waits until the system reports this status.
  void waitForStatus(int status) {
    waitUntil([&] { return client->service.status() == status; });
  }
};

}  // namespace vorli
