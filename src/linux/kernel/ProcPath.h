#pragma once

#include <array>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace vorli::linuxhost {

/// "PID/file" as a C string, without a heap allocation: the path of a process's file, relative to /proc.
class ProcPath {
 public:
  ProcPath(std::int32_t pid, std::string_view file) {
    char* end = std::to_chars(text_.data(), text_.data() + mostDigits, pid).ptr;
    *end++ = '/';
    std::memcpy(end, file.data(), file.size());
    end[file.size()] = '\0';
  }

  const char* text() const { return text_.data(); }

 private:
  static constexpr std::size_t mostDigits = 11;
  std::array<char, 32> text_;
};

}  // namespace vorli::linuxhost
