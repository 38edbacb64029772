#pragma once

#include "ports/KeyValueStore.h"

namespace vorli::machost {

/// The user's defaults, which the system keeps in the program's own domain and writes to disk.
class KeyValueStore final : public ports::KeyValueStore {
 public:
  std::optional<StoredValue> object(const std::string& key) const override;
  void setObject(const std::string& key, std::optional<StoredValue> value) override;
  void synchronize() override;
};

}  // namespace vorli::machost
