#pragma once

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

namespace vorli::helpertest {

/// Prints `name value` lines, which the scripts read.
inline void tell(const std::string& name, double value) {
  std::printf("%s %.6f\n", name.c_str(), value);
}

inline double quantile(std::vector<double> values, double part) {
  if (values.empty()) return 0.0;
  std::ranges::sort(values);
  const auto index = static_cast<std::size_t>(part * static_cast<double>(values.size()));
  return values[std::min(index, values.size() - 1)];
}

inline void tellLatencies(const std::vector<double>& seconds) {
  tell("count", static_cast<double>(seconds.size()));
  tell("p50", quantile(seconds, 0.5));
  tell("p99", quantile(seconds, 0.99));
  tell("max", quantile(seconds, 1.0));
}

}  // namespace vorli::helpertest
