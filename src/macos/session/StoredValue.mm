#include "macos/session/StoredValue.h"

#include "macos/Text.h"

#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace vorli::machost {

namespace {

std::optional<StoredEntry> storedNumber(NSNumber* number) {
  // Booleans are numbers as well: only the type of the underlying object distinguishes them.
  const auto raw = (__bridge CFTypeRef)number;
  if (CFGetTypeID(raw) == CFBooleanGetTypeID()) return StoredEntry(static_cast<bool>(number.boolValue));
  if (CFNumberIsFloatType((__bridge CFNumberRef)number)) return StoredEntry(number.doubleValue);
  return StoredEntry(std::int64_t{number.longLongValue});
}

std::optional<StoredEntry> storedEntry(id object) {
  if ([object isKindOfClass:NSNumber.class]) return storedNumber(static_cast<NSNumber*>(object));
  if ([object isKindOfClass:NSDate.class])
    return StoredEntry(Date{static_cast<NSDate*>(object).timeIntervalSince1970});
  if (auto text = textIn(object)) return StoredEntry(*std::move(text));
  return std::nullopt;
}

std::optional<StoredValue> storedTexts(NSArray* array) {
  std::vector<std::string> texts;
  for (id object in array) {
    auto text = textIn(object);
    if (!text) return std::nullopt;
    texts.push_back(*std::move(text));
  }
  return StoredValue(std::move(texts));
}

StoredDictionary storedDictionary(NSDictionary* dictionary) {
  StoredDictionary entries;
  for (id key in dictionary) {
    const auto name = textIn(key);
    auto entry = storedEntry(dictionary[key]);
    if (name && entry) entries.emplace(*name, *std::move(entry));
  }
  return entries;
}

id objectFor(bool value) {
  return [NSNumber numberWithBool:value];
}

id objectFor(std::int64_t value) {
  return [NSNumber numberWithLongLong:value];
}

id objectFor(double value) {
  return [NSNumber numberWithDouble:value];
}

id objectFor(const std::string& value) {
  return stringOf(value);
}

id objectFor(Date value) {
  return [NSDate dateWithTimeIntervalSince1970:value.secondsSince1970];
}

id objectFor(const std::vector<std::string>& texts) {
  NSMutableArray* const array = [[NSMutableArray alloc] init];
  for (const auto& text : texts) [array addObject:stringOf(text)];
  return array;
}

id objectFor(const StoredDictionary& entries) {
  NSMutableDictionary* const dictionary = [[NSMutableDictionary alloc] init];
  for (const auto& [key, entry] : entries)
    dictionary[stringOf(key)] = std::visit([](const auto& value) { return objectFor(value); }, entry);
  return dictionary;
}

}  // namespace

std::optional<StoredValue> storedValue(id object) {
  if ([object isKindOfClass:NSArray.class]) return storedTexts(static_cast<NSArray*>(object));
  if ([object isKindOfClass:NSDictionary.class]) return storedDictionary(static_cast<NSDictionary*>(object));
  const auto entry = storedEntry(object);
  if (!entry) return std::nullopt;
  return std::visit([](const auto& value) { return StoredValue(value); }, *entry);
}

id objectOf(const StoredValue& value) {
  return std::visit([](const auto& held) { return objectFor(held); }, value);
}

}  // namespace vorli::machost
