#pragma once

#include "ports/ApplicationBundle.h"

namespace vorli::linuxhost {

/// The installed program: its executable's path, and the version numbers that it was built with.
class ApplicationBundle final : public ports::ApplicationBundle {
 public:
  ApplicationBundle();

  std::optional<std::string> infoString(const std::string& key) const override;
  std::string bundlePath() const override { return executable_; }
  std::string homeDirectory() const override { return home_; }

 private:
  std::string executable_;
  std::string home_;
};

}  // namespace vorli::linuxhost
