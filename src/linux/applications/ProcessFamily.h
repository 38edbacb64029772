#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace vorli::linuxhost {

/// Finds the application that a process works for, among its ancestors. Reads /proc at each call. Main
/// thread.
class ProcessFamily {
 public:
  /// The rule by which a process is a relative of its parent. `engine`: it runs the same program file, or one
  /// in the same private folder. `script`: an interpreter must run the same script too. A process with
  /// windows of its own is a relative by script only, since many programs share an interpreter.
  enum class Kinship { engine, script };

  /// `root` is the prefix of every path that is read.
  explicit ProcessFamily(std::string root = "") : root_(std::move(root)) {}

  /// The nearest ancestor for which `isApplication` is true, with only relatives in between; 0 when there is
  /// none, or the process is gone or may not be read.
  std::int32_t nearestApplication(std::int32_t pid, Kinship kinship,
                                  const std::function<bool(std::int32_t)>& isApplication) const;

 private:
  std::int32_t parentOf(std::int32_t pid) const;
  bool areRelatives(std::int32_t child, std::int32_t parent, Kinship kinship) const;

  const std::string root_;
};

}  // namespace vorli::linuxhost
