#include "formats/XMLPropertyList.h"
#include "tests/fuzz/PropertyListWalk.h"

using namespace vorli::formats;

void fuzz(std::string_view bytes) {
  const auto list = readXMLPropertyList(bytes);
  if (list) walk(*list);
}
