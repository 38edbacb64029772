#include "macos/session/KeyValueStore.h"

#include "macos/Text.h"
#include "macos/session/StoredValue.h"

namespace vorli::machost {

std::optional<StoredValue> KeyValueStore::object(const std::string& key) const {
  const id object = [NSUserDefaults.standardUserDefaults objectForKey:stringOf(key)];
  if (!object) return std::nullopt;
  return storedValue(object).value_or(StoredDictionary());
}

void KeyValueStore::setObject(const std::string& key, std::optional<StoredValue> value) {
  NSUserDefaults* const defaults = NSUserDefaults.standardUserDefaults;
  if (value) {
    [defaults setObject:objectOf(*value) forKey:stringOf(key)];
  } else {
    [defaults removeObjectForKey:stringOf(key)];
  }
}

void KeyValueStore::synchronize() {
  [NSUserDefaults.standardUserDefaults synchronize];
}

}  // namespace vorli::machost
