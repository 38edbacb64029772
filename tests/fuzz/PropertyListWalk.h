#pragma once

#include "base/UTF8.h"
#include "formats/PropertyList.h"
#include "tests/fuzz/Fuzz.h"

#include <vector>

namespace vorli::formats {

/// Looks at the first thousand values of a list and checks what its accessors promise.
inline void walk(const PropertyList& list) {
  using Kind = PropertyList::Kind;
  std::vector<PropertyList::Value> waiting{list.root()};
  for (int left = 1000; left > 0 && !waiting.empty(); --left) {
    const auto value = waiting.back();
    waiting.pop_back();
    const bool isList = value.kind() == Kind::array || value.kind() == Kind::set;
    FUZZ_CHECK(value.text().has_value() == (value.kind() == Kind::text));
    FUZZ_CHECK(value.data().has_value() == (value.kind() == Kind::data));
    FUZZ_CHECK(value.integer().has_value() == (value.kind() == Kind::integer));
    FUZZ_CHECK(value.uid().has_value() == (value.kind() == Kind::uid));
    FUZZ_CHECK(isUTF8(value.text().value_or("")));
    FUZZ_CHECK(isList || value.kind() == Kind::dictionary || value.count() == 0);
    for (std::size_t i = 0; isList && i < value.count() && waiting.size() < 1000; ++i) {
      waiting.push_back(value.element(i));
    }
    for (const auto* key : {"", "a", "Label", "RunAtLoad", "$objects", "CF$UID"}) {
      const auto found = value.find(key);
      FUZZ_CHECK(!found || (value.kind() == Kind::dictionary && value.count() > 0));
      if (found) waiting.push_back(*found);
    }
  }
}

}  // namespace vorli::formats
