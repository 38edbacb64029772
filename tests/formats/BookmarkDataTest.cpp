#include "formats/BookmarkData.h"
#include "tests/formats/BookmarkDataWriter.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <optional>

namespace vorli::formats {
namespace {

using BookmarkWriter = BookmarkDataWriter;
using Components = std::vector<std::string>;
using namespace std::string_literals;

std::optional<std::string> pathOf(std::string_view bytes) {
  const auto bookmark = readBookmarkData(bytes);
  return bookmark ? std::optional(bookmark->path) : std::nullopt;
}

std::optional<std::string> pathFrom(const Components& components, std::string_view volume = "/") {
  return pathOf(BookmarkWriter::bookmarkOf(components, volume));
}

const Components application{"Applications", "Caf\u00e9 Bar.app"};

TEST(BookmarkDataTest, thePathIsMadeOfItsComponents) {
  EXPECT_EQ(readBookmarkData(BookmarkWriter::bookmarkOf(application)),
            (BookmarkData{.path = "/Applications/Caf\u00e9 Bar.app", .volume = "/"}));
}

TEST(BookmarkDataTest, aBookmarkWithoutAVolumeIsOnTheSystems) {
  EXPECT_EQ(readBookmarkData(BookmarkWriter::bookmarkOf(application, ""))->volume, "/");
}

TEST(BookmarkDataTest, aPathOnAnotherVolumeBeginsAtItsMountPoint) {
  EXPECT_EQ(pathFrom({"Tool.app"}, "/Volumes/Disk"), "/Volumes/Disk/Tool.app");
  EXPECT_EQ(pathFrom({"Volumes", "Disk", "Tool.app"}, "/Volumes/Disk"), "/Volumes/Disk/Tool.app");
  EXPECT_EQ(pathFrom({"Volumes", "Disk"}, "/Volumes/Disk"), "/Volumes/Disk");
  EXPECT_EQ(pathFrom({"Volumes", "Disk2", "a"}, "/Volumes/Disk"), "/Volumes/Disk/Volumes/Disk2/a");
  EXPECT_EQ(pathFrom({"Tool.app"}, "/Volumes/Disk/"), "/Volumes/Disk/Tool.app");
  EXPECT_EQ(readBookmarkData(BookmarkWriter::bookmarkOf({"a"}, "/Volumes//Disk/"))->volume, "/Volumes/Disk");
}

TEST(BookmarkDataTest, aPathWithoutComponentsIsTheVolumeItself) {
  EXPECT_EQ(pathFrom(Components{}), "/");
  EXPECT_EQ(pathFrom(Components{}, "/Volumes/Disk"), "/Volumes/Disk");
}

TEST(BookmarkDataTest, anEmptyRecordMayEndTheData) {
  BookmarkWriter writer;
  const auto afterTable = writer.next() + 32;
  const auto table = writer.table(1, {{BookmarkWriter::pathKey, afterTable}});
  EXPECT_EQ(writer.array({}), afterTable);
  EXPECT_EQ(pathOf(writer.bytes(table)), "/");
}

TEST(BookmarkDataTest, stepsUpAreResolvedAndNeverLeadAboveTheRoot) {
  EXPECT_EQ(pathFrom({"a", "..", "b"}), "/b");
  EXPECT_EQ(pathFrom({"a", "b", "..", ".."}), "/");
  EXPECT_EQ(pathFrom({"a", "..", "..", "b"}), std::nullopt);
  EXPECT_EQ(pathFrom({"a"}, "/Volumes/../Disk"), "/Disk/a");
  EXPECT_EQ(pathFrom({"a"}, "/.."), std::nullopt);
}

TEST(BookmarkDataTest, improperComponentsAreRefused) {
  for (const auto& component : {""s, "."s, "a/b"s, "/"s, "a\0b"s, "\xFF"s, "\xC0\xAF"s}) {
    EXPECT_EQ(pathFrom({"a", component}), std::nullopt) << component;
  }
  EXPECT_EQ(pathFrom({"..."}), "/...");
}

TEST(BookmarkDataTest, improperVolumesAreRefused) {
  for (const auto& volume : {"Volumes/Disk"s, "/Volumes/./Disk"s, "/a\0b"s, "/\xFF"s}) {
    EXPECT_EQ(pathFrom({"a"}, volume), std::nullopt) << volume;
  }
  BookmarkWriter writer;
  const BookmarkWriter::Entries entries{{BookmarkWriter::pathKey, writer.texts({"a"})},
                                        {BookmarkWriter::volumeKey, writer.texts({"Volumes"})}};
  EXPECT_EQ(pathOf(writer.bytes(writer.table(1, entries))), std::nullopt);
}

TEST(BookmarkDataTest, aPathBeyondTheLimitIsRefused) {
  EXPECT_EQ(pathFrom({std::string(4095, 'a')})->size(), 4096U);
  EXPECT_EQ(pathFrom({std::string(4096, 'a')}), std::nullopt);
  EXPECT_EQ(pathFrom({"a"}, "/" + std::string(4095, 'a'))->size(), 4098U);
  EXPECT_EQ(pathFrom({"a"}, "/" + std::string(4096, 'a')), std::nullopt);
}

TEST(BookmarkDataTest, theTableOfTheTargetIsTakenWhereverItLies) {
  BookmarkWriter writer;
  const auto image = writer.texts({"Images", "Disk.dmg"}), target = writer.texts({"Tool.app"});
  const auto last = writer.table(1, {{BookmarkWriter::pathKey, target}});
  const auto middle = writer.table(3, {{BookmarkWriter::pathKey, image}}, last);
  const auto first = writer.table(2, {{BookmarkWriter::pathKey, image}}, middle);
  EXPECT_EQ(pathOf(writer.bytes(first)), "/Tool.app");
  EXPECT_EQ(pathOf(writer.bytes(last)), "/Tool.app");
}

TEST(BookmarkDataTest, withoutATableOfTheTargetThereIsNoPath) {
  BookmarkWriter writer;
  const auto path = writer.texts({"a"});
  EXPECT_EQ(pathOf(writer.bytes(writer.table(2, {{BookmarkWriter::pathKey, path}}))), std::nullopt);
  EXPECT_EQ(pathOf(writer.bytes(0)), std::nullopt);
  EXPECT_EQ(pathOf(writer.bytes(writer.table(1, {}))), std::nullopt);
}

TEST(BookmarkDataTest, customKeysAreIgnored) {
  BookmarkWriter writer;
  const auto other = writer.texts({"other"}), path = writer.texts({"a"});
  EXPECT_EQ(pathOf(writer.bytes(
                writer.table(1, {{0x80001004, other}, {0xF000F, other}, {BookmarkWriter::pathKey, path}}))),
            "/a");
}

TEST(BookmarkDataTest, tablesThatNameEachOtherCauseNoLoop) {
  BookmarkWriter writer;
  const auto itself = writer.next();
  EXPECT_EQ(pathOf(writer.bytes(writer.table(2, {}, itself))), std::nullopt);
  const auto first = writer.next();
  const auto second = writer.table(3, {}, first + 20);
  writer.table(2, {}, second);
  EXPECT_EQ(pathOf(writer.bytes(first)), std::nullopt);
}

TEST(BookmarkDataTest, offsetsCountFromTheEndOfTheHeader) {
  BookmarkWriter writer;
  const auto table = writer.table(1, {{BookmarkWriter::pathKey, writer.texts({"a"})}});
  for (const std::uint32_t header : {16, 48, 64, 1000}) {
    EXPECT_EQ(pathOf(writer.bytes(table, header)), "/a") << header;
  }
  auto tooShort = writer.bytes(table, 16);
  tooShort.replace(12, 4, littleEndian(15));
  EXPECT_EQ(pathOf(tooShort), std::nullopt);
  tooShort.replace(12, 4, littleEndian(static_cast<std::uint32_t>(tooShort.size() + 1)));
  EXPECT_EQ(pathOf(tooShort), std::nullopt);
}

TEST(BookmarkDataTest, theMagicIsOneOfTwo) {
  BookmarkWriter writer;
  const auto table = writer.table(1, {{BookmarkWriter::pathKey, writer.texts({"a"})}});
  EXPECT_EQ(pathOf(writer.bytes(table, 48, "alis")), "/a");
  EXPECT_EQ(pathOf(writer.bytes(table, 48, "boot")), std::nullopt);
}

TEST(BookmarkDataTest, aClassicAliasHasNoPath) {
  BookmarkWriter writer;
  const auto alias = writer.record(BookmarkWriter::dataType, std::string(150, '\0'));
  EXPECT_EQ(pathOf(writer.bytes(writer.table(1, {{0xFE00, alias}}), 48, "alis")), std::nullopt);
  EXPECT_EQ(pathOf("\0\0\0\0\0\x96\0\2"s + std::string(142, '\0')), std::nullopt);
}

TEST(BookmarkDataTest, everyFileThatIsCutShortIsRefused) {
  const auto bytes = BookmarkWriter::bookmarkOf(application);
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    // Ends where its memory ends, so that AddressSanitizer sees each read beyond it.
    const std::vector<char> cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length));
    EXPECT_EQ(pathOf({cut.data(), cut.size()}), std::nullopt) << length;
  }
  EXPECT_EQ(pathOf(bytes + "more"), "/Applications/Caf\u00e9 Bar.app");
}

