#include "linux/applications/BusNames.h"

#include <gtest/gtest.h>

namespace vorli::linuxhost {
namespace {

TEST(BusNamesTest, anInstancesNumberIsRemovedFromTheApplicationsIdentifier) {
  EXPECT_EQ(BusNames::applicationIDOf("org.example.Editor"), "org.example.Editor");
  EXPECT_EQ(BusNames::applicationIDOf("org.example.Editor-1234"), "org.example.Editor");
  EXPECT_EQ(BusNames::applicationIDOf("org.example.text-editor"), "org.example.text-editor");
  EXPECT_EQ(BusNames::applicationIDOf("org.example.Editor-12b"), "org.example.Editor-12b");
  EXPECT_EQ(BusNames::applicationIDOf("org.example.Editor-"), "org.example.Editor-");
  EXPECT_EQ(BusNames::applicationIDOf(""), "");
}

TEST(BusNamesTest, actionsAreExportedAtThePathOfTheName) {
  EXPECT_EQ(BusNames::objectPathOf("org.example.Editor"), "/org/example/Editor");
  EXPECT_EQ(BusNames::objectPathOf("org.example.text-editor"), "/org/example/text_editor");
}

}  // namespace
}  // namespace vorli::linuxhost
