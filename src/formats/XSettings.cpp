#include "formats/XSettings.h"

#include <cstddef>
#include <cstdint>
#include <variant>

namespace vorli::formats {
namespace {

enum SettingType : std::uint8_t { integer = 0, text = 1, colour = 2 };

// Reads the property's fields in order. A field past the end reads as 0 and marks the property as broken.
class Reader {
 public:
  explicit Reader(std::string_view bytes) : bytes_(bytes) { bigEndian_ = number<std::uint8_t>() == 1; }

  bool broken() const { return broken_; }

  template <typename Number>
  Number number() {
    std::uint32_t value = 0;
    const auto place = take(sizeof(Number));
    for (std::size_t i = 0; i < place.size(); ++i) {
      const auto byte = static_cast<unsigned char>(place[bigEndian_ ? i : place.size() - 1 - i]);
      value = value << 8U | byte;
    }
    return static_cast<Number>(value);
  }

  // Takes `length` bytes and the padding to a multiple of four.
  std::string_view padded(std::size_t length) {
    const auto place = take(length);
    take((4 - length % 4) % 4);
    return place;
  }

  std::string_view take(std::size_t length) {
    const auto left = bytes_.size() - at_;
    if (broken_ || length > left) {
      broken_ = true;
      return {};
    }
    const auto place = bytes_.substr(at_, length);
    at_ += length;
    return place;
  }

 private:
  std::string_view bytes_;
  std::size_t at_ = 0;
  bool bigEndian_ = false;
  bool broken_ = false;
};

using SettingValue = std::variant<std::int32_t, std::string_view>;

// Returns the setting's value; empty when it is missing or a colour.
std::optional<SettingValue> find(std::string_view bytes, std::string_view name) {
  Reader reader(bytes);
  reader.take(3);
  reader.number<std::uint32_t>();  // serial
  const auto count = reader.number<std::uint32_t>();
  for (std::uint32_t i = 0; i < count && !reader.broken(); ++i) {
    const auto type = reader.number<std::uint8_t>();
    reader.take(1);
    const auto nameLength = reader.number<std::uint16_t>();
    const auto settingName = reader.padded(nameLength);
    reader.number<std::uint32_t>();  // serial of the last change
    SettingValue value = 0;
    switch (type) {
      case integer:
        value = reader.number<std::int32_t>();
        break;
      case colour:
        reader.take(8);
        continue;
      case text:
        value = reader.padded(reader.number<std::uint32_t>());
        break;
      default:
        return std::nullopt;
    }
    if (settingName == name && !reader.broken()) return value;
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::string> xSettingsText(std::string_view bytes, std::string_view name) {
  const auto value = find(bytes, name);
  const auto* text = value ? std::get_if<std::string_view>(&*value) : nullptr;
  return text ? std::optional<std::string>(*text) : std::nullopt;
}

std::optional<std::int32_t> xSettingsNumber(std::string_view bytes, std::string_view name) {
  const auto value = find(bytes, name);
  const auto* number = value ? std::get_if<std::int32_t>(&*value) : nullptr;
  return number ? std::optional<std::int32_t>(*number) : std::nullopt;
}

}  // namespace vorli::formats
