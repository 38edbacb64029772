#include "formats/XMLPropertyList.h"

#include "formats/PropertyListBuilder.h"
#include "formats/XMLEncoding.h"
#include "formats/XMLScalars.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>

namespace vorli::formats {

namespace {

constexpr std::string_view uidKey = "CF$UID";

class XMLReader {
 public:
  explicit XMLReader(std::string_view text) : rest_(text) {}

  std::expected<PropertyList, std::string> read();

 private:
  using Builder = PropertyListBuilder;
  using Kind = PropertyList::Kind;

  struct Tag {
    std::string_view name;
    bool isEmpty;  // no content and no closing tag
  };

  bool skipToElement();
  bool skipBehind(std::string_view end);
  bool skipDocumentType();

  bool readElement();
  std::optional<Tag> takeTag();
  bool readOpeningTag(const Tag& tag);
  bool takeClosingTag(std::string_view name);
  bool closeInnermost();
  bool closeDictionary();

  bool readBoolean(const Tag& tag);
  bool readText(const Tag& tag);
  bool readScalar(const Tag& tag);
  std::optional<std::string> takeCharacters();
  std::optional<Builder::Index> addScalar(std::string_view name, std::string_view content);

  bool expectsKey() const;
  bool deliver(Builder::Index value, bool isKey = false);

  bool refuse(const char* reason) {
    refusal_ = reason;
    return false;
  }

