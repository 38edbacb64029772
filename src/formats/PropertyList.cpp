#include "formats/PropertyList.h"

#include "base/Assert.h"
#include "formats/BinaryPropertyList.h"
#include "formats/XMLPropertyList.h"

#include <algorithm>
#include <bit>
#include <limits>

namespace vorli::formats {

PropertyList::Value PropertyList::root() const {
  return {*this, root_};
}

std::optional<bool> PropertyList::Value::boolean() const {
  if (kind() != Kind::boolean) return std::nullopt;
  return node().bits != 0;
}

std::optional<std::int64_t> PropertyList::Value::integer() const {
  if (kind() != Kind::integer) return std::nullopt;
  return static_cast<std::int64_t>(node().bits);
}

std::optional<double> PropertyList::Value::real() const {
  if (kind() != Kind::real) return std::nullopt;
  return std::bit_cast<double>(node().bits);
}

std::optional<Date> PropertyList::Value::date() const {
  if (kind() != Kind::date) return std::nullopt;
  return Date{std::bit_cast<double>(node().bits)};
}

std::optional<std::uint32_t> PropertyList::Value::uid() const {
  if (kind() != Kind::uid) return std::nullopt;
  return static_cast<std::uint32_t>(node().bits);
}

std::optional<std::string_view> PropertyList::Value::bytesOf(Kind wanted) const {
  if (kind() != wanted) return std::nullopt;
  return std::string_view(list_->bytes_).substr(node().bits, node().count);
}

std::optional<std::string_view> PropertyList::Value::text() const {
  return bytesOf(Kind::text);
}

std::optional<std::string_view> PropertyList::Value::data() const {
  return bytesOf(Kind::data);
}

std::size_t PropertyList::Value::count() const {
  const bool holdsOthers = kind() == Kind::array || kind() == Kind::set || kind() == Kind::dictionary;
  return holdsOthers ? node().count : 0;
}

PropertyList::Value PropertyList::Value::element(std::size_t index) const {
  VORLI_ASSERT(kind() != Kind::dictionary && index < count());
  return {*list_, list_->references_[node().bits + index]};
}

std::optional<PropertyList::Value> PropertyList::Value::find(std::string_view key) const {
  if (kind() != Kind::dictionary) return std::nullopt;
  const auto at = [this](std::size_t entry, std::size_t part) {
    return Value(*list_, list_->references_[node().bits + 2 * entry + part]);
  };
  std::size_t first = 0;
  for (std::size_t last = count(); first < last;) {
    const auto middle = first + (last - first) / 2;
    if (*at(middle, 0).text() < key) {
      first = middle + 1;
    } else {
      last = middle;
    }
  }
  if (first == count() || *at(first, 0).text() != key) return std::nullopt;
  return at(first, 1);
}

std::expected<PropertyList, std::string> readPropertyList(std::string_view bytes, std::size_t largest) {
  // The tables count values and bytes in 32 bits, and a text may grow by half when it is converted to UTF-8.
  constexpr std::size_t countable = std::numeric_limits<std::uint32_t>::max() / 2;
  if (bytes.size() > std::min(largest, countable)) return std::unexpected("the property list is too large");
  return isBinaryPropertyList(bytes) ? readBinaryPropertyList(bytes) : readXMLPropertyList(bytes);
}

}  // namespace vorli::formats
