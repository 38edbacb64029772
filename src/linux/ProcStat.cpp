#include "linux/ProcStat.h"

#include "linux/KernelText.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>
#include <limits>

namespace vorli::linuxhost {

namespace {

// Ticks and sizes above this are nonsense, and two of them still add up within 64 bits.
constexpr std::uint64_t largestNumber = std::numeric_limits<std::int64_t>::max();
// The identifier and the name with its brackets: the kernel's longest names have 63 bytes.
constexpr std::size_t longestFront = 96;
constexpr std::uint64_t onesInBytes = 0x0101010101010101;
constexpr std::uint64_t largestPages = largestNumber >> 16;  // pages have 64 KiB at most

// The high bit of each byte of `word` that is a blank.
std::uint64_t blanksIn(std::uint64_t word) {
  constexpr std::uint64_t lowBits = 0x7F * onesInBytes;
  const std::uint64_t differences = word ^ (' ' * onesInBytes);
  return ~(((differences & lowBits) + lowBits) | differences | lowBits);
}

// Eight bytes with the first one lowest.
std::uint64_t wordAt(const char* text) {
  std::uint64_t word = 0;
  std::memcpy(&word, text, sizeof word);
  return std::endian::native == std::endian::little ? word : std::byteswap(word);
}

// Walks over fields that are parted by single blanks. It runs for every process of each pass: a reading that
// goes wrong is noted and told once, at the end.
class Fields {
 public:
  Fields(const char* text, const char* end) : at_(text), end_(end) {}

  bool isGood() const { return good_; }
  char next() const { return at_ == end_ ? '\0' : *at_; }

  // By eight bytes as long as there are so many, then one by one.
  void skip(int count) {
    for (; end_ - at_ >= 8; at_ += 8) {
      std::uint64_t blanks = blanksIn(wordAt(at_));
      const int found = static_cast<int>(((blanks >> 7) * onesInBytes) >> 56);
      if (found < count) {
        count -= found;
        continue;
      }
      for (; count > 1; --count) blanks &= blanks - 1;
      at_ += std::countr_zero(blanks) / 8 + 1;
      return;
    }
    for (; count > 0 && at_ != end_; ++at_) count -= *at_ == ' ';
    good_ = good_ && count == 0;
  }

  // The field must be followed by another one: a number at the very end may be cut short.
  std::uint64_t number() {
    if (end_ - at_ >= 8) {
      const std::uint64_t word = wordAt(at_);
      const std::uint64_t blanks = blanksIn(word);
      if (blanks) return shortNumber(word, std::countr_zero(blanks) / 8);
    }
    return longNumber();
  }

 private:
  // Up to seven digits, which stand in `word` before the first blank: all of them at once.
  std::uint64_t shortNumber(std::uint64_t word, int length) {
    at_ += length + 1;
    // Moved up, so that zeroes stand before the number; each byte is a digit then.
    std::uint64_t digits = length > 0 ? (word ^ ('0' * onesInBytes)) << (64 - 8 * length) : onesInBytes << 7;
    constexpr std::uint64_t above9 = (0x7F - 9) * onesInBytes;
    good_ = good_ && (((digits + above9) | digits) & (onesInBytes << 7)) == 0;
    digits = digits * 10 + (digits >> 8);  // pairs, in every second byte
    constexpr std::uint64_t pairs = 0x000000FF000000FF;
    return ((digits & pairs) * 0x000F424000000064 + ((digits >> 16) & pairs) * 0x0000271000000001) >> 32;
  }

  std::uint64_t longNumber() {
    constexpr std::ptrdiff_t mostDigits = 19;  // so many cannot overflow 64 bits
    const char* const first = at_;
    const char* const limit = at_ + std::min(end_ - at_, mostDigits + 1);
    std::uint64_t value = 0;
    unsigned digit = 0;
    for (; at_ != limit && (digit = static_cast<unsigned char>(*at_) - unsigned{'0'}) <= 9; ++at_) {
      value = value * 10 + digit;
    }
    if (at_ == limit || at_ == first || *at_ != ' ' || value > largestNumber) {
      good_ = false;
      return 0;
    }
    ++at_;
    return value;
  }

  const char* at_;
  const char* end_;
  bool good_ = true;
};

}  // namespace

std::optional<ProcStat> parseProcStat(std::string_view text) {
  // "PID (name) state parent ...": the name may hold blanks, brackets and newlines, what follows it cannot.
  const char* const end = text.data() + text.size();
  const auto front = text.substr(0, longestFront);
  const auto* const open = static_cast<const char*>(std::memchr(front.data(), '(', front.size()));
  const auto* const close = static_cast<const char*>(memrchr(front.data(), ')', front.size()));
  if (!open || !close || close < open || end - close < 5) return std::nullopt;  // ") S " and a parent

  ProcStat stat;
  stat.name = {open + 1, close};
  Fields fields(close + 4, end);
  const auto parent = fields.number();
  fields.skip(9);  // group, session, terminal and its group, flags, four counts of faults
  stat.userTicks = fields.number();
  stat.systemTicks = fields.number();
  fields.skip(6);  // two times of children, priority, nice, threads, an interval that is always 0
  stat.startTicks = fields.number();
  stat.hasMemory = fields.next() != '0';
  fields.skip(1);
  stat.residentPages = fields.number();
  if (!fields.isGood() || parent > std::numeric_limits<std::int32_t>::max()) return std::nullopt;
  if (stat.residentPages > largestPages) return std::nullopt;
  stat.parentPID = static_cast<std::int32_t>(parent);
  return stat;
}

std::optional<std::uint64_t> parseResidentPages(std::string_view text) {
  takeWord(text);
  const auto pages = parseWhole(takeWord(text));
  if (!pages || *pages > largestPages) return std::nullopt;
  return pages;
}

}  // namespace vorli::linuxhost
