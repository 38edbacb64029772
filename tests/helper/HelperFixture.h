#pragma once

#include "base/TaskScope.h"
#include "helper/HelperManager.h"
#include "helper/HelperTexts.h"
#include "helper/HelperTimings.h"
#include "tests/fakes/ApplicationBundle.h"
#include "tests/fakes/CapturedLog.h"
#include "tests/fakes/HelperService.h"
#include "tests/fakes/HelperTransport.h"
#include "tests/fakes/ManualScheduler.h"
#include "tests/helper/Outcome.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vorli {

// Virtual time just before a limit.
inline constexpr double frame = 1.0 / 60.0;

struct HelperFixture : testing::Test {
  using Conduct = fakes::HelperTransport::Conduct;

  fakes::CapturedLog log;
  fakes::ManualScheduler scheduler;
  fakes::ApplicationBundle bundle;
  fakes::HelperService service{scheduler};
  fakes::HelperTransport transport{scheduler};
  std::optional<HelperManager> manager{std::in_place, scheduler, service,
                                       transport,     bundle,    HelperTexts::macOS};
  std::optional<TaskScope> tasks{std::in_place, scheduler};

  template <typename T>
  std::shared_ptr<Outcome<T>> start(Task<T> task) {
    auto outcome = std::make_shared<Outcome<T>>();
    tasks->spawn(collect(std::move(task), outcome, &scheduler));
    scheduler.runReady();
    return outcome;
  }
  TaskHandle start(Task<> task) {
    auto handle = tasks->spawn(std::move(task));
    scheduler.runReady();
    return handle;
  }

  /// Destroys the manager, and before it every flow that uses it.
  void dropManager() {
    tasks.reset();
    manager.reset();
  }

  int errors(std::string_view message) const {
    return static_cast<int>(std::ranges::count(
        log.lines(), fakes::CapturedLog::Line{LogLevel::error, "helper-client", std::string(message)}));
  }
  int notices(std::string_view message) const {
    return static_cast<int>(std::ranges::count(
        log.lines(), fakes::CapturedLog::Line{LogLevel::standard, "helper-client", std::string(message)}));
  }
};

}  // namespace vorli
