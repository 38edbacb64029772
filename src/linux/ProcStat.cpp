#include "linux/ProcStat.h"

#include "linux/KernelText.h"

#include <limits>

namespace vorli::linuxhost {

namespace {

// Ticks and sizes above this are nonsense, and two of them still add up within 64 bits.
constexpr std::uint64_t largestNumber = std::numeric_limits<std::int64_t>::max();
constexpr std::uint64_t largestPages = largestNumber >> 16;  // pages have 64 KiB at most

// Walks over fields that are parted by single blanks. It runs for every process of each pass: a reading that
// goes wrong is noted and told once, at the end.
class Fields {
 public:
  explicit Fields(std::string_view text) : at_(text.data()), end_(at_ + text.size()) {}

  bool isGood() const { return good_; }

  void skip(int count) {
    for (; count > 0; --count) {
      while (at_ != end_ && *at_ != ' ') ++at_;
      if (at_ == end_) {
        good_ = false;
        return;
      }
      ++at_;
    }
  }

  // The field must be followed by another one: a number at the very end may be cut short.
  std::uint64_t number() {
    const char* const first = at_;
    std::uint64_t value = 0;
    for (; at_ != end_; ++at_) {
      const unsigned digit = static_cast<unsigned char>(*at_) - unsigned{'0'};
      if (digit > 9) break;
      value = value * 10 + digit;
    }
    constexpr std::ptrdiff_t mostDigits = 19;  // so many cannot overflow 64 bits
    if (at_ == end_ || *at_ != ' ' || at_ == first || at_ - first > mostDigits || value > largestNumber) {
      good_ = false;
      return 0;
    }
    ++at_;
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
  const auto open = text.find('(');
  const auto close = text.rfind(')');
  if (open == std::string_view::npos || close == std::string_view::npos || close < open) return std::nullopt;
  if (text.size() - close < 5) return std::nullopt;  // ") S " and a parent

  ProcStat stat;
  stat.name = text.substr(open + 1, close - open - 1);
  Fields fields(text.substr(close + 4));
  const auto parent = fields.number();
  fields.skip(9);  // group, session, terminal and its group, flags, four counts of faults
  stat.userTicks = fields.number();
  stat.systemTicks = fields.number();
  fields.skip(6);  // two times of children, priority, nice, threads, an interval that is always 0
  stat.startTicks = fields.number();
  stat.virtualBytes = fields.number();
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
