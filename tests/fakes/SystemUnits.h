#pragma once

#include "ports/SystemUnits.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace vorli::fakes {

/// A service manager that answers at once, as a test says.
class SystemUnits final : public ports::SystemUnits {
 public:
  void mask(const std::string& unit, OnceReply<ports::UnitReply> reply) override {
    note("mask " + unit, std::move(reply));
  }
  void unmask(const std::string& unit, OnceReply<ports::UnitReply> reply) override {
    note("unmask " + unit, std::move(reply));
  }

  std::vector<std::string> calls;
  ports::UnitReply answer = ports::UnitReply::done;
  std::function<void(const std::string&)> whenCalled;

 private:
  void note(const std::string& call, OnceReply<ports::UnitReply> reply) {
    calls.push_back(call);
    if (whenCalled) whenCalled(call);
    std::move(reply)(answer);
  }
};

}  // namespace vorli::fakes
