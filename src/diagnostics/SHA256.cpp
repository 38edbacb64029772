#include "diagnostics/SHA256.h"

#include <bit>
#include <cstddef>

namespace vorli {

namespace {

using HashState = std::array<std::uint32_t, 8>;

// Fractions of the square roots of the first 8 primes.
constexpr HashState initialState{
    0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a, 0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19,
};

// Fractions of the cube roots of the first 64 primes.
constexpr std::array<std::uint32_t, 64> roundConstants{
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2,
};

constexpr std::size_t blockBytes = 64;
constexpr std::size_t lengthBytes = 8;

using Block = std::array<std::uint8_t, blockBytes>;
using Schedule = std::array<std::uint32_t, 64>;

Schedule scheduleOf(const Block& block) {
  Schedule words{};
  for (std::size_t i = 0; i < blockBytes; ++i) words[i / 4] = words[i / 4] << 8 | block[i];
  for (std::size_t i = 16; i < words.size(); ++i) {
    const std::uint32_t early = words[i - 15];
    const std::uint32_t late = words[i - 2];
    const std::uint32_t mixedEarly = std::rotr(early, 7) ^ std::rotr(early, 18) ^ early >> 3;
    const std::uint32_t mixedLate = std::rotr(late, 17) ^ std::rotr(late, 19) ^ late >> 10;
    words[i] = words[i - 16] + mixedEarly + words[i - 7] + mixedLate;
  }
  return words;
}

void addBlock(HashState& state, const Block& block) {
  const Schedule words = scheduleOf(block);
  auto [a, b, c, d, e, f, g, h] = state;
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::uint32_t choice = (e & f) ^ (~e & g);
    const std::uint32_t majority = (a & b) ^ (a & c) ^ (b & c);
    const std::uint32_t mixedE = std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25);
    const std::uint32_t mixedA = std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22);
    const std::uint32_t first = h + mixedE + choice + roundConstants[i] + words[i];
    const std::uint32_t second = mixedA + majority;
    h = g;
    g = f;
    f = e;
    e = d + first;
    d = c;
    c = b;
    b = a;
    a = first + second;
  }
  const HashState mixed{a, b, c, d, e, f, g, h};
  for (std::size_t i = 0; i < state.size(); ++i) state[i] += mixed[i];
}

// Adds the bytes after the last full block, the end mark, zeros, and the length in bits.
void addEnd(HashState& state, std::string_view rest, std::uint64_t allBytes) {
  Block block{};
  rest.copy(reinterpret_cast<char*>(block.data()), rest.size());
  block[rest.size()] = 0x80;
  if (rest.size() + 1 + lengthBytes > blockBytes) {
    addBlock(state, block);
    block.fill(0);
  }
  const std::uint64_t bits = allBytes * 8;
  for (std::size_t i = 0; i < lengthBytes; ++i) {
    block[blockBytes - 1 - i] = static_cast<std::uint8_t>(bits >> (8 * i));
  }
  addBlock(state, block);
}

}  // namespace

SHA256Digest sha256(std::string_view bytes) {
  HashState state = initialState;
  auto rest = bytes;
  for (; rest.size() >= blockBytes; rest.remove_prefix(blockBytes)) {
    Block block;
    rest.copy(reinterpret_cast<char*>(block.data()), blockBytes);
    addBlock(state, block);
  }
  addEnd(state, rest, bytes.size());
  SHA256Digest digest;
  for (std::size_t i = 0; i < digest.size(); ++i) {
    digest[i] = static_cast<std::uint8_t>(state[i / 4] >> (24 - 8 * (i % 4)));
  }
  return digest;
}

}  // namespace vorli
