#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace vorli::posix {

/// Text in memory owned by the caller; text that does not fit is cut off. Allocates nothing.
class TextBuffer {
 public:
  explicit TextBuffer(std::span<char> memory) : memory_(memory) {}

  std::string_view text() const { return {memory_.data(), size_}; }
  bool isFull() const { return size_ == memory_.size(); }
  void clear() { size_ = 0; }

  TextBuffer& add(std::string_view text) {
    const std::size_t fitting = std::min(text.size(), memory_.size() - size_);
    std::copy_n(text.begin(), fitting, memory_.begin() + static_cast<std::ptrdiff_t>(size_));
    size_ += fitting;
    return *this;
  }

  TextBuffer& addDecimal(std::uint64_t number) { return addDigits(number, 10); }
  TextBuffer& addHex(std::uint64_t number) { return addDigits(number, 16); }

 private:
  TextBuffer& addDigits(std::uint64_t number, unsigned base) {
    std::array<char, 20> digits;
    auto front = digits.end();
    do {
      *--front = "0123456789abcdef"[number % base];
      number /= base;
    } while (number > 0);
    return add({front, digits.end()});
  }

  std::span<char> memory_;
  std::size_t size_ = 0;
};

/// A text buffer with its own memory.
template <std::size_t capacity>
class FixedText : public TextBuffer {
 public:
  FixedText() : TextBuffer(characters_) {}
  FixedText(const FixedText&) = delete;
  FixedText& operator=(const FixedText&) = delete;

 private:
  std::array<char, capacity> characters_;
};

}  // namespace vorli::posix
