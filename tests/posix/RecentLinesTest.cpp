#include "posix/RecentLines.h"

#include <cstddef>
#include <cstdio>
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace vorli::posix {
namespace {

struct Found {
  std::size_t count;
  std::string text;

  bool operator==(const Found&) const = default;
};

/// The lines found in a file with these bytes.
Found find(const std::string& bytes, std::size_t most = 100) {
  const std::unique_ptr<FILE, int (*)(FILE*)> file(std::tmpfile(), std::fclose);
  EXPECT_EQ(std::fwrite(bytes.data(), 1, bytes.size(), file.get()), bytes.size());
  std::fflush(file.get());
  const auto lines = RecentLines::find(fileno(file.get()), most);
  return {lines.count, bytes.substr(static_cast<std::size_t>(lines.begin),
                                    static_cast<std::size_t>(lines.end - lines.begin))};
}

TEST(RecentLinesTest, piecesBetweenLineFeedsCount) {
  EXPECT_EQ(find(""), (Found{1, ""}));
  EXPECT_EQ(find("a"), (Found{1, "a"}));
  EXPECT_EQ(find("a\n"), (Found{2, "a\n"}));
  EXPECT_EQ(find("a\n\nb\n"), (Found{4, "a\n\nb\n"}));
  EXPECT_EQ(find("a\n\nb\n", 3), (Found{3, "\nb\n"}));
  EXPECT_EQ(find("a\n\nb\n", 1), (Found{1, ""}));
}

TEST(RecentLinesTest, fortyLinesAndALineFeedAreFortyOne) {
  std::string log;
  for (int i = 0; i < 40; ++i) log += "line\n";
  EXPECT_EQ(find(log).count, 41u);
}

TEST(RecentLinesTest, aHundredIsTheMost) {
  std::string lines;
  for (int i = 0; i < 99; ++i) lines += std::to_string(i) + "\n";
  EXPECT_EQ(find(lines), (Found{100, lines}));
  EXPECT_EQ(find("before\n" + lines), (Found{100, lines}));
  EXPECT_EQ(find("before\n" + lines, 1000), (Found{100, lines}));
  std::string many;
  for (int i = 0; i < 5000; ++i) many += "many\n";
  EXPECT_EQ(find(many + lines), (Found{100, lines}));
}

TEST(RecentLinesTest, charactersMayLieAcrossTheEdgeOfAChunk) {
  for (const std::string character : {"\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80"}) {
    for (std::size_t before = 4085; before <= 4097; ++before) {
      const auto text = std::string(before, 'x') + character + "\ny";
      EXPECT_EQ(find(text), (Found{2, text})) << before;
      EXPECT_EQ(find(text, 1), (Found{1, "y"})) << before;
    }
  }
}

TEST(RecentLinesTest, invalidFileHasNoLines) {
  EXPECT_EQ(find("a\n\xC3"), (Found{0, ""}));
  EXPECT_EQ(find("a\n\xC3\nb"), (Found{0, ""}));
  EXPECT_EQ(find("\xFF" + std::string(10'000, '\n')), (Found{0, ""}));
  EXPECT_EQ(find(std::string(4095, 'x') + "\xE2\x82"), (Found{0, ""}));
  EXPECT_EQ(find("a\n\xED\xA0\x80"), (Found{0, ""}));
}

TEST(RecentLinesTest, unreadableFileHasNoLines) {
  EXPECT_EQ(RecentLines::find(-1, 100).count, 0u);
}

}  // namespace
}  // namespace vorli::posix
