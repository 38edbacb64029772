#pragma once

#include <cstdio>
#include <cstdlib>

namespace vorli::detail {
[[noreturn]] inline void assertionFailed(const char* condition, const char* file, int line) {
  std::fprintf(stderr, "vorli: %s:%d: broken invariant: %s\n", file, line, condition);
  std::abort();
}
}  // namespace vorli::detail

/// Aborts the process on a programming error, in every build. Do not use it to validate external data.
#define VORLI_ASSERT(condition) \
  ((condition) ? static_cast<void>(0) : ::vorli::detail::assertionFailed(#condition, __FILE__, __LINE__))
