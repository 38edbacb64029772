#pragma once

#include "ports/LinkOpener.h"

#include <vector>

namespace vorli::fakes {

/// Records the links, and succeeds or fails as a test says.
class LinkOpener final : public ports::LinkOpener {
 public:
  bool openURL(const std::string& url) override {
    opened.push_back(url);
    return hasProgram;
  }

  std::vector<std::string> opened;
  bool hasProgram = true;
};

}  // namespace vorli::fakes
