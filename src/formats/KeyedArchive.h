#pragma once

#include "formats/PropertyList.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorli::formats {

/// Objects that NSKeyedArchiver wrote, decoded one field at a time when they are asked for.
///
/// Archives are cyclic (an item names its container) and may name one object, or one long collection, from
/// many places. A reader of a whole archive therefore follows fixed levels and bounds the sum of what it
/// reads.
class KeyedArchive {
 public:
  class Object;

  /// `classes` are the names that the caller decodes itself, in addition to the Foundation's arrays, sets and
  /// so on. Error: why the list is not a keyed archive.
  [[nodiscard]] static std::expected<KeyedArchive, std::string> open(PropertyList list,
                                                                     std::vector<std::string> classes);

  /// Empty when the archive has no root object.
  std::optional<Object> root() const;

 private:
  KeyedArchive(PropertyList list, std::vector<std::string> classes);

  bool isKnown(std::string_view className) const;
  std::optional<PropertyList::Value> entry(std::uint32_t number) const;
  std::optional<Object> objectAt(std::optional<PropertyList::Value> reference) const;

  PropertyList list_;
  std::vector<std::string> classes_;
};

/// One object of an archive: a light handle that must not outlive the archive, nor be used after it has
/// moved. A field that is missing or of another type reads as empty and does not affect other fields.
class KeyedArchive::Object {
 public:
  /// Equal for the same object, and for nothing else in the same archive.
  std::uint32_t number() const { return number_; }

  /// The class to decode the object as: its own when that is known, otherwise the first known one that the
  /// archive hints at. Empty for plain texts, data and numbers, and for objects of an unknown class.
  std::string_view className() const;

  /// A field that refers to another object. Empty for nil.
  std::optional<Object> object(std::string_view key) const;
  /// A field that holds a number; 0 when there is none. Reals lose their fraction; numbers out of range are
  /// clamped.
  std::int64_t integer(std::string_view key) const;

  /// The value of a plain text or of an NSMutableString.
  std::optional<std::string_view> text() const;
  /// The bytes of plain data or of an NSMutableData.
  std::optional<std::string_view> data() const;
  std::optional<std::array<std::uint8_t, 16>> uuid() const;

  /// Elements of an NSArray in order, without those that do not exist.
  std::optional<std::vector<Object>> arrayElements() const;
  /// Elements of an NSSet, each once, in unspecified order.
  std::optional<std::vector<Object>> setElements() const;
  /// The value of an NSDictionary whose keys are all texts; empty for every other object.
  std::optional<Object> entry(std::string_view key) const;

 private:
  friend class KeyedArchive;
  Object(const KeyedArchive& archive, std::uint32_t number) : archive_(&archive), number_(number) {}
  PropertyList::Value value() const;
  std::optional<PropertyList::Value> field(std::string_view key) const;
  bool isOneOf(std::string_view first, std::string_view second) const;
  std::optional<std::vector<Object>> elements(std::string_view key) const;

  const KeyedArchive* archive_;
  std::uint32_t number_;
};

}  // namespace vorli::formats
