#pragma once

#include "tests/formats/BinaryPropertyListWriter.h"

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vorli::formats {

/// Writes keyed archives as binary property lists. Checks nothing, so that tests can write broken ones.
class KeyedArchiveWriter {
 public:
  using Number = BinaryPropertyListWriter::Number;  // of a value in the property list
  using Reference = std::uint32_t;                  // of an object in the archive
  using Fields = std::vector<std::pair<std::string, Number>>;

  static constexpr Reference noObject = 0;

  KeyedArchiveWriter() { entries_.push_back(list_.text("$null")); }

  /// For inline values: scalars, data, texts.
  BinaryPropertyListWriter& inlined() { return list_; }
  Number refer(Reference object) { return list_.uid(object); }

  /// Adds a value to the table: an object that is stored as its own value, or anything else.
  Reference add(Number value) {
    entries_.push_back(value);
    return static_cast<Reference>(entries_.size() - 1);
  }
  Reference text(std::string_view ascii) { return add(list_.text(ascii)); }
  Reference data(std::string_view bytes) { return add(list_.data(bytes)); }

  /// The number of the next object, so that earlier objects can refer to it.
  Reference next() const { return static_cast<Reference>(entries_.size()); }

  Reference classNamed(std::string_view name, const std::vector<std::string>& superclasses = {},
                       const std::vector<std::string>& hints = {}) {
    std::vector<Number> names{list_.text(name)};
    for (const auto& superclass : superclasses) names.push_back(list_.text(superclass));
    names.push_back(list_.text("NSObject"));
    Fields fields{{"$classname", names.front()}, {"$classes", list_.array(names)}};
    std::vector<Number> hintTexts;
    for (const auto& hint : hints) hintTexts.push_back(list_.text(hint));
    if (!hints.empty()) fields.emplace_back("$classhints", list_.array(hintTexts));
    return add(list_.keyed(fields));
  }
  Reference object(Reference itsClass, Fields fields) {
    fields.emplace_back("$class", refer(itsClass));
    return add(list_.keyed(fields));
  }

  Reference collection(Reference itsClass, const std::vector<Reference>& elements) {
    return object(itsClass, {{"NS.objects", references(elements)}});
  }
  Reference dictionary(Reference itsClass, const std::vector<std::pair<Reference, Reference>>& entries) {
    std::vector<Reference> keys, values;
    for (const auto& [key, value] : entries) {
      keys.push_back(key);
      values.push_back(value);
    }
    return object(itsClass, {{"NS.keys", references(keys)}, {"NS.objects", references(values)}});
  }
  Number references(const std::vector<Reference>& objects) {
    std::vector<Number> numbers;
    for (const auto object : objects) numbers.push_back(refer(object));
    return list_.array(numbers);
  }

  std::string bytes(Reference root) { return bytesWithTop({{"root", refer(root)}}); }
  std::string bytesWithTop(const Fields& top, std::string_view archiver = "NSKeyedArchiver",
                           std::int64_t version = 100000) {
    const auto root = list_.keyed({{"$version", list_.integer(version)},
                                   {"$archiver", list_.text(archiver)},
                                   {"$top", list_.keyed(top)},
                                   {"$objects", list_.array(entries_)}});
    return list_.bytes(root);
  }

 private:
  BinaryPropertyListWriter list_{3};
  std::vector<Number> entries_;
};

}  // namespace vorli::formats
