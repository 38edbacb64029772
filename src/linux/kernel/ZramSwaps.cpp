#include "linux/kernel/ZramSwaps.h"

#include "formats/SwapDevices.h"

#include <algorithm>
#include <array>

namespace vorli::linuxhost {

namespace {

constexpr std::uint64_t bytesPerSector = 512;

}  // namespace

ZramSwaps::ZramSwaps(const std::string& root) : root_(root), swaps_(root + "/proc/swaps") {}

ZramSwaps::Reading ZramSwaps::read(std::uint64_t pageSizeBytes) {
  std::array<char, 4096> buffer;
  matchDevices(formats::parseZramSwaps(swaps_.read(buffer).value_or("")));

  const std::uint64_t sectorsPerPage = std::max(pageSizeBytes / bytesPerSector, std::uint64_t{1});
  Reading reading;
  for (auto& device : devices_) {
    const auto traffic = formats::parseBlockTraffic(device.stat.read(buffer).value_or(""));
    if (!traffic) continue;
    reading.traffic.push_back(
        {device.number, {traffic->sectorsRead / sectorsPerPage, traffic->sectorsWritten / sectorsPerPage}});
    reading.memoryBytes += formats::parseZramMemoryUsed(device.memory.read(buffer).value_or("")).value_or(0);
  }
  return reading;
}

void ZramSwaps::matchDevices(const std::vector<std::uint32_t>& numbers) {
  if (std::ranges::equal(devices_, numbers, {}, &Device::number)) return;
  devices_.clear();
  for (const auto number : numbers) {
    const auto folder = root_ + "/sys/block/zram" + std::to_string(number);
    devices_.push_back({number, KeptFile(folder + "/stat"), KeptFile(folder + "/mm_stat")});
  }
}

}  // namespace vorli::linuxhost
