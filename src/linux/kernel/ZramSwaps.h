#pragma once

#include "linux/kernel/KeptFile.h"
#include "linux/kernel/SwapTraffic.h"

#include <cstdint>
#include <string>
#include <vector>

namespace vorli::linuxhost {

/// The compressed devices in memory that the machine swaps to.
class ZramSwaps {
 public:
  struct Reading {
    std::vector<ZramTraffic> traffic;
    std::uint64_t memoryBytes = 0;  // memory that the compressed pages use
  };

  /// `root` is the prefix of every path that is read.
  explicit ZramSwaps(const std::string& root);

  /// Reads the devices in use. A device whose counters cannot be read is left out.
  Reading read(std::uint64_t pageSizeBytes);

 private:
  struct Device {
    std::uint32_t number;
    KeptFile stat;
    KeptFile memory;
  };

  void matchDevices(const std::vector<std::uint32_t>& numbers);

  std::string root_;
  KeptFile swaps_;
  std::vector<Device> devices_;
};

}  // namespace vorli::linuxhost
