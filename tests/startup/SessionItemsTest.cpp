#include "startup/SessionItems.h"

#include <gtest/gtest.h>

namespace vorli {
namespace {

bool isHidden(const std::string& identifier, const std::optional<std::string>& program = std::nullopt) {
  return keepsSessionAlive({.identifier = identifier, .programPath = program}, "/home/kim");
}

TEST(SessionItemsTest, theProgramsOwnItemsAreKnownInAnyCase) {
  for (const char* identifier :
       {"com.kv.vorli", "COM.KV.Vorli.helper", "vorli-helper.service", "vorli.service"})
    EXPECT_TRUE(isOwnItem(identifier)) << identifier;
  for (const char* identifier : {"vorlitool", "my-vorli-helper", "com.kv", ""})
    EXPECT_FALSE(isOwnItem(identifier)) << identifier;
}

TEST(SessionItemsTest, aSessionNeedsItsDesktopItsSoundAndItsKeys) {
  for (const char* identifier :
       {"xfce4-power-manager", "org.gnome.SettingsDaemon.Power", "pipewire.service", "gnome-keyring-ssh",
        "polkit-gnome-authentication-agent-1", "dbus.service@system", "NetworkManager.service@system",
        "getty@tty1.service@system", "cron.service@system"})
    EXPECT_TRUE(isHidden(identifier)) << identifier;
}

TEST(SessionItemsTest, aDotMakesANameWhole) {
  EXPECT_TRUE(isHidden("ntp.service"));
  EXPECT_FALSE(isHidden("ntpfancy.service"));
  EXPECT_FALSE(isHidden("cronometer"));
  EXPECT_FALSE(isHidden("docker.service"));
}

TEST(SessionItemsTest, aProgramOutsideThePackagesFoldersIsAThirdPartys) {
  for (const char* program : {"/opt/acme/run", "/usr/local/bin/x", "/home/kim/bin/x", "/srv/x"})
    EXPECT_FALSE(isHidden("systemd-acme.service", program)) << program;
  for (const char* program : {"/usr/bin/x", "/usr/lib/x", "/bin/x", "x", ""})
    EXPECT_TRUE(isHidden("systemd-acme.service", program)) << program;
  EXPECT_TRUE(keepsSessionAlive({.identifier = "dbus", .programPath = "/data/kim2/x"}, "/data/kim"));
  EXPECT_FALSE(keepsSessionAlive({.identifier = "dbus", .programPath = "/data/kim/x"}, "/data/kim"));
}

}  // namespace
}  // namespace vorli
