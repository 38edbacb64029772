#include "formats/KeyedArchive.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace vorli::formats {

namespace {

using Kind = PropertyList::Kind;
using Value = PropertyList::Value;

// Names of the archive's own classes; objects of classes that are not listed read as empty.
constexpr std::string_view foundationClasses[] = {
    "NSArray", "NSData",          "NSDictionary", "NSMutableArray", "NSMutableData", "NSMutableDictionary",
    "NSSet",   "NSMutableString", "NSMutableSet", "NSString",       "NSUUID",
};

constexpr std::uint32_t nil = 0;  // number of the object that represents nil

// A class hints at one or two others. Without a limit, a long list would be read again for each object of the
// class.
constexpr std::size_t mostHints = 16;

std::int64_t truncated(double value) {
  constexpr double limit = 9223372036854775808.0;  // 2^63
  if (std::isnan(value)) return 0;
  if (value >= limit) return std::numeric_limits<std::int64_t>::max();
  if (value < -limit) return std::numeric_limits<std::int64_t>::min();
  return static_cast<std::int64_t>(value);
}

}  // namespace

KeyedArchive::KeyedArchive(PropertyList list, std::vector<std::string> classes)
    : list_(std::move(list)), classes_(std::move(classes)) {}

std::expected<KeyedArchive, std::string> KeyedArchive::open(PropertyList list,
                                                            std::vector<std::string> classes) {
  const auto top = list.root();
  const auto archiver = top.find("$archiver").and_then(&Value::text);
  const auto version = top.find("$version").and_then(&Value::integer);
  const auto objects = top.find("$objects");
  if (archiver != "NSKeyedArchiver") return std::unexpected("not written by the keyed archiver");
  if (version != 100000) return std::unexpected("an archive of an unknown version");
  if (!objects || objects->kind() != Kind::array) return std::unexpected("an archive without objects");
  return KeyedArchive(std::move(list), std::move(classes));
}

std::optional<KeyedArchive::Object> KeyedArchive::root() const {
  const auto top = list_.root().find("$top");
  return top ? objectAt(top->find("root")) : std::nullopt;
}

bool KeyedArchive::isKnown(std::string_view className) const {
  return std::ranges::find(foundationClasses, className) != std::end(foundationClasses) ||
         std::ranges::find(classes_, className) != classes_.end();
}

// Returns one entry of the table of objects.
std::optional<Value> KeyedArchive::entry(std::uint32_t number) const {
  const auto objects = list_.root().find("$objects");
  if (!objects || number >= objects->count()) return std::nullopt;
  return objects->element(number);
}

// Returns the object that a value refers to; empty for nil, for a number out of range and for any other
// value.
std::optional<KeyedArchive::Object> KeyedArchive::objectAt(std::optional<Value> reference) const {
  const auto number = reference.and_then(&Value::uid);
  if (!number || *number == nil || !entry(*number)) return std::nullopt;
  return Object(*this, *number);
}

Value KeyedArchive::Object::value() const {
  return *archive_->entry(number_);
}

std::optional<Value> KeyedArchive::Object::field(std::string_view key) const {
  return value().find(key);
}

std::string_view KeyedArchive::Object::className() const {
  const auto description = archive_->objectAt(field("$class"));
  if (!description) return {};
  const auto name = description->field("$classname").and_then(&Value::text);
  if (!name || archive_->isKnown(*name)) return name.value_or(std::string_view());
  const auto hints = description->field("$classhints");
  const auto hintCount = hints && hints->kind() == Kind::array ? std::min(hints->count(), mostHints) : 0;
  for (std::size_t i = 0; i < hintCount; ++i) {
    const auto hint = hints->element(i).text();
    if (hint && archive_->isKnown(*hint)) return *hint;
  }
  return {};
}

std::optional<KeyedArchive::Object> KeyedArchive::Object::object(std::string_view key) const {
  return archive_->objectAt(field(key));
}

std::int64_t KeyedArchive::Object::integer(std::string_view key) const {
  const auto number = field(key);
  if (!number) return 0;
  if (const auto value = number->real()) return truncated(*value);
  if (const auto value = number->boolean()) return *value ? 1 : 0;
  return number->integer().value_or(0);
}

bool KeyedArchive::Object::isOneOf(std::string_view first, std::string_view second) const {
  const auto name = className();
  return name == first || name == second;
}

std::optional<std::string_view> KeyedArchive::Object::text() const {
  if (const auto plain = value().text()) return plain;
  if (!isOneOf("NSString", "NSMutableString")) return std::nullopt;
  return field("NS.string").and_then(&Value::text);
}

std::optional<std::string_view> KeyedArchive::Object::data() const {
  if (const auto plain = value().data()) return plain;
  if (!isOneOf("NSData", "NSMutableData")) return std::nullopt;
  return field("NS.data").and_then(&Value::data);
}

std::optional<std::array<std::uint8_t, 16>> KeyedArchive::Object::uuid() const {
  std::array<std::uint8_t, 16> uuid;
  const auto bytes = field("NS.uuidbytes").and_then(&Value::data);
  if (className() != "NSUUID" || !bytes || bytes->size() != uuid.size()) return std::nullopt;
  std::ranges::transform(*bytes, uuid.begin(), [](char byte) { return static_cast<std::uint8_t>(byte); });
  return uuid;
}

std::optional<std::vector<KeyedArchive::Object>> KeyedArchive::Object::elements(std::string_view key) const {
  const auto references = field(key);
  if (!references || references->kind() != Kind::array) return std::nullopt;
  std::vector<Object> elements;
  elements.reserve(references->count());
  for (std::size_t i = 0; i < references->count(); ++i) {
    if (const auto element = archive_->objectAt(references->element(i))) elements.push_back(*element);
  }
  return elements;
}

std::optional<std::vector<KeyedArchive::Object>> KeyedArchive::Object::arrayElements() const {
  return isOneOf("NSArray", "NSMutableArray") ? elements("NS.objects") : std::nullopt;
}

std::optional<std::vector<KeyedArchive::Object>> KeyedArchive::Object::setElements() const {
  if (!isOneOf("NSSet", "NSMutableSet")) return std::nullopt;
  auto objects = elements("NS.objects");
  if (!objects) return std::nullopt;
  std::ranges::sort(*objects, {}, &Object::number);
  const auto repeated = std::ranges::unique(*objects, {}, &Object::number);
  objects->erase(repeated.begin(), repeated.end());
  return objects;
}

std::optional<KeyedArchive::Object> KeyedArchive::Object::entry(std::string_view wanted) const {
  if (!isOneOf("NSDictionary", "NSMutableDictionary")) return std::nullopt;
  const auto keys = field("NS.keys"), objects = field("NS.objects");
  const bool areArrays = keys && objects && keys->kind() == Kind::array && objects->kind() == Kind::array;
  if (!areArrays || keys->count() != objects->count()) return std::nullopt;
  std::optional<Object> found;
  for (std::size_t i = 0; i < keys->count(); ++i) {
    const auto key = archive_->objectAt(keys->element(i));
    const auto text = key ? key->text() : std::nullopt;
    if (!text) return std::nullopt;
    if (!found && *text == wanted) found = archive_->objectAt(objects->element(i));
  }
  return found;
}

}  // namespace vorli::formats
