#include "linux/applications/CompositorClients.h"
#include "tests/linux/applications/WaylandFixture.h"

#include <gtest/gtest.h>
#include <set>

namespace vorli::linuxhost {
namespace {

using Clients = std::set<std::int32_t>;

struct CompositorClientsTest : WaylandFixture {};

TEST_F(CompositorClientsTest, processesAreClientsFromTheirConnectionToTheirEnd) {
  start(Protocol::none);
  CompositorClients compositorClients(socket());
  EXPECT_EQ(compositorClients.look(), Clients{});
  const auto first = startClient();
  EXPECT_EQ(compositorClients.look(), Clients{first});
  const auto second = startClient();
  EXPECT_EQ(compositorClients.look(), (Clients{first, second}));
  kill(first, SIGKILL);
  waitpid(first, nullptr, 0);
  EXPECT_EQ(compositorClients.look(), Clients{second});
}

TEST_F(CompositorClientsTest, aSingleProcessIsAskedAbout) {
  start(Protocol::none);
  const CompositorClients compositorClients(socket());
  const auto client = startClient();
  EXPECT_EQ(compositorClients.isClient(client), true);
  EXPECT_EQ(compositorClients.isClient(getpid()), false);
  EXPECT_EQ(compositorClients.isClient(-1), std::nullopt);  // there is no such process
}

TEST_F(CompositorClientsTest, clientsOfAnotherSocketDoNotCount) {
  start(Protocol::none);
  startClient();
  CompositorClients others(socket() + "1");
  EXPECT_EQ(others.look(), Clients{});
}

}  // namespace
}  // namespace vorli::linuxhost
