#include "base/SharedInstance.h"

namespace vorli {
namespace {

struct Service : SharedInstance<Service> {};
struct OtherService : SharedInstance<OtherService> {};

TEST(SharedInstanceTest, isTheOneThatWasInstalled) {
  Service service;
  OtherService other;
  Service::installShared(&service);
  OtherService::installShared(&other);
  EXPECT_EQ(&Service::shared(), &service);
  EXPECT_EQ(&OtherService::shared(), &other);
  Service::installShared(nullptr);
  OtherService::installShared(nullptr);
}

TEST(SharedInstanceDeathTest, askingBeforeItIsInstalledStopsTheProgram) {
  EXPECT_DEATH(Service::shared(), "broken invariant");
}

}  // namespace
}  // namespace vorli
