#pragma once

#include "ports/FileViewer.h"

#include <vector>

namespace vorli::fakes {

/// Records what it was asked to show.
class FileViewer final : public ports::FileViewer {
 public:
  void reveal(const std::string& path) override { revealed.push_back(path); }

  std::vector<std::string> revealed;
};

}  // namespace vorli::fakes
