#include "formats/XMLEncoding.h"

#include "base/UTF8.h"
#include "base/UnicodeText.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace vorli::formats {

namespace {

enum class Encoding { utf8, ascii, latin1, utf16Little, utf16Big, utf32Little, utf32Big };

struct Mark {
  std::string_view bytes;
  Encoding encoding;
};

// Longer marks come first: that of little-endian UTF-32 begins with that of UTF-16.
constexpr Mark marks[] = {
    {{"\xFF\xFE\0\0", 4}, Encoding::utf32Little},
    {{"\0\0\xFE\xFF", 4}, Encoding::utf32Big},
    {"\xEF\xBB\xBF", Encoding::utf8},
    {"\xFF\xFE", Encoding::utf16Little},
    {"\xFE\xFF", Encoding::utf16Big},
};

// Returns the value of encoding="..." in a leading <?xml ... ?>; empty without one.
std::string_view declaredName(std::string_view bytes) {
  if (!bytes.starts_with("<?xml")) return {};
  const auto end = bytes.find("?>");
  if (end == std::string_view::npos) return {};
  constexpr std::string_view attribute = "encoding=";
  const auto declaration = bytes.substr(0, end);
  const auto start = declaration.find(attribute);
  if (start == std::string_view::npos) return {};
  const auto quoted = declaration.substr(start + attribute.size());
  if (quoted.empty() || (quoted[0] != '"' && quoted[0] != '\'')) return {};
  return quoted.substr(1, quoted.find(quoted[0], 1) - 1);
}

// A document whose declaration can be read as bytes is not in UTF-16, whatever it says.
std::optional<Encoding> declaredEncoding(std::string_view bytes) {
  const auto name = lowercased(declaredName(bytes));
  if (name.empty() || name == "utf-8" || name == "utf8") return Encoding::utf8;
  if (name == "us-ascii" || name == "ascii") return Encoding::ascii;
  if (name == "iso-8859-1" || name == "latin1") return Encoding::latin1;
  return std::nullopt;
}

std::uint32_t unit(std::string_view bytes, bool littleEndian) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const auto byte = static_cast<unsigned char>(bytes[littleEndian ? bytes.size() - 1 - i : i]);
    value = value << 8 | byte;
  }
  return value;
}

bool isSurrogate(std::uint32_t unit) {
  return unit >= 0xD800 && unit <= 0xDFFF;
}

std::optional<std::string> fromUTF16(std::string_view bytes, bool littleEndian) {
  if (bytes.size() % 2 != 0) return std::nullopt;
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); i += 2) {
    char32_t character = unit(bytes.substr(i, 2), littleEndian);
    if (isSurrogate(character)) {
      i += 2;
      if (character > 0xDBFF || i == bytes.size()) return std::nullopt;
      const auto low = unit(bytes.substr(i, 2), littleEndian);
      if (low < 0xDC00 || low > 0xDFFF) return std::nullopt;
      character = 0x10000 + ((character - 0xD800) << 10) + (low - 0xDC00);
    }
    appendUTF8(text, character);
  }
  return text;
}

std::optional<std::string> fromUTF32(std::string_view bytes, bool littleEndian) {
  if (bytes.size() % 4 != 0) return std::nullopt;
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); i += 4) {
    const auto character = unit(bytes.substr(i, 4), littleEndian);
    if (character > 0x10FFFF || isSurrogate(character)) return std::nullopt;
    appendUTF8(text, character);
  }
  return text;
}

std::string fromLatin1(std::string_view bytes) {
  std::string text;
  for (const char byte : bytes) appendUTF8(text, static_cast<unsigned char>(byte));
  return text;
}

std::optional<std::string> decoded(std::string_view bytes, Encoding encoding) {
  switch (encoding) {
    case Encoding::utf8:
      if (!isUTF8(bytes)) return std::nullopt;
      return std::string(bytes);
    case Encoding::ascii:
      if (!isASCII(bytes)) return std::nullopt;
      return std::string(bytes);
    case Encoding::latin1:
      return fromLatin1(bytes);
    case Encoding::utf16Little:
    case Encoding::utf16Big:
      return fromUTF16(bytes, encoding == Encoding::utf16Little);
    case Encoding::utf32Little:
    case Encoding::utf32Big:
      return fromUTF32(bytes, encoding == Encoding::utf32Little);
  }
  return std::nullopt;
}

}  // namespace

std::expected<std::string, std::string> decodeXML(std::string_view bytes) {
  const auto mark = std::ranges::find_if(
      marks, [bytes](std::string_view start) { return bytes.starts_with(start); }, &Mark::bytes);
  const bool isMarked = mark != std::end(marks);
  const auto encoding = isMarked ? mark->encoding : declaredEncoding(bytes);
  if (!encoding) return std::unexpected("an unknown encoding");
  if (isMarked) bytes.remove_prefix(mark->bytes.size());
  auto text = decoded(bytes, *encoding);
  if (!text) return std::unexpected("bytes that are not in the document's encoding");
  return *std::move(text);
}

}  // namespace vorli::formats
