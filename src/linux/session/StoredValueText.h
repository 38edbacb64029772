#pragma once

#include "ports/KeyValueStore.h"

#include <QStringList>
#include <QVariant>
#include <optional>

namespace vorli::linuxhost {

// Format of typed values in an ini file, whose own values are all text. Booleans and numbers are written
// plainly, so that a person can edit them. A value that would otherwise be read as another type gets a mark:
//   true  60  0.5  opt+shift+C  "@String 60"  "@Date 1700000000.25"  "@Strings, a, b"
//   "@Dictionary, key, @Date 1700000000.25, other key, 60"

QVariant toIni(const ports::StoredValue& value);

/// Parses a stored value. Empty for a malformed value with a mark; a dictionary loses only its malformed
/// entries.
std::optional<ports::StoredValue> fromIni(const QVariant& stored);

}  // namespace vorli::linuxhost
