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

/// Identifies the program that a process runs. The process identifier is not enough, because it is reused;
/// nor is the start time, because exec turns a process into another program, with another name.
struct ProgramIdentity {
  std::int32_t pid = 0;
  std::uint64_t startTicks = 0;
  std::array<std::uint64_t, 2> name{};  // its first 16 bytes, padded with NUL

  ProgramIdentity(std::int32_t pid, std::uint64_t startTicks, std::string_view name);
  bool operator==(const ProgramIdentity&) const = default;
};

/// The program files of living processes, read from the kernel once for each program that a process runs.
class ProgramPaths {
 public:
  /// `root` is the prefix of the paths whose existence is checked.
  explicit ProgramPaths(std::string root) : root_(std::move(root)) {}

  /// Forgets all processes but these, which are in ascending order.
  void keepOnly(std::span<const std::int32_t> pids);

  /// Path of the program file; empty when the process has none or it may not be read. Valid until the next
  /// call. `procFolder` is an open descriptor of /proc.
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
  std::size_t cursor_ = 0;    // expected position of the next process of a pass
};

}  // namespace vorli::linuxhost
