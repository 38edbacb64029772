#include "base/UTF8.h"

#include <cstdint>
#include <cstring>

namespace vorli {

namespace {

struct Sequence {
  std::size_t length;  // of the character or the ill-formed piece; at least 1
  bool wellFormed;
};

// The number of bytes that follow a leading byte, and the allowed range of the first of them.
struct Lead {
  std::size_t following;
  unsigned char lowest, highest;
};

Lead leadOf(unsigned char byte) {
  if (byte >= 0xC2 && byte <= 0xDF) return {1, 0x80, 0xBF};
  if (byte == 0xE0) return {2, 0xA0, 0xBF};
  if (byte == 0xED) return {2, 0x80, 0x9F};
  if (byte >= 0xE1 && byte <= 0xEF) return {2, 0x80, 0xBF};
  if (byte == 0xF0) return {3, 0x90, 0xBF};
  if (byte >= 0xF1 && byte <= 0xF3) return {3, 0x80, 0xBF};
  if (byte == 0xF4) return {3, 0x80, 0x8F};
  return {0, 0, 0};
}

// Reads the sequence at the front of `bytes`, which is not empty.
Sequence readSequence(std::string_view bytes) {
  const auto at = [bytes](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  if (at(0) < 0x80) return {1, true};
  const Lead lead = leadOf(at(0));
  if (lead.following == 0) return {1, false};
  for (std::size_t i = 1; i <= lead.following; ++i) {
    const unsigned char lowest = i == 1 ? lead.lowest : 0x80;
    const unsigned char highest = i == 1 ? lead.highest : 0xBF;
    if (i >= bytes.size() || at(i) < lowest || at(i) > highest) return {i, false};
  }
  return {lead.following + 1, true};
}

}  // namespace

bool isASCII(std::string_view bytes) {
  constexpr std::uint64_t highBits = 0x8080808080808080;
  std::uint64_t word;
  for (; bytes.size() >= sizeof word; bytes.remove_prefix(sizeof word)) {
    std::memcpy(&word, bytes.data(), sizeof word);
    if (word & highBits) return false;
  }
  for (const char c : bytes) {
    if (static_cast<unsigned char>(c) & 0x80) return false;
  }
  return true;
}

bool isUTF8(std::string_view bytes) {
  if (isASCII(bytes)) return true;
  while (!bytes.empty()) {
    const auto [length, wellFormed] = readSequence(bytes);
    if (!wellFormed) return false;
    bytes.remove_prefix(length);
  }
  return true;
}

std::string repairedUTF8(std::string_view bytes) {
  if (isUTF8(bytes)) return std::string(bytes);
  std::string repaired;
  while (!bytes.empty()) {
    const auto [length, wellFormed] = readSequence(bytes);
    repaired += wellFormed ? bytes.substr(0, length) : replacementCharacter;
    bytes.remove_prefix(length);
  }
  return repaired;
}

void appendUTF8(std::string& text, char32_t character) {
  const auto put = [&text](char32_t byte) { text += static_cast<char>(byte); };
  const auto putFollowing = [&](int shift) { put(0x80 | (character >> shift & 0x3F)); };
  if (character > 0x10FFFF || (character >= 0xD800 && character <= 0xDFFF)) {
    text += replacementCharacter;
  } else if (character < 0x80) {
    put(character);
  } else if (character < 0x800) {
    put(0xC0 | character >> 6);
    putFollowing(0);
  } else if (character < 0x10000) {
    put(0xE0 | character >> 12);
    putFollowing(6);
    putFollowing(0);
  } else {
    put(0xF0 | character >> 18);
    putFollowing(12);
    putFollowing(6);
    putFollowing(0);
  }
}

}  // namespace vorli
