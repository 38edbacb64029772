#pragma once

#include "base/Date.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace vorli::ports {

/// What an entry of a stored dictionary can hold.
using StoredEntry = std::variant<bool, std::int64_t, double, std::string, Date>;
using StoredDictionary = std::map<std::string, StoredEntry>;

/// What a key can hold.
using StoredValue =
    std::variant<bool, std::int64_t, double, std::string, Date, std::vector<std::string>, StoredDictionary>;

/// The user's preferences, one value a key. Tells an absent key from a stored false. A change is readable at
/// once and reaches the disk soon after, whole or not at all; a failed write is logged by the store and keeps
/// the value in memory. Main thread; does not block.
class KeyValueStore {
 public:
  virtual ~KeyValueStore() = default;

  /// Empty when the key is absent or its value cannot be understood.
  virtual std::optional<StoredValue> object(const std::string& key) const = 0;

  /// Stores the value, or removes the key when it is empty.
  virtual void setObject(const std::string& key, std::optional<StoredValue> value) = 0;

  /// Writes what has not been written yet; called before the process ends.
  virtual void synchronize() = 0;
};

}  // namespace vorli::ports
