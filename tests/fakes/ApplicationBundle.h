#pragma once

#include "ports/ApplicationBundle.h"

#include <map>

namespace vorli::fakes {

/// An installation as a test describes it.
class ApplicationBundle final : public ports::ApplicationBundle {
 public:
  std::optional<std::string> infoString(const std::string& key) const override {
    const auto found = info.find(key);
    if (found == info.end()) return std::nullopt;
    return found->second;
  }
  std::string bundlePath() const override { return path; }
  std::string homeDirectory() const override { return home; }

  std::map<std::string, std::string> info{{"CFBundleVersion", "7"}, {"CFBundleShortVersionString", "1.2.3"}};
  std::string path = "/Applications/Vorli.app";
  std::string home = "/Users/kim";
};

}  // namespace vorli::fakes
