#include "diagnostics/CrashReportText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace vorli {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string report =
    "Vorli crash report\n==================\nTimestamp:   2026-03-01T09:30:05.123Z\nCrash kind:  Signal\n\n"
    "Summary\n-------\nFatal signal SIGSEGV (11)\n\nStack trace\n-----------\n"
    "0   vorli 0x10\n1   vorli 0x20\n2   vorli 0x30\n3   vorli 0x40\n\n"
    "Recent activity (last 2 log lines)\n-----\nline\n";

TEST(CrashReportTextTest, sectionValueIsTheFirstLineWithContent) {
  EXPECT_EQ(sectionValue(report, "Summary"), "Fatal signal SIGSEGV (11)");
  EXPECT_EQ(sectionValue("  Summary \n\n ---- \n\t value \nmore", "Summary"), "value");
}

TEST(CrashReportTextTest, sectionWithoutAValueIsAbsentEvenWithAHeader) {
  EXPECT_EQ(sectionValue("Summary: header\nSummary\n-----\n\n", "Summary"), std::nullopt);
}

TEST(CrashReportTextTest, headerFormIsTheRestOfItsLine) {
  EXPECT_EQ(sectionValue(report, "Crash kind"), "Signal");
  EXPECT_EQ(sectionValue("Crash kind:", "Crash kind"), "");
  EXPECT_EQ(sectionValue(" Crash kind: Signal", "Crash kind"), std::nullopt);
  EXPECT_EQ(sectionValue("", "Crash kind"), std::nullopt);
}

TEST(CrashReportTextTest, framesAreTheLinesUpToTheActivityWithTheEmptyOne) {
  EXPECT_THAT(stackFrames(report),
              ElementsAre("0   vorli 0x10", "1   vorli 0x20", "2   vorli 0x30", "3   vorli 0x40", ""));
}

TEST(CrashReportTextTest, framesEndAtEitherFormOfTheActivity) {
  EXPECT_THAT(stackFrames("Stack trace\n a \nSome activity (last 100 log lines)\nb"), ElementsAre(" a "));
  EXPECT_THAT(stackFrames("Stack trace\na\n  Recent activity\nb"), ElementsAre("a"));
  EXPECT_THAT(stackFrames("Stack trace\na\nSome activity (last 99 log lines)"),
              ElementsAre("a", "Some activity (last 99 log lines)"));
}

TEST(CrashReportTextTest, reportWithoutATraceHasNoFrames) {
  EXPECT_THAT(stackFrames(""), IsEmpty());
  EXPECT_THAT(stackFrames("Stack trace"), IsEmpty());
  EXPECT_THAT(stackFrames("Stack trace\n-----\n\n"), IsEmpty());
}

// The digests are those of the joined frames, as any other program computes them.
TEST(CrashReportTextTest, signatureIsOfTheFirstThreeFrames) {
  EXPECT_EQ(crashSignature(report), "628a1330816b4828");
  EXPECT_EQ(crashSignature("Stack trace\n0   vorli 0x10\n1   vorli 0x20\n\nRecent activity"),
            "0399467a5a25eab2");
  EXPECT_EQ(crashSignature("nothing"), "e3b0c44298fc1c14");
}

TEST(CrashReportTextTest, laterFramesDoNotCount) {
  std::string other = report;
  other.replace(other.find("0x40"), 4, "0x41");
  EXPECT_EQ(crashSignature(other), crashSignature(report));
  other.replace(other.find("0x30"), 4, "0x31");
  EXPECT_NE(crashSignature(other), crashSignature(report));
}

TEST(CrashReportTextTest, readsTheDateOfAFileName) {
  EXPECT_EQ(dateFromFileName("2026-03-01T09-30-05.123Z.txt"), Date{1'772'357'405.123});
  EXPECT_EQ(dateFromFileName("crash.txt"), std::nullopt);
  EXPECT_EQ(dateFromFileName("Trash.txt"), std::nullopt);
  EXPECT_EQ(dateFromFileName("2026-03-01T09-30-05.123Z"), std::nullopt);  // ".123Z" is cut off
  EXPECT_EQ(dateFromFileName(""), std::nullopt);
}

}  // namespace
}  // namespace vorli
