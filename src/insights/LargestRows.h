#pragma once

#include "insights/ProcessSnapshot.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <span>
#include <vector>

namespace vorli {

/// Finds the rows with the largest values of one field. Reuses its memory between calls.
class LargestRows {
 public:
  /// Indices of the `count` rows with the largest `field`, largest first; fewer when there are fewer rows.
  /// Valid until the next call. About one comparison per row, for a small `count`.
  template <typename Field>
  std::span<const std::uint32_t> find(const std::vector<ProcessSnapshot>& rows, std::size_t count,
                                      Field ProcessSnapshot::*field) {
    chosen_.resize(std::min(count, rows.size()));
    if (chosen_.empty()) return {};
    std::iota(chosen_.begin(), chosen_.end(), 0u);
    const auto isLarger = [&rows, field](std::uint32_t a, std::uint32_t b) {
      return rows[a].*field > rows[b].*field;
    };
    std::ranges::make_heap(chosen_, isLarger);  // the smallest of them is in front
    for (auto row = static_cast<std::uint32_t>(chosen_.size()); row < rows.size(); ++row) {
      if (!isLarger(row, chosen_.front())) continue;
      std::ranges::pop_heap(chosen_, isLarger);
      chosen_.back() = row;
      std::ranges::push_heap(chosen_, isLarger);
    }
    std::ranges::sort_heap(chosen_, isLarger);
    return chosen_;
  }

 private:
  std::vector<std::uint32_t> chosen_;
};

}  // namespace vorli
