#pragma once

#include "base/Date.h"

#include <cstdint>
#include <map>
#include <string>
#include <variant>
#include <vector>

namespace vorli {

/// Value of an entry in a stored dictionary.
using StoredEntry = std::variant<bool, std::int64_t, double, std::string, Date>;
using StoredDictionary = std::map<std::string, StoredEntry>;

/// Value of a key among the user's preferences.
using StoredValue =
    std::variant<bool, std::int64_t, double, std::string, Date, std::vector<std::string>, StoredDictionary>;

}  // namespace vorli
