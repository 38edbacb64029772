#pragma once

#include "ports/KeyValueStore.h"

#include <utility>

namespace vorli::fakes {

/// Preferences in memory.
class KeyValueStore final : public ports::KeyValueStore {
 public:
  std::optional<StoredValue> object(const std::string& key) const override {
    const auto found = values.find(key);
    if (found == values.end()) return std::nullopt;
    return found->second;
  }

  void setObject(const std::string& key, std::optional<StoredValue> value) override {
    writes.push_back(key);
    if (value) {
      values.insert_or_assign(key, std::move(*value));
    } else {
      values.erase(key);
    }
  }

  void synchronize() override { ++synchronizations; }

  std::map<std::string, StoredValue> values;
  std::vector<std::string> writes;  // the keys, in order, removals included
  int synchronizations = 0;
};

}  // namespace vorli::fakes
