#include "formats/BinaryPropertyList.h"
#include "tests/formats/BinaryPropertyListWriter.h"

#include <cmath>
#include <functional>
#include <gtest/gtest.h>

namespace vorli::formats {
namespace {

using Kind = PropertyList::Kind;
using ListWriter = BinaryPropertyListWriter;
using Number = ListWriter::Number;
using namespace std::string_literals;

// A list whose root is the last object that `write` adds.
std::string listOf(const std::function<Number(ListWriter&)>& write, std::size_t referenceSize = 2) {
  ListWriter writer(referenceSize);
  const auto root = write(writer);
  return writer.bytes(root);
}

std::string listOf(std::string_view object) {
  return listOf([object](ListWriter& writer) { return writer.add(object); });
}

std::expected<PropertyList, std::string> readBinary(std::string_view bytes) {
  return readBinaryPropertyList(bytes);
}

std::string refusal(std::string_view bytes) {
  const auto list = readBinary(bytes);
  return list ? "" : list.error();
}

bool isReadAsBinary(std::string_view bytes) {
  return readBinary(bytes).has_value();
}

TEST(BinaryPropertyListTest, scalarsAreReadAsWritten) {
  EXPECT_EQ(readBinary(listOf("\x00"s))->root().kind(), Kind::null);
  EXPECT_EQ(readBinary(listOf("\x08"))->root().boolean(), false);
  EXPECT_EQ(readBinary(listOf("\x09"))->root().boolean(), true);
  EXPECT_EQ(readBinary(listOf("\x44\x00\xFF\x0A\x20"s))->root().data(), "\x00\xFF\x0A\x20"s);
  EXPECT_EQ(readBinary(listOf("\x54Vorl"))->root().text(), "Vorl");
  EXPECT_EQ(readBinary(listOf("\x50"))->root().text(), "");
  EXPECT_EQ(readBinary(listOf("\x60"))->root().text(), "");
  EXPECT_EQ(readBinary(listOf("\x22\x3F\xC0\x00\x00"s))->root().real(), 1.5);
  EXPECT_EQ(readBinary(listOf("\x23\xC0\x04\x00\x00\x00\x00\x00\x00"s))->root().real(), -2.5);
  EXPECT_EQ(readBinary(listOf("\x33\x00\x00\x00\x00\x00\x00\x00\x00"s))->root().date(), Date{978307200.0});
  EXPECT_EQ(readBinary(listOf("\x80\x07"))->root().uid(), 7U);
}

TEST(BinaryPropertyListTest, integersHaveASignFromEightBytesOn) {
  EXPECT_EQ(readBinary(listOf("\x10\xFF"))->root().integer(), 255);
  EXPECT_EQ(readBinary(listOf("\x11\xFF\xFF"))->root().integer(), 65535);
  EXPECT_EQ(readBinary(listOf("\x12\xFF\xFF\xFF\xFF"))->root().integer(), 4294967295);
  EXPECT_EQ(readBinary(listOf("\x13" + std::string(8, '\xFF')))->root().integer(), -1);
  EXPECT_EQ(readBinary(listOf("\x14" + std::string(8, '\x7F') + bigEndian(42, 8)))->root().integer(), 42);
  EXPECT_FALSE(isReadAsBinary(listOf("\x15" + std::string(32, '\0'))));
}

TEST(BinaryPropertyListTest, otherSizesOfRealsAndDatesAreRefused) {
  EXPECT_FALSE(isReadAsBinary(listOf("\x21\x00\x00"s)));
  EXPECT_FALSE(isReadAsBinary(listOf("\x24" + std::string(16, '\0'))));
  EXPECT_FALSE(isReadAsBinary(listOf("\x32" + std::string(4, '\0'))));
}

TEST(BinaryPropertyListTest, identifiersFitThirtyTwoBits) {
  EXPECT_EQ(readBinary(listOf("\x83\xFF\xFF\xFF\xFF"))->root().uid(), 4294967295);
  EXPECT_EQ(readBinary(listOf("\x87" + bigEndian(9, 8)))->root().uid(), 9U);
  EXPECT_FALSE(isReadAsBinary(listOf("\x84" + bigEndian(4294967296, 5))));
}

TEST(BinaryPropertyListTest, unknownMarkersAreRefused) {
  for (const char marker : "\x01\x07\x0A\x0F\x70\x90\xB0\xE0\xF0"s) {
    EXPECT_FALSE(isReadAsBinary(listOf(std::string(1, marker)))) << static_cast<int>(marker);
  }
}

TEST(BinaryPropertyListTest, utf16IsReadWithItsSurrogates) {
  const auto text = [](std::u16string_view units) {
    return std::string(
        *readBinary(listOf([&](ListWriter& writer) { return writer.utf16(units); }))->root().text());
  };
  EXPECT_EQ(text(u"Bücher €"), "Bücher €");
  EXPECT_EQ(text(u"\U0001F600!"), "\U0001F600!");
  EXPECT_EQ(text(std::u16string{u'a', char16_t{0xD83D}, u'b'}), "a\uFFFDb");
  EXPECT_EQ(text(std::u16string{char16_t{0xDE00}}), "\uFFFD");
  EXPECT_EQ(text(std::u16string{char16_t{0xD83D}}), "\uFFFD");
}

TEST(BinaryPropertyListTest, textsAndKeysMayHoldNUL) {
  const auto list = readBinary(listOf([](ListWriter& writer) {
    const auto key = writer.utf16(std::u16string_view(u"a\0b", 3));
    return writer.dictionary({{key, writer.text("c\0d"s)}});
  }));
  EXPECT_EQ(list->root().find("a\0b"s)->text(), "c\0d"s);
  EXPECT_FALSE(list->root().find("a"));
}

TEST(BinaryPropertyListTest, asciiWithAHighByteSpoilsTheFile) {
  EXPECT_TRUE(isReadAsBinary(listOf("\x51\x7F")));
  EXPECT_EQ(refusal(listOf("\x51\x80")), "an ASCII text with other characters");
}

TEST(BinaryPropertyListTest, arraysSetsAndDictionariesHoldTheirValues) {
  const auto list = readBinary(listOf([](ListWriter& writer) {
    const auto array = writer.array({writer.byte(1), writer.byte(2)});
    const auto set = writer.set({writer.byte(3)});
    return writer.keyed({{"b", array}, {"a", set}, {"", writer.boolean(true)}});
  }));
  const auto root = list->root();
  EXPECT_EQ(root.count(), 3U);
  EXPECT_EQ(root.find("b")->kind(), Kind::array);
  EXPECT_EQ(root.find("b")->count(), 2U);
  EXPECT_EQ(root.find("b")->element(1).integer(), 2);
  EXPECT_EQ(root.find("a")->kind(), Kind::set);
  EXPECT_EQ(root.find("a")->element(0).integer(), 3);
  EXPECT_EQ(root.find("")->boolean(), true);
  EXPECT_FALSE(root.find("c"));
}

TEST(BinaryPropertyListTest, theFirstOfEqualKeysCounts) {
  const auto list = readBinary(listOf([](ListWriter& writer) {
    return writer.keyed({{"z", writer.byte(0)}, {"a", writer.byte(1)}, {"a", writer.byte(2)}});
  }));
  EXPECT_EQ(list->root().find("a")->integer(), 1);
  EXPECT_EQ(list->root().find("z")->integer(), 0);
  EXPECT_EQ(list->root().count(), 2U);
}

TEST(BinaryPropertyListTest, aKeyIsAnyScalarAndNoContainer) {
  const auto list = readBinary(listOf([](ListWriter& writer) {
    const auto number = writer.byte(1), key = writer.text("a");
    return writer.dictionary({{number, number}, {key, number}});
  }));
  EXPECT_EQ(list->root().find("a")->integer(), 1);
  EXPECT_EQ(list->root().count(), 1U);

  EXPECT_EQ(refusal(listOf([](ListWriter& writer) {
              const auto array = writer.array({});
              return writer.dictionary({{array, array}});
            })),
            "a container as a key");
  EXPECT_EQ(refusal(listOf([](ListWriter& writer) {
              const auto array = writer.array({}), key = writer.text("a");
              return writer.dictionary({{key, array}, {array, key}});
            })),
            "a container as a key");
}

TEST(BinaryPropertyListTest, longCountsAreWrittenAsIntegers) {
  const std::string text(300, 'x');
  for (const auto& count : {"\x11\x01\x2C"s, "\x12" + bigEndian(300, 4), "\x14" + bigEndian(300, 16)}) {
    EXPECT_EQ(readBinary(listOf("\x5F" + count + text))->root().text(), text);
  }
  EXPECT_FALSE(isReadAsBinary(listOf("\x5F\x22" + bigEndian(300, 4) + text)));
  EXPECT_FALSE(isReadAsBinary(listOf("\x5F"s)));
  EXPECT_FALSE(isReadAsBinary(listOf("\x5F\x13\x00"s)));
}

TEST(BinaryPropertyListTest, theLastCharacterOfTheHeaderIsFree) {
  auto bytes = listOf("\x09");
  bytes[7] = '5';
  EXPECT_TRUE(isReadAsBinary(bytes));
  bytes[6] = '1';
  EXPECT_FALSE(isReadAsBinary(bytes));
  EXPECT_TRUE(isBinaryPropertyList("bplist0x"));
  EXPECT_FALSE(isBinaryPropertyList("bplist0"));
}

TEST(BinaryPropertyListTest, everyFileThatIsCutShortOrTooLongIsRefused) {
  const auto bytes = listOf([](ListWriter& writer) { return writer.keyed({{"a", writer.byte(1)}}); });
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    EXPECT_FALSE(isReadAsBinary(std::string_view(bytes).substr(0, length))) << length;
  }
  EXPECT_TRUE(isReadAsBinary(bytes));
  EXPECT_FALSE(isReadAsBinary(bytes + "\n"));
}

// A file of one `true` with the given trailer.
std::string trailed(std::uint64_t offsetSize, std::uint64_t referenceSize, std::uint64_t count,
                    std::uint64_t root, std::uint64_t table) {
  return "bplist00\x09\x08" + ListWriter::trailer(offsetSize, referenceSize, count, root, table);
}

TEST(BinaryPropertyListTest, theTrailerMustFitTheFile) {
  constexpr std::uint64_t huge = std::uint64_t{1} << 63;
  EXPECT_TRUE(isReadAsBinary(trailed(1, 1, 1, 0, 9)));
  EXPECT_FALSE(isReadAsBinary(trailed(0, 1, 1, 0, 9)));
  EXPECT_FALSE(isReadAsBinary(trailed(1, 0, 1, 0, 9)));
  EXPECT_FALSE(isReadAsBinary(trailed(2, 1, 1, 0, 9)));
  EXPECT_FALSE(isReadAsBinary(trailed(1, 1, 0, 0, 9)));
  EXPECT_FALSE(isReadAsBinary(trailed(1, 1, 2, 0, 9)));
  EXPECT_FALSE(isReadAsBinary(trailed(1, 1, huge, 0, 9)));
  EXPECT_FALSE(isReadAsBinary(trailed(1, 1, 1, 1, 9)));
  EXPECT_FALSE(isReadAsBinary(trailed(1, 1, 1, huge, 9)));
  EXPECT_FALSE(isReadAsBinary(trailed(1, 1, 2, 0, 8)));
  EXPECT_FALSE(isReadAsBinary(trailed(1, 1, 1, 0, 10)));
  EXPECT_FALSE(isReadAsBinary(trailed(1, 1, 1, 0, huge)));
  // The product of size and count fits the file only if 64 bits overflow.
  EXPECT_FALSE(isReadAsBinary(trailed(2, 1, huge, 0, 10)));
  EXPECT_FALSE(isReadAsBinary(trailed(255, 255, huge, 0, 9)));
}

TEST(BinaryPropertyListTest, anOffsetLiesBetweenHeaderAndTable) {
  for (const char offset : "\x00\x07\x09\xFF"s) {
    auto bytes = trailed(1, 1, 1, 0, 9);
    bytes[9] = offset;
    EXPECT_EQ(refusal(bytes), "an object lies outside of its place") << static_cast<int>(offset);
  }
}

TEST(BinaryPropertyListTest, sizesMustBeWideEnough) {
  const auto withObjects = [](std::size_t count) {
    ListWriter writer(1);
    std::vector<Number> elements;
    while (elements.size() + 1 < count) elements.push_back(writer.boolean(true));
    const auto root = writer.array(elements);
    return writer.bytes(root);
  };
  EXPECT_TRUE(isReadAsBinary(withObjects(255)));
  EXPECT_EQ(refusal(withObjects(256)), "the references are too narrow");

  const auto withTableAt = [](std::size_t table) {
    const std::string text(table - 12, 'x');
    return "bplist00\x5F\x11" + bigEndian(text.size(), 2) + text + "\x08" +
           ListWriter::trailer(1, 1, 1, 0, table);
  };
  EXPECT_TRUE(isReadAsBinary(withTableAt(255)));
  EXPECT_EQ(refusal(withTableAt(256)), "the offsets are too narrow");
}

TEST(BinaryPropertyListTest, countsBeyondTheFileAreRefused) {
  for (const char type : "\x40\x50\x60\xA0\xC0\xD0"s) {
    for (const std::uint64_t count : {std::uint64_t{20}, std::uint64_t{1} << 31, std::uint64_t{1} << 62,
                                      std::uint64_t{1} << 63, ~std::uint64_t{0}}) {
      EXPECT_EQ(refusal(listOf(ListWriter::counted(static_cast<std::uint8_t>(type), count) + "abc")),
                "an object reaches beyond its place");
    }
  }
  // Exactly up to the table.
  EXPECT_TRUE(
      isReadAsBinary(listOf("\x53"
                            "abc")));
  EXPECT_FALSE(
      isReadAsBinary(listOf("\x54"
                            "abc")));
  EXPECT_TRUE(
      isReadAsBinary(listOf("\x61"
                            "ab")));
  EXPECT_FALSE(
      isReadAsBinary(listOf("\x62"
                            "abc")));
}

TEST(BinaryPropertyListTest, referencesBeyondTheTableAreRefused) {
  EXPECT_TRUE(isReadAsBinary(listOf([](ListWriter& writer) { return writer.array({writer.byte(1), 0}); })));
  EXPECT_EQ(refusal(listOf([](ListWriter& writer) {
              return writer.array({writer.byte(1), 2});
            })),
            "a reference to no object");
}

TEST(BinaryPropertyListTest, unreachableObjectsAreIgnored) {
  EXPECT_TRUE(isReadAsBinary(listOf([](ListWriter& writer) {
    writer.add("\x51\x80");
    writer.array({1});
    return writer.boolean(true);
  })));
}

TEST(BinaryPropertyListTest, aContainerThatHoldsItselfIsRefused) {
  EXPECT_EQ(refusal(listOf([](ListWriter& writer) { return writer.array({0}); })),
            "a container holds itself");
  EXPECT_EQ(refusal(listOf([](ListWriter& writer) {
              writer.array({1});
              writer.set({3});
              return writer.dictionary({{writer.text("a"), 0}});
            })),
            "a container holds itself");
}

std::string nestedBinary(std::size_t depth) {
  ListWriter writer(4);
  auto innermost = writer.array({});
  for (std::size_t i = 1; i < depth; ++i) innermost = writer.array({innermost});
  return writer.bytes(innermost);
}

TEST(BinaryPropertyListTest, nestingEndsAtFiveHundredAndTwelve) {
  EXPECT_TRUE(isReadAsBinary(nestedBinary(512)));
  EXPECT_EQ(refusal(nestedBinary(513)), "containers are nested too deep");
  EXPECT_FALSE(isReadAsBinary(nestedBinary(200000)));
}

TEST(BinaryPropertyListTest, aSharedValueIsStoredOnce) {
  // Expanded, these have 2^60 leaves.
  const auto bytes = listOf([](ListWriter& writer) {
    auto shared = writer.text("leaf");
    for (int i = 0; i < 60; ++i) shared = writer.array({shared, shared});
    return shared;
  });
  const auto list = readBinary(bytes);
  ASSERT_TRUE(list);
  auto value = list->root();
  for (int i = 0; i < 60; ++i) value = value.element(1);
  EXPECT_EQ(value.text(), "leaf");
}

TEST(BinaryPropertyListTest, overlappingObjectsAreRefused) {
  ListWriter writer(3);
  // Data of 60,000 bytes begins at every sixth byte: 600 MB in a file of 200 kB.
  std::string run;
  for (int i = 0; i < 20000; ++i) run += "\x4F\x12" + bigEndian(60000, 4);
  std::vector<Number> all{writer.add(run)};
  for (std::uint64_t i = 1; i < 10000; ++i) all.push_back(writer.addAt(writer.offsetOf(0) + 6 * i));
  const auto root = writer.array(all);
  EXPECT_EQ(refusal(writer.bytes(root)), "objects lie over each other");
}

TEST(BinaryPropertyListTest, manyDictionariesWithTheSameLongKeysAreReadAtOnce) {
  ListWriter writer(3);
  const std::string longKey(400000, 'k');
  const auto one = writer.text(longKey), other = writer.text(longKey);
  std::vector<std::pair<Number, Number>> entries;
  for (int i = 0; i < 500; ++i) entries.emplace_back(i % 2 == 0 ? one : other, one);
  std::vector<Number> dictionaries;
  for (int i = 0; i < 300; ++i) dictionaries.push_back(writer.dictionary(entries));
  const auto list = readBinary(writer.bytes(writer.array(dictionaries)));
  ASSERT_TRUE(list);
  EXPECT_EQ(list->root().element(299).find(longKey)->text(), longKey);
  EXPECT_EQ(list->root().element(299).count(), 1U);
}

}  // namespace
}  // namespace vorli::formats