  std::string_view rest_;  // the part not read yet
  Builder builder_{Builder::Repeated::lastCounts};
  std::optional<Builder::Index> root_;
  bool inPlist_ = false;  // inside the plist element
  bool isComplete_ = false;
  const char* refusal_ = "";
};

std::expected<PropertyList, std::string> XMLReader::read() {
  while (!isComplete_) {
    if (!skipToElement() || !readElement()) return std::unexpected(refusal_);
  }
  return builder_.finish(*root_);
}

// Skips white space, comments, processing instructions and, before the root element, the document type.
bool XMLReader::skipToElement() {
  while (true) {
    rest_.remove_prefix(
        static_cast<std::size_t>(std::ranges::find_if_not(rest_, isXMLBlank) - rest_.begin()));
    if (rest_.empty()) return refuse("the document ends too early");
    if (rest_[0] != '<') return refuse("text between elements");
    if (rest_.starts_with("<!--")) {
      rest_.remove_prefix(4);
      if (!skipBehind("-->")) return false;
    } else if (rest_.starts_with("<?")) {
      if (!skipBehind("?>")) return false;
    } else if (rest_.starts_with("<!")) {
      if (!skipDocumentType()) return false;
    } else {
      return true;
    }
  }
}

bool XMLReader::skipBehind(std::string_view end) {
  const auto position = rest_.find(end);
  if (position == std::string_view::npos) return refuse("a comment or an instruction without an end");
  rest_.remove_prefix(position + end.size());
  return true;
}

// A document type with declarations of its own is refused, and with it every entity that it could define.
bool XMLReader::skipDocumentType() {
  if (!rest_.starts_with("<!DOCTYPE") || inPlist_ || builder_.depth() > 0) {
    return refuse("a declaration in a wrong place");
  }
  const auto end = rest_.find_first_of("[>");
  if (end == std::string_view::npos || rest_[end] == '[') return refuse("a document type with declarations");
  rest_.remove_prefix(end + 1);
  return true;
}

bool XMLReader::readElement() {
  if (rest_.starts_with("</")) return closeInnermost();
  const auto tag = takeTag();
  return tag && readOpeningTag(*tag);
}

// Ignores attributes.
std::optional<XMLReader::Tag> XMLReader::takeTag() {
  const auto end = rest_.find('>');
  if (end == std::string_view::npos) {
    refuse("a tag without an end");
    return std::nullopt;
  }
  auto inside = rest_.substr(1, end - 1);
  rest_.remove_prefix(end + 1);
  const bool isEmpty = inside.ends_with('/');
  if (isEmpty) inside.remove_suffix(1);
  return Tag{inside.substr(0, inside.find_first_of(" \t\r\n")), isEmpty};
}

bool XMLReader::readOpeningTag(const Tag& tag) {
  if (tag.name == "plist") {
    if (inPlist_ || builder_.depth() > 0 || tag.isEmpty)
      return refuse("a plist element inside another, or empty");
    inPlist_ = true;
    return true;
  }
  if (tag.name == "dict" || tag.name == "array") {
    if (!builder_.open(tag.name == "dict" ? Kind::dictionary : Kind::array)) {
      return refuse("elements are nested too deep");
    }
    return !tag.isEmpty || deliver(builder_.close());
  }
  if (tag.name == "true" || tag.name == "false") return readBoolean(tag);
  if (tag.name == "string" || tag.name == "key") return readText(tag);
  return readScalar(tag);
}

bool XMLReader::takeClosingTag(std::string_view name) {
  auto rest = rest_;
  if (!rest.starts_with("</")) return refuse("an element inside one that holds none");
  rest.remove_prefix(2);
  if (!rest.starts_with(name)) return refuse("a closing tag that does not match");
  rest.remove_prefix(name.size());
  rest.remove_prefix(static_cast<std::size_t>(std::ranges::find_if_not(rest, isXMLBlank) - rest.begin()));
  if (!rest.starts_with('>')) return refuse("a closing tag that does not match");
  rest_ = rest.substr(1);
  return true;
}

bool XMLReader::closeInnermost() {
  if (builder_.depth() > 0) {
    const bool isDictionary = builder_.openKind() == Kind::dictionary;
    if (!takeClosingTag(isDictionary ? "dict" : "array")) return false;
    return isDictionary ? closeDictionary() : deliver(builder_.close());
  }
  if (!inPlist_) return refuse("a closing tag without an element");
  if (!root_) return refuse("a plist element without a value");
  isComplete_ = true;
  return takeClosingTag("plist");
}

// A dictionary that contains only an integer under the key of identifiers represents an identifier.
bool XMLReader::closeDictionary() {
  const auto contents = builder_.contents();
  if (contents.size() % 2 != 0) return refuse("a key without a value");
  bool isUID = !contents.empty();
  for (std::size_t i = 0; isUID && i < contents.size(); i += 2) {
    isUID = builder_.value(contents[i]).text() == uidKey;
  }
  const auto uid = isUID ? builder_.value(contents.back()).integer() : std::nullopt;
  if (!uid || *uid < 0 || *uid > std::numeric_limits<std::uint32_t>::max()) return deliver(builder_.close());
  builder_.discard();
  return deliver(builder_.addUID(static_cast<std::uint32_t>(*uid)));
}

bool XMLReader::readBoolean(const Tag& tag) {
  return (tag.isEmpty || takeClosingTag(tag.name)) && deliver(builder_.addBoolean(tag.name == "true"));
}

bool XMLReader::readText(const Tag& tag) {
  const bool isKey = tag.name == "key";
  if (tag.isEmpty) return deliver(builder_.addText(""), isKey);
  const auto text = takeCharacters();
  return text && takeClosingTag(tag.name) && deliver(builder_.addText(*text), isKey);
}

// Returns the text up to the closing tag, with references replaced and line ends unchanged.
std::optional<std::string> XMLReader::takeCharacters() {
  constexpr std::string_view sectionStart = "<![CDATA[", sectionEnd = "]]>";
  std::string text;
  while (true) {
    const auto end = rest_.find_first_of("<&");
    if (end == std::string_view::npos) break;
    text += rest_.substr(0, end);
    rest_.remove_prefix(end);
    if (rest_[0] == '&') {
      if (!takeXMLReference(rest_, text)) break;
    } else if (rest_.starts_with(sectionStart)) {
      rest_.remove_prefix(sectionStart.size());
      const auto section = rest_.substr(0, rest_.find(sectionEnd));
      text += section;
      if (!skipBehind(sectionEnd)) return std::nullopt;
    } else {
      return text;
    }
  }
  refuse("a text with an unknown reference or without an end");
  return std::nullopt;
}

bool XMLReader::readScalar(const Tag& tag) {
  if (tag.isEmpty) return refuse("an element without its content, or an unknown one");
  const auto content = rest_.substr(0, rest_.find('<'));
  rest_.remove_prefix(content.size());
  const auto value = addScalar(tag.name, content);
  if (!value) return refuse("an unknown element, or one with an improper content");
  return takeClosingTag(tag.name) && deliver(*value);
}

std::optional<PropertyListBuilder::Index> XMLReader::addScalar(std::string_view name,
                                                               std::string_view content) {
  if (name == "integer") {
    return parseXMLInteger(content).transform([&](auto value) { return builder_.addInteger(value); });
  }
  if (name == "real") {
    return parseXMLReal(content).transform([&](auto value) { return builder_.addReal(value); });
  }
  if (name == "date") {
    return parseXMLDate(content).transform([&](auto value) { return builder_.addDate(value); });
  }
  if (name == "data") return builder_.addData(decodeXMLData(content));
  return std::nullopt;
}

bool XMLReader::expectsKey() const {
  return builder_.depth() > 0 && builder_.openKind() == Kind::dictionary &&
         builder_.contents().size() % 2 == 0;
}

// Puts a complete value where it belongs: into the innermost container, or as the root.
bool XMLReader::deliver(Builder::Index value, bool isKey) {
  if (expectsKey() && !isKey) return refuse("a value without a key");
  if (builder_.depth() > 0) {
    builder_.append(value);
    return true;
  }
  if (root_) return refuse("two values in a plist element");
  root_ = value;
  isComplete_ = !inPlist_;
  return true;
}

}  // namespace

std::expected<PropertyList, std::string> readXMLPropertyList(std::string_view bytes) {
  const auto text = decodeXML(bytes);
  if (!text) return std::unexpected(text.error());
  return XMLReader(*text).read();
}

}  // namespace vorli::formats
