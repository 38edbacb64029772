#include "daemon/LogLine.h"

#include <algorithm>
#include <string>

namespace vorli::daemon {
namespace {

bool isPrintable(const std::string& text) {
  return std::ranges::all_of(text, [](char c) { return c >= ' ' && c <= '~'; });
}

TEST(LogLine, escapesEverythingButPlainText) {
  EXPECT_EQ(quoted("plain text", 100), "\"plain text\"");
  EXPECT_EQ(quoted("a\nb\"c\\d\x1b\x7f\xc3\xa4", 100), "\"a\\x0ab\\x22c\\x5cd\\x1b\\x7f\\xc3\\xa4\"");
  EXPECT_EQ(quoted(std::string("\0", 1), 100), "\"\\x00\"");
}

TEST(LogLine, cutsAtTheLimitAndSaysSo) {
  EXPECT_EQ(quoted(std::string(8, 'a'), 13), "\"aaaaaaaa\"");
  EXPECT_EQ(quoted(std::string(9, 'a'), 13), "\"aaaaaaaa...\"");
  EXPECT_EQ(quoted("\n\n\n\n", 13), "\"\\x0a\\x0a...\"");
}

TEST(LogLine, neverExceedsSixHundredBytesNorOneLine) {
  const Request request{Method::moveLaunchAgentPlist, std::string(500, '\n'),
                        MoveArguments{std::string(10240, '\x1b'), std::string(10240, '\xff')}};
  const HelperReply reply{INT32_MIN, std::string(5000, '\t')};
  const auto line = logLine({.serial = UINT64_MAX,
                             .request = request,
                             .user = UINT32_MAX,
                             .verdict = Verdict::granted,
                             .reply = reply,
                             .seconds = 123456.0});
  EXPECT_LE(line.size(), 600u);
  EXPECT_TRUE(isPrintable(line));
}

TEST(LogLine, unprintableBytesOfAnswersBecomeBlanks) {
  EXPECT_EQ(answerText("a\nb\xc3\xa4"), "a b  ");
  EXPECT_EQ(answerText(std::string(385, 'x')).size(), 384u);
}

}  // namespace
}  // namespace vorli::daemon
