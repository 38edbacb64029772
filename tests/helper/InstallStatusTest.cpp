#include "helper/InstallStatus.h"

namespace vorli {
namespace {

using Case = InstallStatus::Case;

TEST(InstallStatusTest, knownRawValuesMapToTheirCases) {
  EXPECT_EQ(InstallStatus::fromRawValue(0), Case::notRegistered);
  EXPECT_EQ(InstallStatus::fromRawValue(1), Case::enabled);
  EXPECT_EQ(InstallStatus::fromRawValue(2), Case::requiresApproval);
  EXPECT_EQ(InstallStatus::fromRawValue(3), Case::notFound);
}

TEST(InstallStatusTest, anyOtherRawValueIsUnknownAndKeepsItsNumber) {
  EXPECT_EQ(InstallStatus::fromRawValue(7), InstallStatus::unknown(7));
  EXPECT_EQ(InstallStatus::fromRawValue(4), InstallStatus::unknown(4));
  EXPECT_EQ(InstallStatus::fromRawValue(-1), InstallStatus::unknown(-1));
  EXPECT_NE(InstallStatus::fromRawValue(7), InstallStatus::unknown(8));
  EXPECT_EQ(InstallStatus::fromRawValue(7).which(), Case::unknown);
}

TEST(InstallStatusTest, everyCaseHasItsText) {
  EXPECT_EQ(InstallStatus::unknown(7).description(), "Unknown (7)");
  EXPECT_EQ(InstallStatus(Case::notRegistered).description(), "Not registered");
  EXPECT_EQ(InstallStatus(Case::requiresApproval).description(HelperTexts::macOS),
            "Awaiting approval in System Settings");
  EXPECT_EQ(InstallStatus(Case::requiresApproval).description(HelperTexts::linuxDesktop),
            "Awaiting your approval");
  EXPECT_EQ(InstallStatus(Case::enabled).description(), "Enabled");
  EXPECT_EQ(InstallStatus(Case::notFound).description(), "Not found");
}

}  // namespace
}  // namespace vorli
