#include "linux/startup/ProcessUsage.h"
#include "tests/linux/RecordedTree.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

namespace vorli::linuxhost {
namespace {

struct ProcessUsageTest : testing::Test {
  ProcessUsageTest() { uptime("100.00"); }

  void uptime(const std::string& seconds) const { tree.write("proc/uptime", seconds + " 0.0\n"); }
  void service(const std::string& folder, const std::string& usec, const std::string& held,
               const std::string& populated = "1") const {
    const auto group = "sys/fs/cgroup/" + folder + "/";
    tree.write(group + "cgroup.events", "populated " + populated + "\nfrozen 0\n");
    tree.write(group + "cpu.stat", "usage_usec " + usec + "\nuser_usec 0\n");
    tree.write(group + "memory.current", held + "\n");
    tree.write(group + "memory.stat", "anon 1\ninactive_file 1048576\n");
  }
  static const ports::ServiceUse* find(const std::vector<ports::ServiceUse>& uses, const std::string& name) {
    const auto found = std::ranges::find(uses, name, &ports::ServiceUse::name);
    return found == uses.end() ? nullptr : &*found;
  }

  RecordedTree tree;
  ProcessUsage usage{tree.root()};
  const long ticks = sysconf(_SC_CLK_TCK);
};

TEST_F(ProcessUsageTest, theFirstLookIsTheShareOfTheWholeLife) {
  tree.process(7, "acme",
               {.userTicks = static_cast<std::uint64_t>(ticks * 6),
                .systemTicks = static_cast<std::uint64_t>(ticks * 2),
                .startTicks = static_cast<std::uint64_t>(ticks * 60),
                .residentPages = 256});
  const auto rows = usage.processes();
  ASSERT_TRUE(rows);
  ASSERT_EQ(rows->size(), 1u);
  EXPECT_EQ(rows->front().processIdentifier, 7);
  EXPECT_DOUBLE_EQ(rows->front().cpuPercent, 20.0);  // 8 seconds of 40
  EXPECT_DOUBLE_EQ(rows->front().residentKibibytes,
                   256.0 * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1024.0);
}

TEST_F(ProcessUsageTest, aLaterLookIsTheShareSinceTheLast) {
  const RecordedProcess before{.userTicks = static_cast<std::uint64_t>(ticks * 50), .startTicks = 0};
  tree.process(7, "acme", before);
  (void)usage.processes();
  uptime("110.00");
  auto after = before;
  after.userTicks += static_cast<std::uint64_t>(ticks);
  tree.process(7, "acme", after);
  EXPECT_DOUBLE_EQ(usage.processes()->front().cpuPercent, 10.0);
  uptime("120.00");
  EXPECT_DOUBLE_EQ(usage.processes()->front().cpuPercent, 0.0);
}

TEST_F(ProcessUsageTest, aReadingIsPreparedUnlessTheLastOneIsOfTheLastHalfMinute) {
  const RecordedProcess before{.userTicks = static_cast<std::uint64_t>(ticks * 50), .startTicks = 0};
  tree.process(7, "acme", before);
  service("system.slice/acme.service", "50000000", "2097152");
  EXPECT_DOUBLE_EQ(usage.prepareReading(), 1.0);
  uptime("101.00");
  auto after = before;
  after.userTicks += static_cast<std::uint64_t>(ticks / 4);
  tree.process(7, "acme", after);
  service("system.slice/acme.service", "50500000", "2097152");
  EXPECT_DOUBLE_EQ(usage.processes()->front().cpuPercent, 25.0);
  EXPECT_DOUBLE_EQ(usage.services().front().cpuPercent, 50.0);
  uptime("131.00");
  EXPECT_DOUBLE_EQ(usage.prepareReading(), 0.0);
  uptime("131.01");
  EXPECT_DOUBLE_EQ(usage.prepareReading(), 1.0);
}

TEST_F(ProcessUsageTest, aShareIsMeasuredSinceALookThatIsASecondOld) {
  const auto busyFor = [&](double seconds) {
    tree.process(
        7, "acme",
        {.userTicks = static_cast<std::uint64_t>(static_cast<double>(ticks) * seconds), .startTicks = 0});
  };
  busyFor(50.0);
  (void)usage.processes();
  uptime("101.00");
  busyFor(50.5);
  EXPECT_DOUBLE_EQ(usage.processes()->front().cpuPercent, 50.0);
  uptime("101.25");
  busyFor(50.75);
  EXPECT_DOUBLE_EQ(usage.processes()->front().cpuPercent, 60.0);  // 0.75 seconds of 1.25
  uptime("102.00");
  EXPECT_DOUBLE_EQ(usage.processes()->front().cpuPercent, 25.0);
}

TEST_F(ProcessUsageTest, aNewProcessWithAnOldNumberBeginsAnew) {
  tree.process(7, "acme", {.userTicks = static_cast<std::uint64_t>(ticks), .startTicks = 0});
  (void)usage.processes();
  uptime("110.00");
  tree.process(7, "other",
               {.userTicks = static_cast<std::uint64_t>(ticks * 2),
                .startTicks = static_cast<std::uint64_t>(ticks * 105)});
  EXPECT_DOUBLE_EQ(usage.processes()->front().cpuPercent, 40.0);
}

TEST_F(ProcessUsageTest, withoutAProcessTableThereAreNoRows) {
  tree.remove("proc");
  EXPECT_EQ(usage.processes(), std::nullopt);
  EXPECT_TRUE(usage.services().empty());
}

TEST_F(ProcessUsageTest, readsTheServicesOfTheSystemAndOfThisUser) {
  const auto user = std::to_string(getuid());
  const auto mine = "user.slice/user-" + user + ".slice/user@" + user + ".service/";
  service("system.slice/acme.service", "5000000", "105906176");
  service("system.slice/system-getty.slice/getty@tty1.service", "0", "1048576");
  service("system.slice/dead.service", "1", "1", "0");
  service(mine + "app.slice/sync.service", "0", "2097152");
  service("user.slice/user-99999.slice/user@99999.service/app.slice/theirs.service", "0", "1");
  const auto uses = usage.services();
  EXPECT_EQ(uses.size(), 3u);
  const auto* acme = find(uses, "acme.service");
  ASSERT_TRUE(acme);
  EXPECT_DOUBLE_EQ(acme->cpuPercent, 5.0);  // of 100 seconds
  EXPECT_DOUBLE_EQ(acme->memoryMB, 100.0);  // without the megabyte that can be taken back
  EXPECT_TRUE(find(uses, "getty@tty1.service"));
  ASSERT_TRUE(find(uses, "sync.service"));
  EXPECT_TRUE(find(uses, "sync.service")->isUsers);
  EXPECT_FALSE(acme->isUsers);
}

TEST_F(ProcessUsageTest, aServicesShareIsThatSinceTheLastLook) {
  service("system.slice/acme.service", "5000000", "0");
  (void)usage.services();
  uptime("110.00");
  service("system.slice/acme.service", "9000000", "0");
  EXPECT_DOUBLE_EQ(usage.services().front().cpuPercent, 40.0);
}

TEST_F(ProcessUsageTest, aGroupWithoutAccountingUsesNothing) {
  tree.write("sys/fs/cgroup/system.slice/acme.service/cgroup.events", "populated 1\n");
  const auto uses = usage.services();
  ASSERT_EQ(uses.size(), 1u);
  EXPECT_EQ(uses.front(), (ports::ServiceUse{"acme.service", 0.0, 0.0}));
}

}  // namespace
}  // namespace vorli::linuxhost
