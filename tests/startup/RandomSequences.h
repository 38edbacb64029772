#pragma once

#include <charconv>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string_view>

namespace vorli {

/// Number of random sequences that a test runs. A longer search takes it from VORLI_RANDOM_SEQUENCES.
inline unsigned randomSequences(unsigned usual = 500) {
  unsigned count = usual;
  const char* const wanted = std::getenv("VORLI_RANDOM_SEQUENCES");
  const std::string_view text = wanted ? wanted : "";
  std::from_chars(text.data(), text.data() + text.size(), count);
  return count;
}

/// Runs `User(seed).run()` for that many seeds.
template <typename User>
void runRandomSequences(unsigned count) {
  for (unsigned seed = 1; seed <= count; ++seed) {
    SCOPED_TRACE(seed);
    User(seed).run();
    if (testing::Test::HasFailure()) return;  // the first failure is enough
  }
}

}  // namespace vorli
