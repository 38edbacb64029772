#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vorli::formats {

inline std::string littleEndian(std::uint32_t value) {
  return {static_cast<char>(value & 0xFF), static_cast<char>(value >> 8 & 0xFF),
          static_cast<char>(value >> 16 & 0xFF), static_cast<char>(value >> 24)};
}

/// Writes bookmarks. Checks nothing, so that tests can write broken ones. Offsets count from the data.
class BookmarkDataWriter {
 public:
  using Offset = std::uint32_t;
  using Entries = std::vector<std::pair<std::uint32_t, Offset>>;  // keys and records

  static constexpr std::uint32_t textType = 0x0101, dataType = 0x0201, arrayType = 0x0601;
  static constexpr std::uint32_t pathKey = 0x1004, volumeKey = 0x2002;
  static constexpr std::uint32_t targetTable = 1;

  /// Offset of the next record.
  Offset next() const { return static_cast<Offset>(data_.size()); }

  Offset record(std::uint32_t type, std::string_view bytes) {
    return recordOfLength(static_cast<std::uint32_t>(bytes.size()), type, bytes);
  }
  Offset recordOfLength(std::uint32_t length, std::uint32_t type, std::string_view bytes) {
    const auto offset = next();
    data_ += littleEndian(length) + littleEndian(type);
    data_ += bytes;
    while (data_.size() % 4 != 0) data_ += '\0';
    return offset;
  }
  Offset text(std::string_view utf8) { return record(textType, utf8); }
  Offset array(const std::vector<Offset>& records) {
    std::string bytes;
    for (const auto offset : records) bytes += littleEndian(offset);
    return record(arrayType, bytes);
  }
  Offset texts(const std::vector<std::string>& components) {
    std::vector<Offset> records;
    for (const auto& component : components) records.push_back(text(component));
    return array(records);
  }

  /// Appends a table; `following` is the offset of the next one, or 0.
  Offset table(std::uint32_t identifier, const Entries& entries, Offset following = 0) {
    return tableOfCount(static_cast<std::uint32_t>(entries.size()), identifier, entries, following);
  }
  Offset tableOfCount(std::uint32_t count, std::uint32_t identifier, const Entries& entries,
                      Offset following = 0, std::uint32_t magic = 0xFFFFFFFE) {
    const auto offset = next();
    data_ += littleEndian(static_cast<std::uint32_t>(12 * entries.size() + 12)) + littleEndian(magic) +
             littleEndian(identifier) + littleEndian(following) + littleEndian(count);
    for (const auto& [key, recordOffset] : entries) {
      data_ += littleEndian(key) + littleEndian(recordOffset) + littleEndian(0);
    }
    return offset;
  }

  std::string bytes(Offset firstTable, std::uint32_t headerSize = 48, std::string_view magic = "book") const {
    auto data = data_;
    data.replace(0, 4, littleEndian(firstTable));
    std::string header(magic);
    header += littleEndian(static_cast<std::uint32_t>(headerSize + data.size())) + littleEndian(0x10040000) +
              littleEndian(headerSize);
    header.resize(headerSize, '\0');
    return header + data;
  }

  /// The bookmark of a file, with the name of its volume if there is one.
  static std::string bookmarkOf(const std::vector<std::string>& components, std::string_view volume = "/") {
    BookmarkDataWriter writer;
    Entries entries{{pathKey, writer.texts(components)}};
    entries.emplace_back(0x1010, writer.record(dataType, std::string(24, '\1')));
    if (!volume.empty()) entries.emplace_back(volumeKey, writer.text(volume));
    return writer.bytes(writer.table(targetTable, entries));
  }

 private:
  std::string data_ = std::string(4, '\0');  // begins with the offset of the first table
};

}  // namespace vorli::formats
