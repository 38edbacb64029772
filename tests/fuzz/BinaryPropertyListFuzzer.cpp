#include "formats/BinaryPropertyList.h"
#include "tests/formats/BinaryPropertyListWriter.h"
#include "tests/fuzz/PropertyListWalk.h"

#include <algorithm>
#include <string>

using namespace vorli::formats;

namespace {

// A list whose trailer fits its size, which random bytes almost never have: offsets come first, then the
// objects.
std::string framed(std::string_view bytes) {
  const std::size_t count = bytes.empty() ? 1 : static_cast<unsigned char>(bytes[0]) % 64 + 1;
  const auto offsets = bytes.substr(0, std::min(bytes.size(), 2 * count));
  const std::string objects = std::string(bytes.substr(offsets.size())) + '\x09';
  std::string table;
  for (std::size_t i = 0; i < count; ++i) {
    std::uint64_t offset = 0;
    for (const char byte : offsets.substr(std::min(offsets.size(), 2 * i)).substr(0, 2)) {
      offset = offset << 8 | static_cast<unsigned char>(byte);
    }
    table += bigEndian(8 + offset % objects.size(), 2);
  }
  return "bplist00" + objects + table + BinaryPropertyListWriter::trailer(2, 1, count, 0, 8 + objects.size());
}

}  // namespace

void fuzz(std::string_view bytes) {
  const auto list = readBinaryPropertyList(isBinaryPropertyList(bytes) ? std::string(bytes) : framed(bytes));
  if (list) walk(*list);
}
