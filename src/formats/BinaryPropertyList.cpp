#include "formats/BinaryPropertyList.h"

#include "base/UTF8.h"
#include "formats/PropertyListBuilder.h"

#include <bit>
#include <cstdint>
#include <limits>
#include <optional>

namespace vorli::formats {

namespace {

constexpr std::string_view magic = "bplist0";  // one more character follows, of any value
constexpr std::size_t headerSize = 8;
constexpr std::size_t trailerSize = 32;

// Seconds from 1970 to 2001-01-01, the format's epoch.
constexpr double referenceDate = 978307200.0;

// Reads a big-endian number; only the last eight bytes count.
std::uint64_t number(std::string_view bytes) {
  std::uint64_t value = 0;
  for (const char byte : bytes) value = value << 8 | static_cast<unsigned char>(byte);
  return value;
}

bool holds(std::uint64_t width, std::uint64_t value) {
  return width >= sizeof value || value < std::uint64_t{1} << 8 * width;
}

std::string utf8FromUTF16(std::string_view units) {
  const auto unit = [units](std::size_t i) { return static_cast<char32_t>(number(units.substr(i, 2))); };
  std::string text;
  for (std::size_t i = 0; i < units.size(); i += 2) {
    char32_t character = unit(i);
    const bool mayBePair = character >= 0xD800 && character <= 0xDBFF && i + 2 < units.size();
    if (const auto low = mayBePair ? unit(i + 2) : 0; low >= 0xDC00 && low <= 0xDFFF) {
      character = 0x10000 + ((character - 0xD800) << 10) + (low - 0xDC00);
      i += 2;
    }
    appendUTF8(text, character);
  }
  return text;
}

class BinaryReader {
 public:
  explicit BinaryReader(std::string_view bytes) : bytes_(bytes) {}

  std::expected<PropertyList, std::string> read();

 private:
  using Builder = PropertyListBuilder;
  using Kind = PropertyList::Kind;

  // An object as its marker describes it. The body of a container holds references to its contents.
  struct Object {
    std::uint8_t type;        // high half of the marker
    std::uint8_t info;        // low half of the marker
    std::uint64_t count = 0;  // bytes, characters, elements or entries
    std::string_view body = {};
  };

  // A container whose contents are being read.
  struct Container {
    std::uint64_t object;
    bool isDictionary;
    std::uint64_t count;
    std::string_view references;
    std::uint64_t next = 0;  // index of the next reference
  };

  bool readTrailer();
  bool checkOffsets();
  std::uint64_t offsetOf(std::uint64_t object) const;
  std::optional<Object> objectAt(std::uint64_t object);
  std::optional<std::uint64_t> countAt(std::uint8_t info, std::uint64_t& position) const;
  std::uint64_t bodySize(const Object& object) const;

  bool visit(std::uint64_t object, bool asKey);
  bool visitNext();
  bool openContainer(std::uint64_t object, const Object& read);
  std::optional<Builder::Index> addScalar(const Object& object);
  std::optional<Builder::Index> addSimple(std::uint8_t info);
  std::optional<Builder::Index> addNumber(const Object& object);
  std::optional<Builder::Index> addASCII(std::string_view characters);

  bool refuse(const char* reason) {
    refusal_ = reason;
    return false;
  }

  static constexpr Builder::Index unread = std::numeric_limits<Builder::Index>::max();
  static constexpr Builder::Index beingRead = unread - 1;

  std::string_view bytes_;
  std::uint64_t offsetSize_ = 0, referenceSize_ = 0, objectCount_ = 0, rootObject_ = 0, tableStart_ = 0;

