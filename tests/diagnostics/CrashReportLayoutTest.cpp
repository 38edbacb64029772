#include "diagnostics/CrashReportLayout.h"

#include <gtest/gtest.h>
#include <string>

namespace vorli {
namespace {

std::string compose(const ports::CrashReportPieces& pieces) {
  return pieces.timestamp + "T" + pieces.kind + "K" + pieces.summary + "S" + pieces.stackTrace + "F" +
         pieces.lineCount + "1" + pieces.lines + "L";
}

TEST(CrashReportLayoutTest, laysOutAReportOfMacOS) {
  const auto pieces =
      crashReportPieces("v1.2 (build ?)", {.name = "", .release = "14.4.1"}, "Mac14,7", HostSystem::macOS);
  EXPECT_EQ(compose(pieces),
            "Vorli crash report\n==================\nTimestamp:   T\nApp version: v1.2 (build ?)\n"
            "macOS:       14.4.1\nHardware:    Mac14,7\nCrash kind:  K\n\nSummary\n-------\nS\n\n"
            "Stack trace\n-----------\nF\n\nRecent activity (last 1 log lines)\n"
            "-------------------------------------------------\nL");
}

TEST(CrashReportLayoutTest, laysOutAReportOfALinuxDesktop) {
  const auto pieces = crashReportPieces("v1.0 (build 7)", {.name = "Exemplar 12", .release = "6.1.0-18"},
                                        std::nullopt, HostSystem::linuxDesktop);
  EXPECT_EQ(pieces.kind,
            "\nApp version: v1.0 (build 7)\nSystem:      Exemplar 12, 6.1.0-18\nHardware:    unknown\n"
            "Crash kind:  ");
  EXPECT_EQ(compose(pieces).find("macOS"), std::string::npos);
}

TEST(CrashReportLayoutTest, valuesStayOnTheirLines) {
  const auto pieces =
      crashReportPieces("v1", {.name = "Two\nLines", .release = ""}, "A\r\nB", HostSystem::linuxDesktop);
  EXPECT_EQ(pieces.kind, "\nApp version: v1\nSystem:      Two Lines\nHardware:    A  B\nCrash kind:  ");
}

}  // namespace
}  // namespace vorli
