#pragma once

#include "base/StoredValue.h"

#include <optional>
#include <string>

namespace vorli::ports {

/// The user's preferences, one value per key. An absent key differs from a stored false. A change can be read
/// back at once and is written to disk soon after, atomically; the store logs a failed write and keeps the
/// value in memory. Main thread; does not block.
class KeyValueStore {
 public:
  virtual ~KeyValueStore() = default;

  /// Empty when the key is absent. A value that cannot be understood is an empty dictionary: it is present,
  /// but has a type that no reader expects.
  virtual std::optional<StoredValue> object(const std::string& key) const = 0;

  /// Stores the value, or removes the key when it is empty.
  virtual void setObject(const std::string& key, std::optional<StoredValue> value) = 0;

  /// Writes all pending changes; called before the process ends.
  virtual void synchronize() = 0;
};

}  // namespace vorli::ports
