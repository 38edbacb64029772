#include "ui/linux/XSettings.h"

#include <QtEndian>
#include <cstdint>
#include <variant>

namespace vorli::ui {
namespace {

enum SettingType : std::uint8_t { integer = 0, text = 1, colour = 2 };

// Reads the property's fields one after the other; what would lie past the end reads as 0 and marks it
// broken.
class Reader {
 public:
  explicit Reader(const QByteArray& bytes) : bytes_(bytes) { bigEndian_ = number<std::uint8_t>() == 1; }

  bool broken() const { return broken_; }

  template <typename Number>
  Number number() {
    const auto place = take(sizeof(Number));
    if (broken_) return 0;
    return bigEndian_ ? qFromBigEndian<Number>(place.data()) : qFromLittleEndian<Number>(place.data());
  }

  // The bytes and what fills them up to a multiple of four.
  std::string_view padded(std::size_t length) {
    const auto place = take(length);
    take((4 - length % 4) % 4);
    return place;
  }

  std::string_view take(std::size_t length) {
    const auto left = static_cast<std::size_t>(bytes_.size()) - at_;
    if (broken_ || length > left) {
      broken_ = true;
      return {};
    }
    const std::string_view place(bytes_.constData() + at_, length);
    at_ += length;
    return place;
  }

 private:
  const QByteArray& bytes_;
  std::size_t at_ = 0;
  bool bigEndian_ = false;
  bool broken_ = false;
};

using Value = std::variant<std::int32_t, std::string_view>;

// The value of that name; a colour is none.
std::optional<Value> find(const QByteArray& bytes, std::string_view name) {
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
    Value value = 0;
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

std::optional<std::string> xSettingsText(const QByteArray& bytes, std::string_view name) {
  const auto value = find(bytes, name);
  const auto* text = value ? std::get_if<std::string_view>(&*value) : nullptr;
  return text ? std::optional<std::string>(*text) : std::nullopt;
}

std::optional<std::int32_t> xSettingsNumber(const QByteArray& bytes, std::string_view name) {
  const auto value = find(bytes, name);
  const auto* number = value ? std::get_if<std::int32_t>(&*value) : nullptr;
  return number ? std::optional<std::int32_t>(*number) : std::nullopt;
}

}  // namespace vorli::ui
