#pragma once

#include "ports/ProcessTable.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace vorli::linuxhost {

/// Lists as a caller does: asks for the number of places first, then fills them.
inline std::vector<std::int32_t> listedPIDs(ports::ProcessTable& table) {
  const int places = table.listAllPIDs({});
  std::vector<std::int32_t> pids(static_cast<std::size_t>(std::max(places, 0)));
  const int bytes = places > 0 ? table.listAllPIDs(pids) : 0;
  pids.resize(static_cast<std::size_t>(std::max(bytes, 0)) / 4);
  return pids;
}

}  // namespace vorli::linuxhost
