#pragma once

#include <string>

namespace vorli::ports {

/// Opens links in the user's default programs. Main thread.
class LinkOpener {
 public:
  virtual ~LinkOpener() = default;

  /// True when a program for links of this kind was started; does not wait for it. Blocks while some small
  /// files are read and the program is started.
  virtual bool openURL(const std::string& url) = 0;
};

}  // namespace vorli::ports
