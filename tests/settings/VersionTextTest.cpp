#include "settings/VersionText.h"
#include "tests/fakes/ApplicationBundle.h"

namespace vorli {
namespace {

TEST(VersionTextTest, containsVersionAndBuild) {
  fakes::ApplicationBundle bundle;
  bundle.info = {{"CFBundleShortVersionString", "1.0"}, {"CFBundleVersion", "100"}};
  EXPECT_EQ(versionText(bundle), "v1.0 (build 100)");
}

TEST(VersionTextTest, aMissingPartIsAQuestionMark) {
  fakes::ApplicationBundle bundle;
  bundle.info = {{"CFBundleShortVersionString", "1.2"}};
  EXPECT_EQ(versionText(bundle), "v1.2 (build ?)");
  bundle.info = {};
  EXPECT_EQ(versionText(bundle), "v? (build ?)");
}

}  // namespace
}  // namespace vorli
