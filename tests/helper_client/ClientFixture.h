#pragma once

#include "base/TaskScope.h"
#include "helper/HelperManager.h"
#include "helper/HelperTimings.h"
#include "linux/HelperService.h"
#include "linux/HelperTransport.h"
#include "linux/SystemBus.h"
#include "tests/fakes/ApplicationBundle.h"
#include "tests/fakes/CapturedLog.h"
#include "tests/helper/Outcome.h"
#include "tests/helper_client/PrivateBus.h"
#include "tests/helper_client/Waiting.h"
#include "ui/QtScheduler.h"

#include <QTimer>
#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>

namespace vorli {

#ifdef __SANITIZE_THREAD__
constexpr bool isInstrumented = true;
#else
constexpr bool isInstrumented = false;
#endif

/// The longest pause of a 60 Hz beat on the main loop.
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

/// The daemon's client as the program has it, on a bus of its own and in real time.
struct ClientFixture : testing::Test {
  // A hanging bus holds up whoever waits for it for as long as it hangs: seconds in these tests. Less than
  // this is the machine's own load, and that of an instrumented program.
  static constexpr double loadSeconds = isInstrumented ? 2.0 : 0.5;

  /// Everything that talks to the bus; made when the test has prepared the bus.
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

  bool isLogged(std::string_view message) const { return log.count(message) > 0; }
  bool isNoted(const std::vector<std::string>& lines, std::string_view line) const {
    return std::ranges::find(lines, line) != lines.end();
  }
  /// Waits until the system says so.
  void waitForStatus(int status) {
    waitUntil([&] { return client->service.status() == status; });
  }
};

}  // namespace vorli
