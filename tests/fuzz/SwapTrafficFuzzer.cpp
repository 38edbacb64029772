#include "linux/kernel/SwapTraffic.h"
#include "tests/fuzz/Fuzz.h"

using namespace vorli::linuxhost;

namespace {

// The next byte as a number, 0 at the end.
std::uint64_t take(std::string_view& bytes) {
  if (bytes.empty()) return 0;
  const auto byte = static_cast<std::uint8_t>(bytes[0]);
  bytes.remove_prefix(1);
  return byte;
}

}  // namespace

void fuzz(std::string_view bytes) {
  SwapTraffic traffic;
  while (!bytes.empty()) {
    const auto disksBefore = traffic.onDisks();
    const auto zramBefore = traffic.onZram();
    const PageTraffic all{take(bytes), take(bytes)};
    std::vector<ZramTraffic> devices(take(bytes) % 4);
    for (auto& device : devices) {
      device.device = static_cast<std::uint32_t>(take(bytes) % 3);
      device.pages = {take(bytes), take(bytes)};
    }
    traffic.add(all, devices);
    FUZZ_CHECK(traffic.onDisks().in >= disksBefore.in && traffic.onDisks().out >= disksBefore.out);
    FUZZ_CHECK(traffic.onZram().in >= zramBefore.in && traffic.onZram().out >= zramBefore.out);
  }
}
