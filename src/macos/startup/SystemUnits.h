#pragma once

#include "ports/SystemUnits.h"

#include <utility>

namespace vorli::machost {

/// Has no units: launchd identifies its jobs by their files.
class SystemUnits final : public ports::SystemUnits {
 public:
  void mask(const std::string&, OnceReply<ports::UnitReply> reply) override {
    std::move(reply)(ports::UnitReply::unavailable);
  }
  void unmask(const std::string&, OnceReply<ports::UnitReply> reply) override {
    std::move(reply)(ports::UnitReply::unavailable);
  }
};

}  // namespace vorli::machost
