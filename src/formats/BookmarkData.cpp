#include "formats/BookmarkData.h"

#include "base/UTF8.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace vorli::formats {

namespace {

constexpr std::uint32_t pathKey = 0x1004, volumePathKey = 0x2002;
constexpr std::uint32_t textType = 0x0100, arrayType = 0x0600, typeMask = 0xFFFFFF00;
constexpr std::uint32_t tableMagic = 0xFFFFFFFE;
constexpr std::uint32_t targetTable = 1;  // the other tables describe the volumes around the file's
constexpr std::size_t shortestHeader = 16, tableHeader = 20, tableEntry = 12, recordHeader = 8;

// No system opens a longer path. Without a limit, an array that names one text many times would produce an
// enormous path.
constexpr std::size_t longestPath = 4096;

using Texts = std::vector<std::string_view>;

// Reads a little-endian number; empty beyond the end.
std::optional<std::uint32_t> numberAt(std::string_view bytes, std::size_t offset) {
  if (bytes.size() < 4 || offset > bytes.size() - 4) return std::nullopt;
  std::uint32_t value = 0;
  for (std::size_t i = 4; i-- > 0;) value = value << 8 | static_cast<unsigned char>(bytes[offset + i]);
  return value;
}

std::optional<std::string_view> part(std::string_view bytes, std::size_t offset, std::size_t length) {
  if (offset > bytes.size() || length > bytes.size() - offset) return std::nullopt;
  return bytes.substr(offset, length);
}

// The data behind the header; all offsets are relative to its start.
std::optional<std::string_view> dataOf(std::string_view bytes) {
  if (!bytes.starts_with("book") && !bytes.starts_with("alis")) return std::nullopt;
  const auto total = numberAt(bytes, 4), header = numberAt(bytes, 12);
  if (!total || !header || *total > bytes.size() || *header < shortestHeader || *header > *total) {
    return std::nullopt;
  }
  return bytes.substr(*header, *total - *header);
}

// The entries of the table that describes the file itself.
std::optional<std::string_view> targetEntries(std::string_view data) {
  auto offset = numberAt(data, 0).value_or(0);
  // Tables may refer to each other in a cycle, so no more are visited than fit in the data.
  for (auto left = data.size() / tableHeader; offset != 0 && left > 0; --left) {
    const auto table = part(data, offset, tableHeader);
    if (!table || numberAt(*table, 4) != tableMagic) return std::nullopt;
    if (numberAt(*table, 8) == targetTable) {
      const std::size_t count = *numberAt(*table, 16);
      if (count > data.size() / tableEntry) return std::nullopt;
      return part(data, offset + tableHeader, count * tableEntry);
    }
    offset = *numberAt(*table, 12);
  }
  return std::nullopt;
}

std::optional<std::uint32_t> recordOffset(std::string_view entries, std::uint32_t key) {
  for (; !entries.empty(); entries.remove_prefix(tableEntry)) {
    if (numberAt(entries, 0) == key) return numberAt(entries, 4);
  }
  return std::nullopt;
}

// The record's bytes; empty when it is of another type or reaches beyond the data.
std::optional<std::string_view> recordAt(std::string_view data, std::uint32_t offset, std::uint32_t type) {
  const auto header = part(data, offset, recordHeader);
  if (!header || (*numberAt(*header, 4) & typeMask) != type) return std::nullopt;
  return part(data, std::size_t{offset} + recordHeader, *numberAt(*header, 0));
}

std::optional<Texts> pathComponents(std::string_view data, std::uint32_t offset) {
  const auto offsets = recordAt(data, offset, arrayType);
  if (!offsets || offsets->size() % 4 != 0) return std::nullopt;
  Texts components;
  std::size_t length = 0;
  for (std::size_t i = 0; i < offsets->size(); i += 4) {
    const auto component = recordAt(data, *numberAt(*offsets, i), textType);
    if (!component) return std::nullopt;
    length += component->size() + 1;
    if (length > longestPath) return std::nullopt;
    components.push_back(*component);
  }
  return components;
}

Texts split(std::string_view path) {
  Texts components;
  while (!path.empty()) {
    const auto slash = path.find('/');
    if (slash != 0) components.push_back(path.substr(0, slash));
    path.remove_prefix(slash == std::string_view::npos ? path.size() : slash + 1);
  }
  return components;
}

// The absolute path of these components with each ".." resolved. Empty when one is not a valid name.
std::optional<std::string> joined(const Texts& components) {
  Texts resolved;
  for (const auto component : components) {
    if (component == "..") {
      if (resolved.empty()) return std::nullopt;
      resolved.pop_back();
      continue;
    }
    const bool isName = !component.empty() && component != "." && isUTF8(component) &&
                        component.find_first_of(std::string_view("/\0", 2)) == std::string_view::npos;
    if (!isName) return std::nullopt;
    resolved.push_back(component);
  }
  std::string path;
  for (const auto component : resolved) path.append("/").append(component);
  return path.empty() ? "/" : path;
}

// The volume's mount point; the system volume's when the bookmark names none.
std::optional<std::string> volumePath(std::string_view data, std::string_view entries) {
  const auto offset = recordOffset(entries, volumePathKey);
  if (!offset) return "/";
  const auto path = recordAt(data, *offset, textType);
  if (!path || !path->starts_with('/') || path->size() > longestPath) return std::nullopt;
  return joined(split(*path));
}

}  // namespace

std::expected<BookmarkData, std::string> readBookmarkData(std::string_view bytes) {
  const auto data = dataOf(bytes);
  if (!data) return std::unexpected("no bookmark");
  const auto entries = targetEntries(*data);
  if (!entries) return std::unexpected("a bookmark without a table of its target");
  const auto pathOffset = recordOffset(*entries, pathKey);
  const auto components = pathOffset ? pathComponents(*data, *pathOffset) : std::nullopt;
  auto path = components ? joined(*components) : std::nullopt;
  if (!path) return std::unexpected("a bookmark without a proper path");
  const auto volume = volumePath(*data, *entries);
  if (!volume) return std::unexpected("a bookmark without a proper volume");

  // The path may begin at the volume or at the root.
  const bool isBelow = *volume == "/" || *path == *volume || path->starts_with(*volume + "/");
  if (!isBelow) path = *path == "/" ? *volume : *volume + *path;
  return BookmarkData{*std::move(path), *volume};
}

}  // namespace vorli::formats
