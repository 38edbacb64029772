#pragma once

#include "base/Date.h"

#include <cstddef>
#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorli::formats {

/// The values of a property list. Immutable.
///
/// They are kept in one table and refer to each other by number, so a value that the file names from many
/// places exists once. No value contains itself. Walking over everything below a value can still take
/// exponential time, because a small file can refer to the same values repeatedly: look up only what is
/// needed.
class PropertyList {
 public:
  enum class Kind : std::uint8_t {
    null,
    boolean,
    integer,
    real,
    date,
    text,
    data,
    uid,
    array,
    set,
    dictionary
  };
  class Value;

  Value root() const;

 private:
  friend class PropertyListBuilder;

  PropertyList() = default;

  struct Node {
    Kind kind = Kind::null;
    std::uint32_t count = 0;  // bytes of a text or of data, elements, entries
    std::uint64_t bits = 0;   // the scalar itself, or its start in bytes_ or references_
  };

  std::vector<Node> nodes_;
  std::vector<std::uint32_t> references_;  // elements; keys and values of dictionaries in turn, by key
  std::string bytes_;                      // all texts and data
  std::uint32_t root_ = 0;
};

/// One value of a property list: a light handle that must not outlive the list, nor be used after it has
/// moved. Each accessor is empty when the value is of another kind; nothing is converted.
class PropertyList::Value {
 public:
  Kind kind() const { return node().kind; }

  std::optional<bool> boolean() const;
  /// Integers beyond the signed 64 bits keep their lowest 64 bits.
  std::optional<std::int64_t> integer() const;
  std::optional<double> real() const;
  std::optional<Date> date() const;
  /// Valid UTF-8, which may contain NUL.
  std::optional<std::string_view> text() const;
  std::optional<std::string_view> data() const;
  std::optional<std::uint32_t> uid() const;

  /// Elements of an array or set, entries of a dictionary (those whose key is a text); 0 for everything else.
  std::size_t count() const;
  /// Element of an array or set; `index` is less than count().
  Value element(std::size_t index) const;
  /// The dictionary's value for this key, found in logarithmic time. Empty when there is none or this is no
  /// dictionary.
  std::optional<Value> find(std::string_view key) const;

 private:
  friend class PropertyList;
  friend class PropertyListBuilder;
  Value(const PropertyList& list, std::uint32_t index) : list_(&list), index_(index) {}
  const Node& node() const { return list_->nodes_[index_]; }
  std::optional<std::string_view> bytesOf(Kind kind) const;

  const PropertyList* list_;
  std::uint32_t index_;
};

/// Reads a property list, binary or XML. Error: why the bytes are not a property list, or that there are more
/// than `largest`. The memory used is bounded by a small multiple of the bytes given, and the time is nearly
/// linear in them.
[[nodiscard]] std::expected<PropertyList, std::string> readPropertyList(std::string_view bytes,
                                                                        std::size_t largest);

}  // namespace vorli::formats
