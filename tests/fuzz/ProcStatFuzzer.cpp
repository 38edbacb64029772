#include "formats/ProcStat.h"
#include "tests/fuzz/Fuzz.h"

void fuzz(std::string_view bytes) {
  constexpr std::uint64_t largestPage = 64 * 1024;
  std::uint64_t product = 0;
  if (const auto pages = vorli::formats::parseResidentPages(bytes)) {
    FUZZ_CHECK(!__builtin_mul_overflow(*pages, largestPage, &product));
  }
  const auto stat = vorli::formats::parseProcStat(bytes);
  if (!stat) return;
  FUZZ_CHECK(isWithin(stat->name, bytes));
  FUZZ_CHECK(stat->parentPID >= 0);
  std::uint64_t sum = 0;
  FUZZ_CHECK(!__builtin_add_overflow(stat->userTicks, stat->systemTicks, &sum));
  FUZZ_CHECK(!__builtin_mul_overflow(stat->residentPages, largestPage, &product));
}
