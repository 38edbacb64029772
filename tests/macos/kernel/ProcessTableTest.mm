#include "macos/kernel/ProcessTable.h"
#include "tests/macos/runtime/Kernel.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace vorli::machost {
namespace {

void setName(char* field, std::string_view name) {
  std::ranges::copy(name, field);
}

TEST(ProcessTableTest, timesAreInTheKernelsUnits) {
  const auto base = ProcessTable().timebase();
  EXPECT_EQ(base.numer, 125U);
  EXPECT_EQ(base.denom, 3U);
}

TEST(ProcessTableTest, theListIsAskedForItsLengthAndThenFilled) {
  for (const int pid : {1, 80, 501}) macfake::kernel().add(pid);
  ProcessTable table;
  EXPECT_EQ(table.listAllPIDs({}), 3);
  std::array<std::int32_t, 3> pids{};
  EXPECT_EQ(table.listAllPIDs(pids), 3);
  EXPECT_EQ(pids, (std::array<std::int32_t, 3>{1, 80, 501}));
  EXPECT_EQ(macfake::kernel().listedSizes, (std::vector<int>{0, 12}));
}

TEST(ProcessTableTest, aListThatFailsIsBelowOne) {
  macfake::kernel().canList = false;
  ProcessTable table;
  std::array<std::int32_t, 4> pids{};
  EXPECT_LT(table.listAllPIDs({}), 1);
  EXPECT_LT(table.listAllPIDs(pids), 1);
}

TEST(ProcessTableTest, readsTheMemoryAndTheTimesOfAProcess) {
  auto& process = macfake::kernel().add(80);
  process.usage.pti_resident_size = 5'000'000'000;
  process.usage.pti_virtual_size = 1;
  process.usage.pti_total_user = 24'000'000;
  process.usage.pti_total_system = 12;
  ports::ProcessTaskInfo info;
  ProcessTable table;
  ASSERT_TRUE(table.readTaskInfo(80, info));
  EXPECT_EQ(info.residentBytes, 5'000'000'000U);
  EXPECT_EQ(info.totalUser, 24'000'000U);
  EXPECT_EQ(info.totalSystem, 12U);
  EXPECT_FALSE(table.exactResidentBytes(80));
}

TEST(ProcessTableTest, anythingButTheWholeRecordIsAFailure) {
  auto& process = macfake::kernel().add(80);
  process.usageBytes = 95;
  process.identityBytes = 135;
  ports::ProcessTaskInfo usage;
  ports::ProcessBSDInfo identity;
  ProcessTable table;
  EXPECT_FALSE(table.readTaskInfo(80, usage));
  EXPECT_FALSE(table.readBSDInfo(80, identity));
  macfake::kernel().processes[0].usageBytes = 96;
  macfake::kernel().processes[0].identityBytes = 136;
  EXPECT_TRUE(table.readTaskInfo(80, usage));
  EXPECT_TRUE(table.readBSDInfo(80, identity));
  EXPECT_FALSE(table.readTaskInfo(81, usage));
  EXPECT_FALSE(table.readBSDInfo(81, identity));
}

TEST(ProcessTableTest, readsTheParentTheStartAndTheLongerName) {
  auto& process = macfake::kernel().add(80);
  process.identity.pbi_ppid = 1;
  process.identity.pbi_start_tvsec = 1'700'000'000;
  setName(process.identity.pbi_comm, "Web Content Proc");  // fills its field: no NUL
  setName(process.identity.pbi_name, "Web Content Process");
  ports::ProcessBSDInfo info;
  ProcessTable table;
  ASSERT_TRUE(table.readBSDInfo(80, info));
  EXPECT_EQ(info.parentPID, 1);
  EXPECT_EQ(info.startSeconds, 1'700'000'000);
  EXPECT_EQ(info.name, "Web Content Process");
}

TEST(ProcessTableTest, aProcessWithoutALongNameHasItsShortOne) {
  auto& process = macfake::kernel().add(80);
  setName(process.identity.pbi_comm, "sixteen letters!");
  ports::ProcessBSDInfo info;
  ProcessTable table;
  ASSERT_TRUE(table.readBSDInfo(80, info));
  EXPECT_EQ(info.name, "sixteen letters!");
}

TEST(ProcessTableTest, aNameThatFillsItsFieldEndsThere) {
  auto& process = macfake::kernel().add(80);
  setName(process.identity.pbi_name, "a name of thirty-two characters!");
  ports::ProcessBSDInfo info;
  ProcessTable table;
  ASSERT_TRUE(table.readBSDInfo(80, info));
  EXPECT_EQ(info.name, "a name of thirty-two characters!");
}

TEST(ProcessTableTest, thePathOfTheProgramEndsAtItsNUL) {
  macfake::kernel().add(80).path = std::string("/usr/bin/less\0rest", 18);
  ProcessTable table;
  EXPECT_EQ(table.executablePath(80), "/usr/bin/less");
}

TEST(ProcessTableTest, invalidBytesOfAPathAreRepaired) {
  macfake::kernel().add(80).path = "/opt/\xFFtool";
  ProcessTable table;
  EXPECT_EQ(table.executablePath(80), "/opt/\xEF\xBF\xBDtool");
}

TEST(ProcessTableTest, aProcessWithoutAPathHasNoneEvenAfterOneThatHas) {
  macfake::kernel().add(80).path = "/usr/bin/less";
  macfake::kernel().add(81);
  ProcessTable table;
  EXPECT_TRUE(table.executablePath(80));
  EXPECT_FALSE(table.executablePath(81));
  EXPECT_FALSE(table.executablePath(82));
}

}  // namespace
}  // namespace vorli::machost
