#pragma once

#include <string>

namespace vorli::ports {

/// The desktop's file manager. Main thread.
class FileViewer {
 public:
  virtual ~FileViewer() = default;

  /// Shows the file's folder with the file selected. Logs a failure when no program can show it. Does not
  /// block.
  virtual void reveal(const std::string& path) = 0;
};

}  // namespace vorli::ports
