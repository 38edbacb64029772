#include "formats/BusAddress.h"

#include <charconv>
#include <utility>

namespace vorli::formats {

namespace {

// Decodes the bytes that an address writes as a percent sign and two hex digits. Empty when one is malformed.
std::optional<std::string> withoutPercents(std::string_view text) {
  std::string plain;
  while (!text.empty()) {
    if (text.front() != '%') {
      plain += text.front();
      text.remove_prefix(1);
      continue;
    }
    unsigned char byte = 0;
    const char* const digits = text.data() + 1;
    if (text.size() < 3 || std::from_chars(digits, digits + 2, byte, 16).ptr != digits + 2)
      return std::nullopt;
    plain += static_cast<char>(byte);
    text.remove_prefix(3);
  }
  return plain;
}

// The value of a key in "unix:KEY=VALUE,KEY=VALUE".
std::optional<std::string> addressValue(std::string_view address, std::string_view key) {
  constexpr std::string_view kind = "unix:";
  if (!address.starts_with(kind)) return std::nullopt;
  address.remove_prefix(kind.size());
  while (!address.empty()) {
    const auto pair = address.substr(0, address.find(','));
    if (pair.starts_with(key) && pair.substr(key.size()).starts_with('=')) {
      return withoutPercents(pair.substr(key.size() + 1));
    }
    address.remove_prefix(pair.size());
    if (!address.empty()) address.remove_prefix(1);
  }
  return std::nullopt;
}

}  // namespace

std::optional<BusAddress> parseBusAddress(std::string_view text) {
  const auto first = text.substr(0, text.find(';'));
  if (auto path = addressValue(first, "path")) {
    if (path->empty()) return std::nullopt;
    return BusAddress{std::move(*path), false};
  }
  if (auto name = addressValue(first, "abstract")) return BusAddress{std::move(*name), true};
  return std::nullopt;
}

}  // namespace vorli::formats
