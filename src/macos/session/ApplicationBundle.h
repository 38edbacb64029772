#pragma once

#include "ports/ApplicationBundle.h"

namespace vorli::machost {

/// The bundle that the program was started from.
class ApplicationBundle final : public ports::ApplicationBundle {
 public:
  std::optional<std::string> infoString(const std::string& key) const override;
  std::string bundlePath() const override;
  std::string homeDirectory() const override;
};

}  // namespace vorli::machost
