#include "base/Colour.h"

#include <algorithm>

namespace vorli {

Colour blend(const Colour& from, const Colour& to, double factor) {
  const double f = std::clamp(factor, 0.0, 1.0);
  return {from.red + f * (to.red - from.red), from.green + f * (to.green - from.green),
          from.blue + f * (to.blue - from.blue), 1.0};
}

}  // namespace vorli
