#include "startup/BTMFileParser.h"

#include "formats/BookmarkData.h"
#include "formats/KeyedArchive.h"
#include "formats/PropertyList.h"

#include <cstddef>
#include <utility>

namespace vorli {

namespace {

using Object = formats::KeyedArchive::Object;

constexpr std::size_t largestStore = std::size_t{16} * 1024 * 1024;
/// A file can refer to one long collection from many places; real stores hold a few hundred elements.
constexpr int mostElements = 20000;

/// Reads one store, up to `mostElements` elements.
class StoreReader {
 public:
  explicit StoreReader(ports::StartupFiles& files) : files_(files) {}

  std::vector<BTMFileParser::Container> containers(const formats::KeyedArchive& archive) {
    std::vector<BTMFileParser::Container> containers;
    for (const auto& element : allContainers(archive)) {
      if (!takesElement()) break;
      if (auto container = read(element)) containers.push_back(std::move(*container));
    }
    return containers;
  }

 private:
  static std::vector<Object> allContainers(const formats::KeyedArchive& archive) {
    const auto root = archive.root();
    const auto items = root ? root->entry("backgroundItems") : std::nullopt;
    if (!items || items->className() != "BackgroundItems") return {};
    const auto all = items->object("allContainers");
    if (!all) return {};
    auto elements = all->setElements();
    if (!elements) elements = all->arrayElements();
    return std::move(elements).value_or(std::vector<Object>());
  }

  std::optional<BTMFileParser::Container> read(const Object& element) {
    if (element.className() != "BackgroundItemContainer") return std::nullopt;
    BTMFileParser::Container container;
    if (const auto identifier = element.object("identifier")) container.identifier = identifier->uuid();
    container.appURL = resolvedBookmark(element);
    container.internalURLs = internalURLs(element);
    container.isEnabled = element.integer("userElection") == 0;
    if (!container.appURL && container.internalURLs.empty()) return std::nullopt;
    return container;
  }

  std::vector<std::string> internalURLs(const Object& container) {
    std::vector<std::string> urls;
    const auto set = container.object("internalItems");
    const auto items = set ? set->setElements() : std::nullopt;
    if (!items) return urls;
    for (const auto& item : *items) {
      if (!takesElement()) break;
      if (item.className() != "BackgroundItem") continue;
      if (auto url = resolvedBookmark(item)) urls.push_back(std::move(*url));
    }
    return urls;
  }

  // Mounts nothing and never prompts the user: a file that does not exist now has no URL.
  std::optional<std::string> resolvedBookmark(const Object& item) {
    const auto bookmark = item.object("bookmark");
    if (!bookmark || bookmark->className() != "Bookmark") return std::nullopt;
    const auto bytes = bookmark->object("data");
    const auto data = bytes ? bytes->data() : std::nullopt;
    if (!data) return std::nullopt;
    auto target = formats::readBookmarkData(*data);
    if (!target || !files_.exists(target->path)) return std::nullopt;
    return std::move(target->path);
  }

  bool takesElement() { return ++elements_ <= mostElements; }

  ports::StartupFiles& files_;
  int elements_ = 0;
};

}  // namespace

std::vector<BTMFileParser::Container> BTMFileParser::parse(ports::StartupFiles& files,
                                                           const std::string& url) {
  const auto bytes = files.read(url, largestStore);
  if (!bytes) return {};
  auto list = formats::readPropertyList(*bytes, largestStore);
  if (!list) return {};
  const auto archive = formats::KeyedArchive::open(
      std::move(*list), {"BackgroundItems", "BackgroundItemContainer", "BackgroundItem", "Bookmark"});
  if (!archive) return {};
  return StoreReader(files).containers(*archive);
}

}  // namespace vorli
