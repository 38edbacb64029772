#include "formats/Crontab.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vorli::formats {
namespace {

using Commands = std::vector<std::string>;

TEST(CrontabTest, readsOnlyCommandsThatRunAtTheStart) {
  EXPECT_EQ(parseRebootCommands("# mine\nPATH=/usr/bin\n0 4 * * * /usr/bin/nightly\n@daily /usr/bin/daily\n"
                                "@reboot /opt/acme/run --fast\n  @reboot\tsleep 5 && ~/bin/sync\n"
                                "#@reboot /usr/bin/off\n@reboot\n@rebooted /x\n"),
            (Commands{"/opt/acme/run --fast", "sleep 5 && ~/bin/sync"}));
  EXPECT_EQ(parseRebootCommands(""), Commands());
}

TEST(CrontabTest, aPercentSignBeginsTheInput) {
  EXPECT_EQ(parseRebootCommands("@reboot mail kim%hello%\n"), (Commands{"mail kim"}));
  EXPECT_EQ(parseRebootCommands("@reboot date +\\%F\n"), (Commands{"date +\\%F"}));
  EXPECT_EQ(parseRebootCommands("@reboot %\n"), Commands());
}

TEST(CrontabTest, findsTheProgramBehindCommandsThatPrepareIt) {
  EXPECT_EQ(programOfCommand("/opt/acme/run --fast"), "/opt/acme/run");
  EXPECT_EQ(programOfCommand("sleep 30 && /opt/acme/run"), "/opt/acme/run");
  EXPECT_EQ(programOfCommand("cd '/opt/the acme'; sleep 5; A=1 nice -n5 ./run &"), "./run");
  EXPECT_EQ(programOfCommand("(cd /tmp && /opt/acme/run) >/dev/null"), "/opt/acme/run");
  EXPECT_EQ(programOfCommand("env A=/b/c \"/opt/the acme/run\""), "/opt/the acme/run");
  EXPECT_EQ(programOfCommand("nice -n 10 ionice -c 3 /opt/acme/run 5"), "/opt/acme/run");
  EXPECT_EQ(programOfCommand("sleep 30"), "");
  EXPECT_EQ(programOfCommand(""), "");
}

}  // namespace
}  // namespace vorli::formats
