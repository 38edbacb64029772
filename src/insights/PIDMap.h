#pragma once

#include "base/Assert.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace vorli {

/// A hash table keyed by process identifiers above 0, which is refilled in every pass and reuses its memory.
/// It uses open addressing in one flat array.
template <typename Value>
class PIDMap {
 public:
  /// Clears the table and reserves room for `entries` entries, the most that may be set before the next
  /// reset.
  void reset(std::size_t entries) {
    const std::size_t wanted = std::bit_ceil(entries * 2 + std::size_t{2 * neighbours});
    if (wanted > slots_.size()) {
      slots_.assign(wanted, Slot());
      shift_ = 32 - std::countr_zero(wanted / neighbours);
    } else {
      slots_.assign(slots_.size(), Slot());
    }
    room_ = entries;
  }

  /// Sets the value of `pid`, replacing an older one.
  void set(std::int32_t pid, Value value) {
    Slot& slot = slots_[place(pid)];
    if (slot.pid == 0) {
      VORLI_ASSERT(room_ > 0);
      --room_;
    }
    slot = {pid, value};
  }

  /// Null when `pid` is not in the table.
  const Value* find(std::int32_t pid) const {
    if (slots_.empty()) return nullptr;
    const Slot& slot = slots_[place(pid)];
    return slot.pid == pid ? &slot.value : nullptr;
  }

 private:
  struct Slot {
    std::int32_t pid = 0;
    Value value{};
  };

  // Number of consecutive identifiers stored side by side. A pass asks in ascending order; if they were
  // spread over the whole table, each of ten thousand look-ups would be a cache miss.
  static constexpr unsigned neighbours = 16;

  // The slot that holds `pid`, or the free one where it belongs. At least half of the slots are free.
  std::size_t place(std::int32_t pid) const {
    constexpr std::uint32_t spread = 2654435769;  // 2^32 over the golden ratio: blocks end up far apart
    const auto key = static_cast<std::uint32_t>(pid);
    std::size_t at = std::size_t{((key / neighbours) * spread) >> shift_} * neighbours + key % neighbours;
    while (slots_[at].pid != pid && slots_[at].pid != 0) at = (at + 1) & (slots_.size() - 1);
    return at;
  }

  std::vector<Slot> slots_;
  int shift_ = 0;
  std::size_t room_ = 0;
};

}  // namespace vorli
