#pragma once

#include "base/Date.h"
#include "ports/KeyValueStore.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vorli {

// Typed reads of the preferences, for every owner of a key. A value of another type reads as false, 0 or
// empty, except that booleans and numbers are converted to each other and from texts.

bool boolForKey(const ports::KeyValueStore& defaults, const std::string& key);
std::int64_t integerForKey(const ports::KeyValueStore& defaults, const std::string& key);
std::optional<std::string> stringForKey(const ports::KeyValueStore& defaults, const std::string& key);
std::optional<Date> dateForKey(const ports::KeyValueStore& defaults, const std::string& key);
std::vector<std::string> stringArrayForKey(const ports::KeyValueStore& defaults, const std::string& key);

}  // namespace vorli
