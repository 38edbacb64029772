#include "base/UTF8.h"
#include "formats/KeyedArchive.h"
#include "tests/fuzz/Fuzz.h"

using namespace vorli;
using namespace vorli::formats;

namespace {

using Object = KeyedArchive::Object;

void append(std::vector<Object>& waiting, const std::vector<Object>& found) {
  for (const auto& object : found) {
    if (waiting.size() < 200) waiting.push_back(object);
  }
}

void look(const Object& object, std::vector<Object>& waiting) {
  const auto name = object.className();
  const auto array = object.arrayElements(), set = object.setElements();
  FUZZ_CHECK(isUTF8(object.text().value_or("")));
  FUZZ_CHECK(!array || name.find("Array") != std::string_view::npos);
  FUZZ_CHECK(!set || (!array && name.find("Set") != std::string_view::npos));
  FUZZ_CHECK(!object.uuid() || name == "NSUUID");
  FUZZ_CHECK(!object.data() || !object.text());
  object.integer("userElection");
  append(waiting, array.value_or(std::vector<Object>()));
  append(waiting, set.value_or(std::vector<Object>()));
  for (const auto* key : {"allContainers", "bookmark", "internalItems", "container", "data", "identifier"}) {
    if (const auto field = object.object(key)) append(waiting, {*field});
  }
  if (const auto entry = object.entry("backgroundItems")) append(waiting, {*entry});
}

}  // namespace

void fuzz(std::string_view bytes) {
  auto list = readPropertyList(bytes, 1 << 20);
  if (!list) return;
  const auto archive = KeyedArchive::open(
      *std::move(list), {"BackgroundItems", "BackgroundItemContainer", "BackgroundItem", "Bookmark"});
  const auto root = archive ? archive->root() : std::nullopt;
  std::vector<Object> waiting;
  if (root) waiting.push_back(*root);
  for (int left = 200; left > 0 && !waiting.empty(); --left) {
    const auto object = waiting.back();
    waiting.pop_back();
    look(object, waiting);
  }
}
