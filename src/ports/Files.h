#pragma once

#include "base/Date.h"

#include <cstddef>
#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorli::ports {

/// One entry of a folder.
struct FolderEntry {
  std::string name;
  std::optional<Date> modified;  // empty when the system does not report it

  bool operator==(const FolderEntry&) const = default;
};

/// The user's own small files, by absolute path. Thread-safe. Every call blocks for the disk. Only regular
/// files are read or written, never pipes or devices.
class Files {
 public:
  virtual ~Files() = default;

  /// Creates the folder and its parents, accessible to this user only. True when it exists afterwards.
  virtual bool createFolder(const std::string& path) = 0;

  /// Size in bytes. Empty when there is no such file.
  virtual std::optional<std::uint64_t> size(const std::string& path) = 0;

  /// The whole file. Empty when it cannot be read or is longer than `largest` bytes.
  virtual std::optional<std::string> read(const std::string& path, std::size_t largest) = 0;

  /// Appends the bytes to the file, in one write where the disk allows it, and creates the file if needed.
  /// False when not all bytes were written; the file then ends as before.
  virtual bool append(const std::string& path, std::string_view bytes) = 0;

  /// Makes the file empty. False when it does not exist or cannot be written.
  virtual bool clear(const std::string& path) = 0;

  /// Renames the file on the same disk, replacing any file that already has the new name. Error: the system's
  /// text.
  [[nodiscard]] virtual std::expected<void, std::string> move(const std::string& from,
                                                              const std::string& to) = 0;

  /// Entries of the folder, without hidden ones, sorted by name. Empty when it cannot be listed.
  virtual std::optional<std::vector<FolderEntry>> list(const std::string& folder) = 0;
};

}  // namespace vorli::ports