TEST(BookmarkDataTest, theTotalIsTheEndOfTheData) {
  auto bytes = BookmarkWriter::bookmarkOf(application);
  bytes.replace(4, 4, littleEndian(static_cast<std::uint32_t>(bytes.size() - 1)));
  EXPECT_EQ(pathOf(bytes), std::nullopt);
  bytes.replace(4, 4, littleEndian(0xFFFFFFFF));
  EXPECT_EQ(pathOf(bytes), std::nullopt);
}

TEST(BookmarkDataTest, tablesMustFit) {
  const auto withCount = [](std::uint32_t count) {
    BookmarkWriter writer;
    const auto path = writer.texts({"a"});
    return writer.bytes(writer.tableOfCount(count, 1, {{BookmarkWriter::pathKey, path}}));
  };
  EXPECT_EQ(pathOf(withCount(1)), "/a");
  for (const std::uint32_t count :
       {2U, 0x15555556U, 0x80000000U, 0xFFFFFFFFU}) {  // the second: 12 * count wraps to 8
    EXPECT_EQ(pathOf(withCount(count)), std::nullopt) << count;
  }
  BookmarkWriter writer;
  const auto path = writer.texts({"a"});
  EXPECT_EQ(pathOf(writer.bytes(writer.tableOfCount(1, 1, {{BookmarkWriter::pathKey, path}}, 0, 0xFFFFFFFF))),
            std::nullopt);
  for (const std::uint32_t offset : {1000U, 0x7FFFFFFFU, 0xFFFFFFF0U, 0xFFFFFFFFU}) {
    EXPECT_EQ(pathOf(writer.bytes(offset)), std::nullopt) << offset;
    EXPECT_EQ(pathOf(writer.bytes(writer.table(2, {}, offset))), std::nullopt) << offset;
  }
}

