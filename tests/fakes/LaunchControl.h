#pragma once

#include "ports/LaunchControl.h"

#include <functional>
#include <string>
#include <vector>

namespace vorli::fakes {

/// A service manager that records its calls.
class LaunchControl final : public ports::LaunchControl {
 public:
  void load(const std::string& path) override { note("load " + path); }
  void unload(const std::string& path) override { note("unload " + path); }
  void reload() override { note("reload"); }

  std::vector<std::string> calls;
  std::function<void()> whenCalled;  // runs inside each call

 private:
  void note(std::string call) {
    calls.push_back(std::move(call));
    if (whenCalled) whenCalled();
  }
};

}  // namespace vorli::fakes
