#include "linux/kernel/SwapTraffic.h"

#include <algorithm>
#include <utility>

namespace vorli::linuxhost {

namespace {

// A counter that fell was reset to 0 in between: its device was created again.
std::uint64_t growth(std::uint64_t before, std::uint64_t now) {
  return now >= before ? now - before : now;
}

PageTraffic growth(const PageTraffic& before, const PageTraffic& now) {
  return {growth(before.in, now.in), growth(before.out, now.out)};
}

std::uint64_t rest(std::uint64_t all, std::uint64_t part) {
  return all - std::min(all, part);
}

void increase(PageTraffic& sum, const PageTraffic& by) {
  sum.in += by.in;
  sum.out += by.out;
}

}  // namespace

void SwapTraffic::add(const PageTraffic& all, std::vector<ZramTraffic> zram) {
  const auto compressed = zramGrowth(zram);
  const auto moved = growth(lastAll_.value_or(PageTraffic{}), all);
  increase(onZram_, compressed);
  // The counters are not read at the same instant, so the part can be some pages ahead of the whole.
  increase(onDisks_, {rest(moved.in, compressed.in), rest(moved.out, compressed.out)});
  lastAll_ = all;
  lastZram_ = std::move(zram);
}

PageTraffic SwapTraffic::zramGrowth(const std::vector<ZramTraffic>& now) const {
  PageTraffic sum;
  for (const auto& device : now) {
    const auto before = std::ranges::find(lastZram_, device.device, &ZramTraffic::device);
    if (before != lastZram_.end()) {
      increase(sum, growth(before->pages, device.pages));
    } else if (!lastAll_) {
      increase(sum, device.pages);
    }
    // A device that is new since the last reading adds nothing yet: some of its traffic may be older than its
    // use as swap.
  }
  return sum;
}

}  // namespace vorli::linuxhost
