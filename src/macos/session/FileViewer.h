#pragma once

#include "ports/FileViewer.h"

namespace vorli::machost {

/// The Finder, or the program that replaces it. It reports no failure.
class FileViewer final : public ports::FileViewer {
 public:
  void reveal(const std::string& path) override;
};

}  // namespace vorli::machost
