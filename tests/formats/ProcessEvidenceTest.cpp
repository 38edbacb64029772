#include "formats/ProcessEvidence.h"

#include <gtest/gtest.h>

namespace vorli::formats {
namespace {

using EvidenceKind = CgroupEvidence::Kind;
const std::string slice = "0::/user.slice/user-1000.slice/user@1000.service/app.slice/";

CgroupEvidence evidence(EvidenceKind kind, std::vector<std::string> ids, bool autostart = false) {
  return {kind, std::move(ids), autostart};
}

TEST(ProcessEvidenceTest, aScopeNamesTheEntryWithOrWithoutItsLauncher) {
  EXPECT_EQ(evidenceFromCgroup(slice + "app-gnome-org.example.Viewer-1234.scope\n"),
            evidence(EvidenceKind::systemdUnit, {"gnome-org.example.Viewer", "org.example.Viewer"}));
  EXPECT_EQ(evidenceFromCgroup(slice + "app-org.example.Viewer-9.scope\n"),
            evidence(EvidenceKind::systemdUnit, {"org.example.Viewer"}));
}

TEST(ProcessEvidenceTest, dashesInsideOfAnIDAreUnescaped) {
  EXPECT_EQ(evidenceFromCgroup(slice + "app-gnome-my\\x2dviewer-1.scope\n"),
            evidence(EvidenceKind::systemdUnit, {"gnome-my-viewer", "my-viewer"}));
  EXPECT_EQ(evidenceFromCgroup(slice + "app-a\\x2-1.scope\n").ids.front(), "a\\x2");
}

TEST(ProcessEvidenceTest, aServiceHasItsRandomPartAfterAnAtSign) {
  EXPECT_EQ(evidenceFromCgroup(slice + "app-org.example.Viewer@ab12.service\n"),
            evidence(EvidenceKind::systemdUnit, {"org.example.Viewer"}));
  EXPECT_EQ(evidenceFromCgroup(slice + "app-org.example.Agent@autostart.service\n"),
            evidence(EvidenceKind::systemdUnit, {"org.example.Agent"}, true));
}

TEST(ProcessEvidenceTest, flatpakAndSnapNameTheirPackage) {
  EXPECT_EQ(evidenceFromCgroup(slice + "app-flatpak-org.example.Viewer-77.scope\n"),
            evidence(EvidenceKind::flatpak, {"org.example.Viewer"}));
  EXPECT_EQ(
      evidenceFromCgroup("0::/user.slice/x/snap.viewer.main-0f1e2d3c-0011-2233-4455-66778899aabb.scope\n"),
      evidence(EvidenceKind::snap, {"viewer_main"}));
  EXPECT_EQ(evidenceFromCgroup("0::/system.slice/snap.tool.daemon.service\n"),
            evidence(EvidenceKind::snap, {"tool_daemon"}));
  EXPECT_EQ(evidenceFromCgroup("0::/system.slice/snap.tool_second.daemon.service\n"),
            evidence(EvidenceKind::snap, {"tool+second_daemon"}));
}

TEST(ProcessEvidenceTest, aHybridSystemNamesTheGroupUnderSystemdsOwnHierarchy) {
  EXPECT_EQ(
      evidenceFromCgroup("4:memory:/x\n1:name=systemd:/user.slice/app.slice/app-org.example.V-1.scope\n"),
      evidence(EvidenceKind::systemdUnit, {"org.example.V"}));
}

TEST(ProcessEvidenceTest, anythingElseIsNoEvidence) {
  for (const std::string text :
       {"", "garbage", "0::/", "0::/user.slice/session-1.scope\n", "0::/system.slice/cron.service\n",
        "0::/app-org.example.Viewer-1.scope\n", "0::/app.slice/app-nodash.scope\n", "0::/x/snap..scope\n",
        "0::/x/snap.viewer.scope\n"}) {
    EXPECT_TRUE(evidenceFromCgroup(text).ids.empty() || evidenceFromCgroup(text).ids.front() != "") << text;
  }
  EXPECT_EQ(evidenceFromCgroup("0::/user.slice/session-1.scope\n"), CgroupEvidence{});
  EXPECT_EQ(evidenceFromCgroup("0::/app-org.example.Viewer-1.scope\n"), CgroupEvidence{});
}

TEST(ProcessEvidenceTest, theSandboxNamesItsApplication) {
  EXPECT_EQ(flatpakIDFromInfo("[Application]\nname=org.example.Viewer\nruntime=x\n\n[Instance]\nname=no\n"),
            "org.example.Viewer");
  EXPECT_EQ(flatpakIDFromInfo("[Instance]\nname=no\n"), "");
  EXPECT_EQ(flatpakIDFromInfo("[Application]\nruntime=x\n[Instance]\nname=no\n"), "");
  EXPECT_EQ(flatpakIDFromInfo(""), "");
}

TEST(ProcessEvidenceTest, aLaunchRecordCountsOnlyForItsOwnProcess) {
  const std::string environment(
      "A=1\0GIO_LAUNCHED_DESKTOP_FILE=/usr/share/applications/v.desktop\0"
      "GIO_LAUNCHED_DESKTOP_FILE_PID=42\0",
      98);
  EXPECT_EQ(launchedDesktopFile(environment, 42), "/usr/share/applications/v.desktop");
  EXPECT_EQ(launchedDesktopFile(environment, 43), "");
  EXPECT_EQ(launchedDesktopFile(std::string("GIO_LAUNCHED_DESKTOP_FILE_PID=42\0", 33), 42), "");
  EXPECT_EQ(launchedDesktopFile(
                std::string("GIO_LAUNCHED_DESKTOP_FILE=/v\0GIO_LAUNCHED_DESKTOP_FILE_PID=4x\0", 62), 4),
            "");
}

TEST(ProcessEvidenceTest, splitsACommandLine) {
  EXPECT_EQ(commandLineWords(std::string("a\0b c\0\0", 7)), (std::vector<std::string>{"a", "b c", ""}));
  EXPECT_TRUE(commandLineWords("").empty());
}

}  // namespace
}  // namespace vorli::formats