  Builder builder_{Builder::Repeated::firstCounts};
  std::vector<Builder::Index> values_;  // value of each object, once it is read
  std::vector<Container> containers_;   // the open containers, the innermost last
  std::uint64_t bytesRead_ = 0;
  const char* refusal_ = "";
};

std::expected<PropertyList, std::string> BinaryReader::read() {
  if (!readTrailer() || !checkOffsets()) return std::unexpected(refusal_);
  values_.assign(objectCount_, unread);
  if (!visit(rootObject_, false)) return std::unexpected(refusal_);
  while (!containers_.empty()) {
    if (!visitNext()) return std::unexpected(refusal_);
  }
  return builder_.finish(values_[rootObject_]);
}

bool BinaryReader::readTrailer() {
  if (!isBinaryPropertyList(bytes_) || bytes_.size() < headerSize + 1 + trailerSize) {
    return refuse("no binary property list");
  }
  const auto tableEnd = bytes_.size() - trailerSize;
  const auto trailer = bytes_.substr(tableEnd);
  offsetSize_ = number(trailer.substr(6, 1));
  referenceSize_ = number(trailer.substr(7, 1));
  objectCount_ = number(trailer.substr(8, 8));
  rootObject_ = number(trailer.substr(16, 8));
  tableStart_ = number(trailer.substr(24, 8));
  if (offsetSize_ == 0 || referenceSize_ == 0) return refuse("offsets or references without a size");
  if (tableStart_ <= headerSize || tableStart_ >= tableEnd) return refuse("the offset table is misplaced");
  const auto tableSize = tableEnd - tableStart_;
  if (tableSize % offsetSize_ != 0 || tableSize / offsetSize_ != objectCount_) {
    return refuse("the offset table does not fit its place");
  }
  if (rootObject_ >= objectCount_) return refuse("the root is no object");
  if (!holds(offsetSize_, tableStart_)) return refuse("the offsets are too narrow");
  if (!holds(referenceSize_, objectCount_)) return refuse("the references are too narrow");
  return true;
}

bool BinaryReader::checkOffsets() {
  for (std::uint64_t object = 0; object < objectCount_; ++object) {
    const auto offset = offsetOf(object);
    if (offset < headerSize || offset >= tableStart_) return refuse("an object lies outside of its place");
  }
  return true;
}

std::uint64_t BinaryReader::offsetOf(std::uint64_t object) const {
  return number(bytes_.substr(tableStart_ + object * offsetSize_, offsetSize_));
}

// Returns the count in a marker. A large one follows as an integer; `position` then moves past it.
std::optional<std::uint64_t> BinaryReader::countAt(std::uint8_t info, std::uint64_t& position) const {
  if (info != 0xF) return info;
  if (position >= tableStart_) return std::nullopt;
  const auto marker = static_cast<unsigned char>(bytes_[position++]);
  if (marker < 0x10 || marker > 0x14) return std::nullopt;
  const std::size_t width = std::size_t{1} << (marker & 0xF);
  if (width > tableStart_ - position) return std::nullopt;
  position += width;
  return number(bytes_.substr(position - width, width));
}

std::uint64_t BinaryReader::bodySize(const Object& object) const {
  const auto bytesEach = [&]() -> std::uint64_t {
    switch (object.type) {
      case 0x6:
        return 2;
      case 0xA:
      case 0xC:
        return referenceSize_;
      case 0xD:
        return 2 * referenceSize_;
      default:
        return 1;
    }
  }();
  constexpr auto beyondAll = std::numeric_limits<std::uint64_t>::max();
  return object.count > beyondAll / bytesEach ? beyondAll : object.count * bytesEach;
}

std::optional<BinaryReader::Object> BinaryReader::objectAt(std::uint64_t object) {
  auto position = offsetOf(object);
  const auto start = position;
  const auto marker = static_cast<unsigned char>(bytes_[position++]);
  Object read{.type = static_cast<std::uint8_t>(marker >> 4),
              .info = static_cast<std::uint8_t>(marker & 0xF)};
  switch (read.type) {
    case 0x0:
      break;
    case 0x1:
    case 0x2:
    case 0x3:
      read.count = std::uint64_t{1} << read.info;
      break;
    case 0x8:
      read.count = read.info + 1U;
      break;
    case 0x4:
    case 0x5:
    case 0x6:
    case 0xA:
    case 0xC:
    case 0xD:
      if (const auto count = countAt(read.info, position)) {
        read.count = *count;
        break;
      }
      refuse("an object without a proper count");
      return std::nullopt;
    default:
      refuse("an object of an unknown type");
      return std::nullopt;
  }
  const auto size = bodySize(read);
  if (size > tableStart_ - position) {
    refuse("an object reaches beyond its place");
    return std::nullopt;
  }
  read.body = bytes_.substr(position, size);
  // Without this limit, overlapping objects would cost time quadratic in the file's size.
  bytesRead_ += position + size - start;
  if (bytesRead_ > bytes_.size()) {
    refuse("objects lie over each other");
    return std::nullopt;
  }
  return read;
}

// Appends the object's value to the innermost open container, or opens it as the next one.
bool BinaryReader::visit(std::uint64_t object, bool asKey) {
  if (object >= objectCount_) return refuse("a reference to no object");
  auto& value = values_[object];
  if (value == beingRead) return refuse("a container holds itself");
  if (value == unread) {
    const auto read = objectAt(object);
    if (!read) return false;
    if (read->type >= 0xA) return asKey ? refuse("a container as a key") : openContainer(object, *read);
    const auto added = addScalar(*read);
    if (!added) return false;
    value = *added;
  }
  const auto kind = builder_.value(value).kind();
  if (asKey && (kind == Kind::array || kind == Kind::set || kind == Kind::dictionary)) {
    return refuse("a container as a key");
  }
  if (builder_.depth() > 0) builder_.append(value);
  return true;
}

bool BinaryReader::openContainer(std::uint64_t object, const Object& read) {
  const auto kind = read.type == 0xA ? Kind::array : read.type == 0xC ? Kind::set : Kind::dictionary;
  if (!builder_.open(kind)) return refuse("containers are nested too deep");
  values_[object] = beingRead;
  containers_.push_back({object, kind == Kind::dictionary, read.count, read.body});
  return true;
}

bool BinaryReader::visitNext() {
  auto& container = containers_.back();
  const auto total = container.isDictionary ? 2 * container.count : container.count;
  if (container.next == total) {
    const auto value = builder_.close();
    values_[container.object] = value;
    containers_.pop_back();
    if (!containers_.empty()) builder_.append(value);
    return true;
  }
  const auto step = container.next++;
  const bool asKey = container.isDictionary && step % 2 == 0;
  // A dictionary lists all keys first, then all values; they are read in turn.
  const auto place = container.isDictionary ? step / 2 + (asKey ? 0 : container.count) : step;
  return visit(number(container.references.substr(place * referenceSize_, referenceSize_)), asKey);
}

std::optional<PropertyListBuilder::Index> BinaryReader::addScalar(const Object& object) {
  switch (object.type) {
    case 0x0:
      return addSimple(object.info);
    case 0x4:
      return builder_.addData(object.body);
    case 0x5:
      return addASCII(object.body);
    case 0x6:
      return builder_.addText(utf8FromUTF16(object.body));
    default:
      return addNumber(object);
  }
}

std::optional<PropertyListBuilder::Index> BinaryReader::addSimple(std::uint8_t info) {
  switch (info) {
    case 0x0:
      return builder_.addNull();
    case 0x8:
      return builder_.addBoolean(false);
    case 0x9:
      return builder_.addBoolean(true);
    default:
      refuse("an object of an unknown type");
      return std::nullopt;
  }
}

std::optional<PropertyListBuilder::Index> BinaryReader::addNumber(const Object& object) {
  const auto value = number(object.body);
  const auto size = object.body.size();
  // Integers of one, two and four bytes are unsigned; writers store negative numbers in eight.
  if (object.type == 0x1 && size <= 16) return builder_.addInteger(static_cast<std::int64_t>(value));
  if (object.type == 0x2 && size == 4) {
    return builder_.addReal(std::bit_cast<float>(static_cast<std::uint32_t>(value)));
  }
  if (object.type == 0x2 && size == 8) return builder_.addReal(std::bit_cast<double>(value));
  if (object.type == 0x3 && size == 8) {
    return builder_.addDate({referenceDate + std::bit_cast<double>(value)});
  }
  if (object.type == 0x8 && value <= std::numeric_limits<std::uint32_t>::max()) {
    return builder_.addUID(static_cast<std::uint32_t>(value));
  }
  refuse("a number of an unknown size");
  return std::nullopt;
}

std::optional<PropertyListBuilder::Index> BinaryReader::addASCII(std::string_view characters) {
  if (isASCII(characters)) return builder_.addText(characters);
  refuse("an ASCII text with other characters");
  return std::nullopt;
}

}  // namespace

bool isBinaryPropertyList(std::string_view bytes) {
  return bytes.size() >= headerSize && bytes.starts_with(magic);
}

std::expected<PropertyList, std::string> readBinaryPropertyList(std::string_view bytes) {
  return BinaryReader(bytes).read();
}

}  // namespace vorli::formats
