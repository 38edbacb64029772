#include "formats/UnitFile.h"

#include <gtest/gtest.h>
#include <string>

namespace vorli::formats {
namespace {

std::string programOf(const std::string& command) {
  return parseUnitFile("[Service]\nExecStart=" + command + "\n").program;
}

TEST(UnitFileTest, readsWhatAServiceStarts) {
  const auto unit = parseUnitFile(
      "# made by acme\n[Unit]\nDescription=Acme sync\nAfter=network.target\n\n[Service]\n"
      "ExecStartPre=/bin/true\nExecStart=/opt/acme/syncd --quiet\nRestart=always\n[Install]\n"
      "WantedBy=default.target\n");
  EXPECT_EQ(unit, (UnitFile{"Acme sync", "/opt/acme/syncd", "", false}));
}

TEST(UnitFileTest, removesPrefixesQuotesAndWrappersOfTheProgram) {
  EXPECT_EQ(programOf("-/usr/bin/acme"), "/usr/bin/acme");
  EXPECT_EQ(programOf("!@-/usr/bin/acme argv0"), "/usr/bin/acme");
  EXPECT_EQ(programOf("+:/usr/bin/acme"), "/usr/bin/acme");
  EXPECT_EQ(programOf("\"/opt/the acme/run\" -x"), "/opt/the acme/run");
  EXPECT_EQ(programOf("/opt/the\\ acme/run"), "/opt/the acme/run");
  EXPECT_EQ(programOf("/opt/the\\x20acme\\srun -x"), "/opt/the acme run");
  EXPECT_EQ(programOf("\"/opt/a\\x2db\""), "/opt/a-b");
  EXPECT_EQ(programOf("/opt/a\\x2"), "/opt/ax2");
  EXPECT_EQ(programOf("/opt/a\\b"), "/opt/ab");
  EXPECT_EQ(programOf("/opt/a\\xzz\\x00"), "/opt/axzzx00");
  EXPECT_EQ(programOf("/opt/\\x4a\\x4A\\x4f\\x4F\\x40\\x49"), "/opt/JJOO@I");
  EXPECT_EQ(programOf("/opt/\\x4g\\x4G\\x4@\\x4:"), "/opt/x4gx4Gx4@x4:");
  EXPECT_EQ(programOf("/usr/bin/env -i A=b/c acme --x=1"), "acme");
  EXPECT_EQ(programOf("/usr/bin/nice -n5 /usr/bin/acme"), "/usr/bin/acme");
  EXPECT_EQ(programOf("/usr/bin/nice -n 10 /usr/bin/ionice -c 3 /usr/bin/acme 5"), "/usr/bin/acme");
  EXPECT_EQ(programOf("/usr/bin/env"), "");
  EXPECT_EQ(programOf(""), "");
}

TEST(UnitFileTest, theFirstCommandCountsAndAnEmptyOneResetsIt) {
  EXPECT_EQ(parseUnitFile("[Service]\nExecStart=/a\nExecStart=/b\n").program, "/a");
  EXPECT_EQ(parseUnitFile("[Service]\nExecStart=/a\nExecStart=\nExecStart=/b\n").program, "/b");
  EXPECT_EQ(parseUnitFile("[Unit]\nExecStart=/a\n").program, "");
}

TEST(UnitFileTest, joinsContinuedLines) {
  EXPECT_EQ(
      parseUnitFile("[Service]\r\nExecStart=/usr/bin/env \\\r\n# why\r\n  A=1 \\\r\n  /usr/bin/acme\r\n")
          .program,
      "/usr/bin/acme");
  EXPECT_EQ(parseUnitFile("[Service]\nExecStart=/usr/bin/acme \\").program, "/usr/bin/acme");
}

TEST(UnitFileTest, readsWhatATriggerStarts) {
  EXPECT_EQ(parseUnitFile("[Timer]\nUnit=other.service\n").triggered, "other.service");
  EXPECT_EQ(parseUnitFile("[Path]\nUnit=other.service\n").triggered, "other.service");
  const auto socket = parseUnitFile("[Socket]\nListenStream=1\nService=other.service\nAccept=yes\n");
  EXPECT_EQ(socket.triggered, "other.service");
  EXPECT_TRUE(socket.acceptsConnections);
  EXPECT_FALSE(parseUnitFile("[Socket]\nAccept=no\n").acceptsConnections);
  EXPECT_EQ(parseUnitFile("[Service]\nUnit=other.service\n").triggered, "");
}

TEST(UnitFileTest, aTextThatIsNotAUnitDescribesNothing) {
  for (const std::string text :
       {"", "\n\n", "Description=x", "[Unit", "[Unit]\nDescription", "\xFF\xFE\\\n\\"})
    EXPECT_EQ(parseUnitFile(text), UnitFile()) << text;
  EXPECT_EQ(parseUnitFile("[Unit]\nDescription=a\xFF"
                          "b\n")
                .description,
            "a\xEF\xBF\xBD"
            "b");
}

TEST(UnitFileTest, splitsNames) {
  const auto plain = splitUnitName("acme.service");
  ASSERT_TRUE(plain);
  EXPECT_EQ(plain->stem, "acme");
  EXPECT_EQ(plain->suffix, ".service");
  EXPECT_FALSE(plain->instance);
  EXPECT_FALSE(plain->isInstance());

  const auto instance = splitUnitName("backup@home.d.timer");
  ASSERT_TRUE(instance);
  EXPECT_EQ(instance->stem, "backup");
  EXPECT_EQ(instance->instance, "home.d");
  EXPECT_TRUE(instance->isInstance());
  EXPECT_EQ(instance->templateName(), "backup@.timer");

  const auto unnamed = splitUnitName("backup@.timer");
  ASSERT_TRUE(unnamed);
  EXPECT_EQ(unnamed->instance, "");
  EXPECT_FALSE(unnamed->isInstance());

  for (const char* name : {"", "acme", ".service", "acme.", "@x.service"})
    EXPECT_FALSE(splitUnitName(name)) << name;
}

}  // namespace
}  // namespace vorli::formats
