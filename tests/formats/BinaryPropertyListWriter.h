#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vorli::formats {

/// The lowest `width` bytes of a number, most significant first.
inline std::string bigEndian(std::uint64_t value, std::size_t width) {
  std::string bytes(width, '\0');
  for (std::size_t i = 0; i < width && i < 8; ++i) {
    bytes[width - 1 - i] = static_cast<char>(value >> 8 * i & 0xFF);
  }
  return bytes;
}

/// Writes binary property lists. Checks nothing, so that tests can write broken ones.
class BinaryPropertyListWriter {
 public:
  /// Numbers of objects, in the order of their writing.
  using Number = std::uint64_t;

  explicit BinaryPropertyListWriter(std::size_t referenceSize = 2) : referenceSize_(referenceSize) {}

  Number add(std::string_view object) {
    offsets_.push_back(8 + objects_.size());
    objects_ += object;
    return offsets_.size() - 1;
  }
  /// An object at the same place as another one, or inside it.
  Number addAt(std::uint64_t offset) {
    offsets_.push_back(offset);
    return offsets_.size() - 1;
  }
  std::uint64_t offsetOf(Number number) const { return offsets_[number]; }

  Number boolean(bool value) { return add(value ? "\x09" : "\x08"); }
  Number integer(std::int64_t value) { return add("\x13" + bigEndian(static_cast<std::uint64_t>(value), 8)); }
  Number byte(std::uint8_t value) { return add("\x10" + bigEndian(value, 1)); }
  Number text(std::string_view ascii) { return add(counted(0x50, ascii.size()) + std::string(ascii)); }
  Number utf16(std::u16string_view units) {
    auto object = counted(0x60, units.size());
    for (const char16_t unit : units) object += bigEndian(unit, 2);
    return add(object);
  }
  Number data(std::string_view bytes) { return add(counted(0x40, bytes.size()) + std::string(bytes)); }
  Number uid(std::uint32_t value) { return add("\x83" + bigEndian(value, 4)); }
  Number array(const std::vector<Number>& elements) { return add(arrayBytes(0xA0, elements)); }
  Number set(const std::vector<Number>& elements) { return add(arrayBytes(0xC0, elements)); }
  Number dictionary(const std::vector<std::pair<Number, Number>>& entries) {
    auto object = counted(0xD0, entries.size());
    for (const auto& entry : entries) object += bigEndian(entry.first, referenceSize_);
    for (const auto& entry : entries) object += bigEndian(entry.second, referenceSize_);
    return add(object);
  }
  /// A dictionary that is written together with its keys.
  Number keyed(const std::vector<std::pair<std::string, Number>>& entries) {
    std::vector<std::pair<Number, Number>> numbers;
    for (const auto& [key, value] : entries) numbers.emplace_back(text(key), value);
    return dictionary(numbers);
  }

  /// Marker and count of an object with `count` parts.
  static std::string counted(std::uint8_t type, std::uint64_t count) {
    if (count < 15) return {static_cast<char>(type | count)};
    return static_cast<char>(type | 0xF) + ("\x13" + bigEndian(count, 8));
  }
  std::string arrayBytes(std::uint8_t type, const std::vector<Number>& elements) const {
    auto object = counted(type, elements.size());
    for (const auto element : elements) object += bigEndian(element, referenceSize_);
    return object;
  }

  std::string bytes(Number root) const {
    std::string file = "bplist00" + objects_;
    const auto table = file.size();
    for (const auto offset : offsets_) file += bigEndian(offset, offsetSize);
    return file + trailer(offsetSize, referenceSize_, offsets_.size(), root, table);
  }

  static std::string trailer(std::uint64_t offsetSize, std::uint64_t referenceSize, std::uint64_t count,
                             std::uint64_t root, std::uint64_t table) {
    return std::string(6, '\0') + bigEndian(offsetSize, 1) + bigEndian(referenceSize, 1) +
           bigEndian(count, 8) + bigEndian(root, 8) + bigEndian(table, 8);
  }

  static constexpr std::size_t offsetSize = 4;

 private:
  std::size_t referenceSize_;
  std::string objects_;
  std::vector<std::uint64_t> offsets_;
};

}  // namespace vorli::formats
