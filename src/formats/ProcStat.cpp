#include "formats/ProcStat.h"

#include <bit>
#include <cstddef>
#include <cstring>
#include <limits>

namespace vorli::formats {

namespace {

// Ticks and sizes above this are nonsense, and two of them still add up within 64 bits.
constexpr std::uint64_t largestNumber = std::numeric_limits<std::int64_t>::max();
// The identifier and the name with its brackets: the kernel's longest names have 63 bytes.
constexpr std::size_t longestFront = 96;
constexpr std::uint64_t onesInBytes = 0x0101010101010101;
constexpr std::uint64_t largestPages = largestNumber >> 16;  // pages have 64 KiB at most

// Returns the value of a digit; above 9 for any other character.
unsigned digitOf(char c) {
  return static_cast<unsigned char>(c) - unsigned{'0'};
}

// Returns a mask with the high bit of each byte of `word` that is a blank.
std::uint64_t blanksIn(std::uint64_t word) {
  constexpr std::uint64_t lowBits = 0x7F * onesInBytes;
  const std::uint64_t differences = word ^ (' ' * onesInBytes);
  return ~(((differences & lowBits) + lowBits) | differences | lowBits);
}

// Loads eight bytes; the first one becomes the lowest.
std::uint64_t wordAt(const char* text) {
  std::uint64_t word = 0;
  std::memcpy(&word, text, sizeof word);
  return std::endian::native == std::endian::little ? word : std::byteswap(word);
}

// Iterates over fields separated by single blanks. It runs for every process in each pass, so a failed read
// is recorded and checked once, at the end.
class Fields {
 public:
  // Digits at the very end may be truncated and are ignored, so every number read ends before a non-digit.
  explicit Fields(std::string_view text) : at_(text.data()), end_(at_ + text.size()) {
    while (end_ != at_ && digitOf(end_[-1]) <= 9) --end_;
  }

  bool isGood() const { return good_; }
  char next() const { return at_ == end_ ? '\0' : *at_; }

  // Searches eight bytes at a time, then the rest one by one.
  [[gnu::always_inline]] void skip(int count) {
    const char* at = at_;
    for (; end_ - at >= 8; at += 8) {
      std::uint64_t blanks = blanksIn(wordAt(at));
      const int found = static_cast<int>(((blanks >> 7) * onesInBytes) >> 56);
      if (found < count) {
        count -= found;
        continue;
      }
      for (; count > 1; --count) blanks &= blanks - 1;
      at_ = at + std::countr_zero(blanks) / 8 + 1;
      return;
    }
    for (; count > 0 && at != end_; ++at) count -= *at == ' ';
    good_ = good_ && count == 0;
    at_ = at;
  }

  [[gnu::always_inline]] std::uint64_t number() {
    constexpr std::ptrdiff_t mostDigits = 19;  // this many cannot overflow 64 bits
    const char* at = at_;
    std::uint64_t value = 0;
    if (at != end_) {
      for (unsigned digit = 0; (digit = digitOf(*at)) <= 9; ++at) value = value * 10 + digit;
    }
    if (at == at_ || at - at_ > mostDigits || *at != ' ' || value > largestNumber) {
      good_ = false;
      return 0;
    }
    at_ = at + 1;
    return value;
  }

 private:
  const char* at_;
  const char* end_;
  bool good_ = true;
};

// Searches forwards: libraries look for a character with vector instructions in this direction only.
std::size_t lastBracket(std::string_view text) {
  auto last = text.npos;
  for (auto at = text.find(')'); at != text.npos; at = text.find(')', at + 1)) last = at;
  return last;
}

}  // namespace

std::optional<ProcStat> parseProcStat(std::string_view text) {
  // "PID (name) state parent ...": the name may contain blanks, brackets and newlines, but the rest cannot.
  const std::string_view front = text.substr(0, longestFront);
  const auto open = front.find('('), close = lastBracket(front);
  if (open == front.npos || close == front.npos || close < open || text.size() - close < 5)
    return std::nullopt;

  ProcStat stat;
  stat.name = front.substr(open + 1, close - open - 1);
  Fields fields(text.substr(close + 4));  // after ") S "
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
  Fields fields(text);
  fields.skip(1);
  const auto pages = fields.number();
  if (!fields.isGood() || pages > largestPages) return std::nullopt;
  return pages;
}

}  // namespace vorli::formats
