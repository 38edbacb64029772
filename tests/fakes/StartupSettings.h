#pragma once

#include "ports/StartupSettings.h"

namespace vorli::fakes {

/// Counts how often the page was opened.
class StartupSettings final : public ports::StartupSettings {
 public:
  void open() override { ++openings; }

  int openings = 0;
};

}  // namespace vorli::fakes
