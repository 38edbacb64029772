#pragma once

#include "ports/StartupFiles.h"
#include "posix/FileSystemCalls.h"

namespace vorli::posix {

/// The files on disk. New files are readable by everybody, as the user's settings allow.
class StartupFiles final : public ports::StartupFiles {
 public:
  explicit StartupFiles(const FileSystemCalls& calls) : calls_(calls) {}

  std::optional<std::vector<std::string>> visibleNames(const std::string& folder) override;
  std::optional<std::string> read(const std::string& path, std::size_t limitBytes) override;
  bool exists(const std::string& path) override;
  bool isMissing(const std::string& path) override;
  std::optional<Date> birthTime(const std::string& path) override;
  std::optional<std::string> linkTarget(const std::string& path) override;
  ports::MoveResult moveWithoutReplacing(const std::string& from, const std::string& to) override;
  bool rewrite(const std::string& path, const std::string& expected, const std::string& content) override;
  bool setAside(const std::string& path, const std::string& expected, const std::string& content,
                const std::string& aside) override;
  bool putBack(const std::string& path, const std::string& expected, const std::string& aside) override;
  bool create(const std::string& path, const std::string& content) override;
  bool remove(const std::string& path) override;

 private:
  const FileSystemCalls calls_;
};

}  // namespace vorli::posix