TEST(BookmarkDataTest, recordsMustFit) {
  const auto withComponent = [](std::uint32_t length) {
    BookmarkWriter writer;
    const auto path = writer.array({writer.recordOfLength(length, BookmarkWriter::textType, "abcd")});
    return writer.bytes(writer.table(1, {{BookmarkWriter::pathKey, path}}));
  };
  EXPECT_EQ(pathOf(withComponent(4)), "/abcd");
  EXPECT_EQ(pathOf(withComponent(3)), "/abc");
  for (const std::uint32_t length : {500U, 0x7FFFFFFFU, 0xFFFFFFFCU, 0xFFFFFFFFU}) {
    EXPECT_EQ(pathOf(withComponent(length)), std::nullopt) << length;
  }
  for (const std::uint32_t offset : {1000U, 0x7FFFFFFFU, 0xFFFFFFF8U, 0xFFFFFFFFU}) {
    BookmarkWriter writer;
    const auto path = writer.array({offset});
    EXPECT_EQ(pathOf(writer.bytes(writer.table(1, {{BookmarkWriter::pathKey, path}}))), std::nullopt)
        << offset;
    EXPECT_EQ(pathOf(writer.bytes(writer.table(1, {{BookmarkWriter::pathKey, offset}}))), std::nullopt)
        << offset;
  }
}

TEST(BookmarkDataTest, thePathMustBeAnArrayOfTexts) {
  BookmarkWriter writer;
  const auto text = writer.text("a"), data = writer.record(BookmarkWriter::dataType, "a");
  const auto odd = writer.record(BookmarkWriter::arrayType, std::string(5, '\0'));
  for (const auto path : {text, data, writer.array({data}), writer.array({text, data}), odd,
                          writer.array({writer.array({text})})}) {
    EXPECT_EQ(pathOf(writer.bytes(writer.table(1, {{BookmarkWriter::pathKey, path}}))), std::nullopt) << path;
  }
}

TEST(BookmarkDataTest, anArrayThatHoldsItselfIsRefused) {
  BookmarkWriter writer;
  const auto itself = writer.next();
  writer.array({itself});
  EXPECT_EQ(pathOf(writer.bytes(writer.table(1, {{BookmarkWriter::pathKey, itself}}))), std::nullopt);
}

TEST(BookmarkDataTest, oneLongTextNamedManyTimesIsRefused) {
  BookmarkWriter writer;
  const auto text = writer.text(std::string(1000, 'a'));
  const auto pathOfTexts = [&](std::size_t count) {
    const auto path = writer.array(std::vector<BookmarkWriter::Offset>(count, text));
    return pathOf(writer.bytes(writer.table(1, {{BookmarkWriter::pathKey, path}})));
  };
  EXPECT_EQ(pathOfTexts(4)->size(), 4004U);
  EXPECT_EQ(pathOfTexts(5), std::nullopt);
  EXPECT_EQ(pathOfTexts(100000), std::nullopt);
}

TEST(BookmarkDataTest, unneededRecordsAreIgnored) {
  BookmarkWriter writer;
  const BookmarkWriter::Entries entries{{0x1003, 0xFFFFFFFF},
                                        {BookmarkWriter::pathKey, writer.texts({"a"})},
                                        {0x1010, 0x7FFFFFFF},
                                        {0xF080, 12345}};
  EXPECT_EQ(pathOf(writer.bytes(writer.table(1, entries, 0xFFFFFFFF))), "/a");
}

}  // namespace
}  // namespace vorli::formats
