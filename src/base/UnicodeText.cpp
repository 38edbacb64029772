#include "base/UnicodeText.h"

#include "base/UTF8.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace vorli {

namespace {

// Upper-case letters `stride` apart, whose lower-case forms are at `offset` from them.
struct CaseRange {
  char32_t first, last;
  std::int32_t stride, offset;
};

// Letters beyond ASCII.
constexpr CaseRange caseRanges[] = {
    {0x00C0, 0x00D6, 1, 32}, {0x00D8, 0x00DE, 1, 32},    {0x0100, 0x012E, 2, 1},    {0x0132, 0x0136, 2, 1},
    {0x0139, 0x0147, 2, 1},  {0x014A, 0x0176, 2, 1},     {0x0178, 0x0178, 1, -121}, {0x0179, 0x017D, 2, 1},
    {0x01A0, 0x01A4, 2, 1},  {0x01AF, 0x01AF, 1, 1},     {0x01CD, 0x01DB, 2, 1},    {0x01DE, 0x01EE, 2, 1},
    {0x01F8, 0x021E, 2, 1},  {0x0222, 0x0232, 2, 1},     {0x0386, 0x0386, 1, 38},   {0x0388, 0x038A, 1, 37},
    {0x038C, 0x038C, 1, 64}, {0x038E, 0x038F, 1, 63},    {0x0391, 0x03A1, 1, 32},   {0x03A3, 0x03AB, 1, 32},
    {0x0400, 0x040F, 1, 80}, {0x0410, 0x042F, 1, 32},    {0x0460, 0x0480, 2, 1},    {0x048A, 0x04BE, 2, 1},
    {0x04C0, 0x04C0, 1, 15}, {0x04C1, 0x04CD, 2, 1},     {0x04D0, 0x052E, 2, 1},    {0x0531, 0x0556, 1, 48},
    {0x1E00, 0x1E94, 2, 1},  {0x1E9E, 0x1E9E, 1, -7615}, {0x1EA0, 0x1EFE, 2, 1},    {0xFF21, 0xFF3A, 1, 32},
};

bool isMember(char32_t letter, const CaseRange& range, std::int32_t offset) {
  const auto from = static_cast<std::int64_t>(letter) - offset - range.first;
  return from >= 0 && from <= static_cast<std::int64_t>(range.last - range.first) && from % range.stride == 0;
}

char32_t moved(char32_t letter, std::int32_t by) {
  return static_cast<char32_t>(static_cast<std::int64_t>(letter) + by);
}

// Most letters are ASCII, and need no table.
char32_t lower(char32_t letter) {
  if (letter < 0x80) return letter >= U'A' && letter <= U'Z' ? letter + 32 : letter;
  const auto range = std::ranges::find_if(caseRanges, [&](auto& each) { return isMember(letter, each, 0); });
  return range == std::end(caseRanges) ? letter : moved(letter, range->offset);
}

char32_t upper(char32_t letter) {
  if (letter < 0x80) return letter >= U'a' && letter <= U'z' ? letter - 32 : letter;
  const auto range =
      std::ranges::find_if(caseRanges, [&](auto& each) { return isMember(letter, each, each.offset); });
  return range == std::end(caseRanges) ? letter : moved(letter, -range->offset);
}

void append(std::string& text, char32_t letter) {
  const auto put = [&text](char32_t bits) { text.push_back(static_cast<char>(bits)); };
  if (letter < 0x80) {
    put(letter);
  } else if (letter < 0x800) {
    put(0xC0 | letter >> 6);
    put(0x80 | (letter & 0x3F));
  } else {
    put(0xE0 | letter >> 12);
    put(0x80 | (letter >> 6 & 0x3F));
    put(0x80 | (letter & 0x3F));
  }
}

// The first character of the text, of at most three bytes; the tables contain no four-byte characters.
struct FirstCharacter {
  char32_t letter;
  std::size_t length;  // 0 when there is no such character
};

FirstCharacter firstCharacter(std::string_view text) {
  const auto at = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  if (text.empty()) return {0, 0};
  if (at(0) < 0x80) return {at(0), 1};
  const std::size_t length = at(0) >= 0xF0 ? 0 : at(0) >= 0xE0 ? 3 : at(0) >= 0xC2 ? 2 : 0;
  if (length == 0 || text.size() < length || !isUTF8(text.substr(0, length))) return {0, 0};
  char32_t letter = length == 2 ? at(0) & 0x1Fu : at(0) & 0x0Fu;
  for (std::size_t i = 1; i < length; ++i) letter = letter << 6 | (at(i) & 0x3Fu);
  return {letter, length};
}

bool isSpace(char32_t c) {
  return (c >= 0x09 && c <= 0x0D) || c == 0x20 || c == 0x85 || c == 0xA0 || c == 0x1680 ||
         (c >= 0x2000 && c <= 0x200A) || c == 0x2028 || c == 0x2029 || c == 0x202F || c == 0x205F ||
         c == 0x3000;
}

// Length in bytes of the white-space character at the end of the text; 0 when it ends in anything else.
std::size_t trailingSpace(std::string_view text) {
  if (text.empty()) return 0;
  const auto lastByte = static_cast<unsigned char>(text.back());
  if (lastByte < 0x80) return isSpace(lastByte) ? 1 : 0;
  for (std::size_t length = 1; length <= std::min<std::size_t>(text.size(), 3); ++length) {
    const auto last = firstCharacter(text.substr(text.size() - length));
    if (last.length == length && isSpace(last.letter)) return length;
  }
  return 0;
}

std::string withEachLetter(std::string_view text, char32_t (*change)(char32_t)) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const auto [letter, length] = firstCharacter(text);
    if (length == 0) {
      result.push_back(text.front());
    } else {
      append(result, change(letter));
    }
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return result;
}

}  // namespace

std::string lowercased(std::string_view text) {
  if (!isASCII(text)) return withEachLetter(text, lower);
  std::string result(text);
  for (char& c : result)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return result;
}

std::string uppercased(std::string_view text) {
  return withEachLetter(text, upper);
}

std::string capitalized(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  bool beginsWord = true;
  while (!text.empty()) {
    const auto [letter, length] = firstCharacter(text);
    const auto bytes = std::max<std::size_t>(length, 1);
    const bool isLetter = length > 0 && (lower(letter) != letter || upper(letter) != letter);
    if (isLetter) {
      append(result, beginsWord ? upper(letter) : lower(letter));
    } else {
      result.append(text.substr(0, bytes));
    }
    const bool joinsWords = letter == U'\'' || letter == U'.' || letter == U'\u2019';
    beginsWord = !isLetter && (beginsWord || !joinsWords);
    text.remove_prefix(bytes);
  }
  return result;
}

std::string capitalizingFirst(std::string_view text) {
  const auto [letter, length] = firstCharacter(text);
  std::string result;
  if (length > 0) append(result, upper(letter));
  return result.append(text.substr(length));
}

std::string_view trimmed(std::string_view text) {
  for (auto first = firstCharacter(text); first.length > 0 && isSpace(first.letter);
       first = firstCharacter(text)) {
    text.remove_prefix(first.length);
  }
  while (const auto length = trailingSpace(text)) text.remove_suffix(length);
  return text;
}

}  // namespace vorli
