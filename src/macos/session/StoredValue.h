#pragma once

#include "ports/KeyValueStore.h"

#import <Foundation/Foundation.h>
#include <optional>

namespace vorli::machost {

/// Returns the value in an object of the user's defaults. Empty when the port has no such type, as for an
/// array with anything but texts; entries of a dictionary that cannot be understood are left out.
std::optional<StoredValue> storedValue(id object);

/// Returns the object that the user's defaults store for the value.
id objectOf(const StoredValue& value);

}  // namespace vorli::machost
