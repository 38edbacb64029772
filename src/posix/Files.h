#pragma once

#include "ports/Files.h"

namespace vorli::posix {

/// Files on disk. New files and folders are accessible to this user only.
class Files final : public ports::Files {
 public:
  bool createFolder(const std::string& path) override;
  std::optional<std::uint64_t> size(const std::string& path) override;
  std::optional<std::string> read(const std::string& path, std::size_t largest) override;
  bool append(const std::string& path, std::string_view bytes) override;
  bool clear(const std::string& path) override;
  [[nodiscard]] std::expected<void, std::string> move(const std::string& from,
                                                      const std::string& to) override;
  std::optional<std::vector<ports::FolderEntry>> list(const std::string& folder) override;
};

}  // namespace vorli::posix
