#include "polish/PopoverLog.h"

#include <array>
#include <cstdio>

namespace vorli {

std::string twoDecimals(double number) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.2f", number);
  return text.data();
}

}  // namespace vorli
