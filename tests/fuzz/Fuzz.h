#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

/// Ends the fuzzer if `condition` is false; the fuzzer then saves the input that broke it.
#define FUZZ_CHECK(condition) ((condition) ? static_cast<void>(0) : std::abort())

/// One reading of the bytes, defined by each fuzzer.
void fuzz(std::string_view bytes);

extern "C" inline __attribute__((used)) int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                                                   std::size_t size) {
  fuzz({reinterpret_cast<const char*>(data), size});
  return 0;
}

/// Whether `part` lies within `whole`, as a reader's views must; an empty one may lie anywhere.
inline bool isWithin(std::string_view part, std::string_view whole) {
  return part.empty() ||
         (part.data() >= whole.data() && part.data() + part.size() <= whole.data() + whole.size());
}
