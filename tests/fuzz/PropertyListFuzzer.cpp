#include "formats/PropertyList.h"
#include "tests/fuzz/PropertyListWalk.h"

using namespace vorli::formats;

void fuzz(std::string_view bytes) {
  constexpr std::size_t largest = 4000;
  const auto list = readPropertyList(bytes, largest);
  FUZZ_CHECK(!list || bytes.size() <= largest);
  FUZZ_CHECK(list || !list.error().empty());
  if (list) walk(*list);
}
