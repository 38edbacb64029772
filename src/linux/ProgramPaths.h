#pragma once

#include "base/SharedText.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vorli::linuxhost {

/// Which program a process runs. The identifier alone does not tell, since it is used again; the start time
/// alone does not either, since a process becomes another program by exec, which gives it another name.
struct ProgramIdentity {
  std::int32_t pid = 0;
  std::uint64_t startTicks = 0;
  std::array<std::uint64_t, 2> name{};  // its first bytes, filled up with NUL

  ProgramIdentity(std::int32_t pid, std::uint64_t startTicks, std::string_view name);
  bool operator==(const ProgramIdentity&) const = default;
};

/// The program files of living processes, asked of the kernel once for each program that a process runs.
class ProgramPaths {
 public:
  /// `root` stands before a path of which it is asked whether there is such a file.
  explicit ProgramPaths(std::string root) : root_(std::move(root)) {}

  /// Forgets all processes but these, which are in ascending order.
  void keepOnly(std::span<const std::int32_t> pids);

  /// Empty when the process has no program file or it may not be read. Held until the next call. `procFolder`
  /// is an open descriptor of /proc.
  const std::optional<SharedText>& find(const ProgramIdentity& identity, int procFolder);

  std::size_t size() const { return known_.size(); }

 private:
  struct Known {
    ProgramIdentity identity;
    std::optional<SharedText> path;
  };

  std::vector<Known>::iterator locate(std::int32_t pid);
  std::optional<SharedText> readPath(std::int32_t pid, int procFolder) const;

  std::string root_;
  std::vector<Known> known_;  // ascending by pid
  std::size_t cursor_ = 0;    // where the next process of a pass is expected
};

}  // namespace vorli::linuxhost
