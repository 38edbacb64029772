#include "formats/XSettings.h"
#include "tests/fuzz/Fuzz.h"

using namespace vorli::formats;

namespace {

std::string number(std::size_t value, int width) {
  std::string bytes;
  for (int i = 0; i < width; ++i) bytes += static_cast<char>(value >> (8 * i) & 0xFF);
  return bytes;
}

std::string padded(std::string_view text) {
  return std::string(text) + std::string((4 - text.size() % 4) % 4, '\0');
}

// A property with one text setting, in little endian.
std::string propertyOf(std::string_view name, std::string_view text) {
  return number(0, 4) + number(7, 4) + number(1, 4) + number(1, 2) + number(name.size(), 2) + padded(name) +
         number(7, 4) + number(text.size(), 4) + padded(text);
}

}  // namespace

void fuzz(std::string_view bytes) {
  for (const std::string_view name : {"Net/ThemeName", "Xft/DPI", ""}) {
    const auto text = xSettingsText(bytes, name);
    FUZZ_CHECK(!text || !xSettingsNumber(bytes, name));
    FUZZ_CHECK(!text || text->size() <= bytes.size());

    const auto whole = propertyOf(name, bytes);
    FUZZ_CHECK(xSettingsText(whole, name) == bytes);
    FUZZ_CHECK(!xSettingsNumber(whole, name));
    FUZZ_CHECK(!xSettingsText(std::string_view(whole).substr(0, whole.size() - 1), name));
  }
}
