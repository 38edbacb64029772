#include "linux/ProcStat.h"

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

// Above 9 when it is none.
unsigned digitOf(char c) {
  return static_cast<unsigned char>(c) - unsigned{'0'};
}

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
  // Digits at the very end may be cut short and do not count. So every number that is read ends at a
  // character which is none.
  explicit Fields(std::string_view text) : at_(text.data()), end_(at_ + text.size()) {
    while (end_ != at_ && digitOf(end_[-1]) <= 9) --end_;
  }

  bool isGood() const { return good_; }
  char next() const { return at_ == end_ ? '\0' : *at_; }

  // By eight bytes as long as there are so many, then one by one.
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
    constexpr std::ptrdiff_t mostDigits = 19;  // so many cannot overflow 64 bits
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

}  // namespace

std::optional<ProcStat> parseProcStat(std::string_view text) {
  // "PID (name) state parent ...": the name may hold blanks, brackets and newlines, what follows it cannot.
  const char* const end = text.data() + text.size();
  const auto front = std::min(text.size(), longestFront);
  const auto* const open = static_cast<const char*>(std::memchr(text.data(), '(', front));
  const auto* const close = static_cast<const char*>(memrchr(text.data(), ')', front));
  if (!open || !close || close < open || end - close < 5) return std::nullopt;  // ") S " and a parent

  ProcStat stat;
  stat.name = {open + 1, close};
  Fields fields({close + 4, end});
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

}  // namespace vorli::linuxhost
