#pragma once

#include "linux/startup/FileSystemCalls.h"
#include "posix/StartupFiles.h"

#include <optional>
#include <string>
#include <vector>

namespace vorli::linuxhost {

/// Real files, some of which a test locks, as on a full or read-only disk.
class FaultyStartupFiles final : public ports::StartupFiles {
 public:
  std::optional<std::vector<std::string>> visibleNames(const std::string& folder) override {
    return real.visibleNames(folder);
  }
  std::optional<std::string> read(const std::string& path, std::size_t limitBytes) override {
    return real.read(path, limitBytes);
  }
  bool exists(const std::string& path) override { return real.exists(path); }
  bool isMissing(const std::string& path) override { return real.isMissing(path); }
  std::optional<Date> birthTime(const std::string& path) override { return real.birthTime(path); }
  std::optional<std::string> linkTarget(const std::string& path) override { return real.linkTarget(path); }

  ports::MoveResult moveWithoutReplacing(const std::string& from, const std::string& to) override {
    return mayWrite(from) ? real.moveWithoutReplacing(from, to) : ports::MoveResult::failed;
  }
  bool rewrite(const std::string& path, const std::string& expected, const std::string& content) override {
    return mayWrite(path) && real.rewrite(path, expected, content);
  }
  bool setAside(const std::string& path, const std::string& expected, const std::string& content,
                const std::string& aside) override {
    return mayWrite(path) && real.setAside(path, expected, content, aside);
  }
  bool putBack(const std::string& path, const std::string& expected, const std::string& aside) override {
    return mayWrite(path) && real.putBack(path, expected, aside);
  }
  bool create(const std::string& path, const std::string& content) override {
    return mayWrite(path) && real.create(path, content);
  }
  bool remove(const std::string& path) override { return mayWrite(path) && real.remove(path); }

  posix::StartupFiles real{fileSystemCalls()};
  std::vector<std::string> locked;  // paths below which nothing may be changed

 private:
  bool mayWrite(const std::string& path) const {
    for (const auto& start : locked)
      if (path.starts_with(start)) return false;
    return true;
  }
};

}  // namespace vorli::linuxhost
