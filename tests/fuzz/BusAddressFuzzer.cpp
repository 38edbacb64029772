#include "formats/BusAddress.h"
#include "tests/fuzz/Fuzz.h"

#include <string>

using namespace vorli::formats;

namespace {

std::string textOf(const BusAddress& address) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string text = address.isAbstract ? "unix:abstract=" : "unix:path=";
  for (const char character : address.socket) {
    const auto byte = static_cast<unsigned char>(character);
    text += {'%', digits[byte / 16], digits[byte % 16]};
  }
  return text;
}

}  // namespace

void fuzz(std::string_view bytes) {
  const auto address = parseBusAddress(bytes);
  FUZZ_CHECK(parseBusAddress(bytes.substr(0, bytes.find(';'))) == address);
  if (!address) return;
  FUZZ_CHECK(bytes.starts_with("unix:") && address->socket.size() < bytes.size());
  FUZZ_CHECK(address->isAbstract || !address->socket.empty());
  FUZZ_CHECK(parseBusAddress(textOf(*address)) == address);
}
