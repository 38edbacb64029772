#include "base/ISOTimestamp.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>

namespace vorli {

namespace {

using std::chrono::days;
using std::chrono::sys_days;

constexpr std::int64_t millisecondsPerDay = 86'400'000;
constexpr auto firstDay = sys_days{std::chrono::year{0} / 1 / 1};
constexpr auto lastDay = sys_days{std::chrono::year{9999} / 12 / 31};
constexpr std::int64_t earliest = firstDay.time_since_epoch().count() * millisecondsPerDay;
constexpr std::int64_t latest = (lastDay.time_since_epoch().count() + 1) * millisecondsPerDay - 1;

// Truncates to whole milliseconds. A date parsed from a timestamp may lie a rounding error below its
// millisecond.
std::int64_t wholeMilliseconds(Date date) {
  constexpr double roundingError = 0.001;
  const double milliseconds = std::floor(date.secondsSince1970 * 1000.0 + roundingError);
  return static_cast<std::int64_t>(
      std::clamp(milliseconds, static_cast<double>(earliest), static_cast<double>(latest)));
}

template <typename Iterator>
Iterator writeDigits(Iterator out, std::int64_t number, int digits) {
  for (int i = digits - 1; i >= 0; --i, number /= 10) out[i] = static_cast<char>('0' + number % 10);
  return out + digits;
}

// Reads numbers and separators from the front of a text. The first mismatch makes it fail permanently.
class Reader {
 public:
  explicit Reader(std::string_view text) : rest_(text) {}

  void fail() { hasFailed_ = true; }
  bool hasFailed() const { return hasFailed_; }
  bool isAtEnd() const { return rest_.empty(); }

  int number(std::size_t digits, int largest) {
    int number = 0;
    for (std::size_t i = 0; i < digits; ++i) {
      const char c = take();
      if (c < '0' || c > '9') fail();
      number = 10 * number + (c - '0');
    }
    if (number > largest) fail();
    return number;
  }

  void mark(char wanted) {
    if (take() != wanted) fail();
  }

  char take() {
    if (rest_.empty()) {
      fail();
      return 0;
    }
    const char c = rest_.front();
    rest_.remove_prefix(1);
    return c;
  }

 private:
  std::string_view rest_;
  bool hasFailed_ = false;
};

// Seconds east of Greenwich.
int readZone(Reader& reader) {
  const char sign = reader.take();
  if (sign == 'Z') return 0;
  if (sign != '+' && sign != '-') reader.fail();
  const int hours = reader.number(2, 23);
  reader.mark(':');
  const int seconds = hours * 3600 + reader.number(2, 59) * 60;
  return sign == '+' ? seconds : -seconds;
}

}  // namespace

ISOTimestamp::ISOTimestamp(Date date) noexcept {
  const std::int64_t milliseconds = wholeMilliseconds(date);
  const std::int64_t dayNumber =
      (milliseconds - earliest) / millisecondsPerDay + firstDay.time_since_epoch().count();
  const std::chrono::year_month_day day{sys_days{days{dayNumber}}};
  std::int64_t rest = milliseconds - dayNumber * millisecondsPerDay;
  auto* out = writeDigits(characters_.data(), static_cast<int>(day.year()), 4);
  *out++ = '-';
  out = writeDigits(out, static_cast<unsigned>(day.month()), 2);
  *out++ = '-';
  out = writeDigits(out, static_cast<unsigned>(day.day()), 2);
  for (const auto& [mark, unit] : {std::pair{'T', 3'600'000}, {':', 60'000}, {':', 1'000}}) {
    *out++ = mark;
    out = writeDigits(out, rest / unit, 2);
    rest %= unit;
  }
  *out++ = '.';
  out = writeDigits(out, rest, 3);
  *out = 'Z';
}

std::optional<Date> parseISOTimestamp(std::string_view text) {
  Reader reader(text);
  const int year = reader.number(4, 9999);
  reader.mark('-');
  const int month = reader.number(2, 12);
  reader.mark('-');
  const int day = reader.number(2, 31);
  std::int64_t seconds = 0;
  for (const auto& [mark, largest] : {std::pair{'T', 23}, {':', 59}, {':', 59}}) {
    reader.mark(mark);
    seconds = seconds * 60 + reader.number(2, largest);
  }
  reader.mark('.');
  const int milliseconds = reader.number(3, 999);
  seconds -= readZone(reader);
  if (reader.hasFailed() || !reader.isAtEnd()) return std::nullopt;
  const std::chrono::year_month_day date{std::chrono::year{year},
                                         std::chrono::month{static_cast<unsigned>(month)},
                                         std::chrono::day{static_cast<unsigned>(day)}};
  if (!date.ok()) return std::nullopt;
  seconds += sys_days{date}.time_since_epoch().count() * std::int64_t{86'400};
  return Date{static_cast<double>(seconds * 1000 + milliseconds) / 1000.0};
}

}  // namespace vorli
