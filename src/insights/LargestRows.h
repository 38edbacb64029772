#pragma once

#include "insights/ProcessSnapshot.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <span>
#include <vector>

namespace vorli {

/// Finds the rows with the largest values of one field. Keeps its memory from call to call.
class LargestRows {
 public:
  /// Indices of the `count` rows with the largest `field`, largest first; of all rows when there are fewer.
  /// Valid until the next call. About one comparison per row, for a small `count`.
  template <typename Field>
  std::span<const std::uint32_t> find(const std::vector<ProcessSnapshot>& rows, std::size_t count,
                                      Field ProcessSnapshot::*field) {
    order_.resize(rows.size());
    std::iota(order_.begin(), order_.end(), 0u);
    const auto kept = order_.begin() + static_cast<std::ptrdiff_t>(std::min(count, rows.size()));
    std::partial_sort(order_.begin(), kept, order_.end(), [&rows, field](std::uint32_t a, std::uint32_t b) {
      return rows[a].*field > rows[b].*field;
    });
    return {order_.begin(), kept};
  }

 private:
  std::vector<std::uint32_t> order_;
};

}  // namespace vorli
