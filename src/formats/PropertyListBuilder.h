#pragma once

#include "formats/PropertyList.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace vorli::formats {

/// Builds a property list while its bytes are read, without recursion: containers are opened and closed like
/// brackets, and each value is appended to the innermost one that is open.
class PropertyListBuilder {
 public:
  using Index = std::uint32_t;
  using Kind = PropertyList::Kind;

  /// Selects which of two entries with the same key counts.
  enum class Repeated { firstCounts, lastCounts };

  /// Deepest nesting of containers.
  static constexpr std::size_t deepest = 512;

  explicit PropertyListBuilder(Repeated repeated) : repeated_(repeated) {}

  Index addNull() { return add(Kind::null, 0); }
  Index addBoolean(bool value) { return add(Kind::boolean, value ? 1 : 0); }
  Index addInteger(std::int64_t value) { return add(Kind::integer, static_cast<std::uint64_t>(value)); }
  Index addReal(double value);
  Index addDate(Date date);
  Index addUID(std::uint32_t value) { return add(Kind::uid, value); }
  /// `text` is valid UTF-8.
  Index addText(std::string_view text) { return addBytes(Kind::text, text); }
  Index addData(std::string_view data) { return addBytes(Kind::data, data); }

  /// Opens an array, set or dictionary. False when it would be nested too deep.
  [[nodiscard]] bool open(Kind kind);
  std::size_t depth() const { return open_.size(); }
  /// Contents of the innermost open container so far; of a dictionary, keys and values in turn.
  std::span<const Index> contents() const;
  Kind openKind() const { return open_.back().kind; }
  void append(Index value) { pending_.push_back(value); }
  Index close();
  /// Drops the innermost container and its contents.
  void discard();

  /// Returns a complete value; the handle is valid until the next value is added.
  PropertyList::Value value(Index index) const { return {list_, index}; }

  /// Returns the list; call it after the last container is closed. The builder must not be used afterwards.
  PropertyList finish(Index root);

 private:
  struct Open {
    Kind kind;
    std::size_t start;  // of its contents, in pending_
  };

  Index add(Kind kind, std::uint64_t bits);
  Index addBytes(Kind kind, std::string_view bytes);
  std::vector<std::uint32_t> rankKeys() const;
  void sortEntries(PropertyList::Node& dictionary, const std::vector<std::uint32_t>& ranks);

  Repeated repeated_;
  PropertyList list_;
  std::vector<Open> open_;
  std::vector<Index> pending_;  // the contents of all open containers, the innermost last
};

}  // namespace vorli::formats
