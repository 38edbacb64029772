#pragma once

#include "ports/KeyValueStore.h"

#include <QStringList>
#include <QVariant>
#include <optional>

namespace vorli::linuxhost {

// How a typed value stands in an ini file, whose own values are all text. Booleans and numbers stand plainly,
// so that a person can edit them; what would otherwise be read as another type carries a mark:
//   true  60  0.5  opt+shift+C  "@String 60"  "@Date 1700000000.25"  "@Strings, a, b"
//   "@Dictionary, key, @Date 1700000000.25, other key, 60"

QVariant toIni(const ports::StoredValue& value);

/// Empty for a marked value that is not well formed; a dictionary loses only the entries that are not.
std::optional<ports::StoredValue> fromIni(const QVariant& stored);

}  // namespace vorli::linuxhost
