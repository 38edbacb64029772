#pragma once

#include "ports/ApplicationIcons.h"

#include <map>
#include <utility>
#include <vector>

namespace vorli::fakes {

/// The icons that a test installs. Calls of the test and of background work exclude each other.
class ApplicationIcons final : public ports::ApplicationIcons {
 public:
  void lookAgain() override { ++looks; }

  std::optional<std::string> image(const std::string& application, int sidePixels) override {
    asked.emplace_back(application, sidePixels);
    const auto found = images.find(application);
    if (found == images.end()) return std::nullopt;
    return found->second;
  }

  std::map<std::string, std::string> images;       // bytes by application
  std::vector<std::pair<std::string, int>> asked;  // in order
  int looks = 0;
};

}  // namespace vorli::fakes
