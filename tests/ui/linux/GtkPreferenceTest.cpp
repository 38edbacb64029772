#include "ui/linux/GtkPreference.h"

#include <QByteArray>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace vorli::ui {
namespace {

GtkPreference preferenceIn(const QByteArray& text) {
  const QTemporaryDir folder;
  QFile file(folder.filePath(QStringLiteral("settings.ini")));
  EXPECT_TRUE(file.open(QFile::WriteOnly));
  file.write(text);
  file.close();
  return GtkPreference::read(file.fileName());
}

TEST(GtkPreferenceTest, readsTheNamesOfTheThemes) {
  const auto preference = preferenceIn("[Settings]\ngtk-icon-theme-name=Papirus\ngtk-theme-name=Arc-Dark\n");
  EXPECT_EQ(preference.theme, "Arc-Dark");
  EXPECT_EQ(preference.iconTheme, "Papirus");
  EXPECT_FALSE(preference.prefersDark);
}

TEST(GtkPreferenceTest, readsThePreferenceForDarkWindows) {
  EXPECT_TRUE(preferenceIn("[Settings]\ngtk-application-prefer-dark-theme=1\n").prefersDark);
  EXPECT_TRUE(preferenceIn("[Settings]\ngtk-application-prefer-dark-theme = true\n").prefersDark);
  EXPECT_FALSE(preferenceIn("[Settings]\ngtk-application-prefer-dark-theme=0\n").prefersDark);
  EXPECT_FALSE(preferenceIn("[Settings]\ngtk-application-prefer-dark-theme=false\n").prefersDark);
}

TEST(GtkPreferenceTest, readsThePreferenceForStillWindows) {
  EXPECT_TRUE(preferenceIn("[Settings]\ngtk-enable-animations=0\n").dropsAnimations);
  EXPECT_TRUE(preferenceIn("[Settings]\ngtk-enable-animations=FALSE\n").dropsAnimations);
  EXPECT_FALSE(preferenceIn("[Settings]\ngtk-enable-animations=1\n").dropsAnimations);
  EXPECT_FALSE(preferenceIn("[Settings]\n").dropsAnimations);
}

TEST(GtkPreferenceTest, otherSectionsDoNotCount) {
  const auto preference =
      preferenceIn("[Other]\ngtk-theme-name=Arc-Dark\ngtk-application-prefer-dark-theme=1\n");
  EXPECT_EQ(preference.theme, "");
  EXPECT_FALSE(preference.prefersDark);
}

TEST(GtkPreferenceTest, damagedOrMissingFileSetsNothing) {
  EXPECT_EQ(preferenceIn(QByteArray("\0\xff[[[=\n=\n]", 10)).theme, "");
  const auto preference = GtkPreference::read(QStringLiteral("/nonexistent/settings.ini"));
  EXPECT_FALSE(preference.dropsAnimations);
  EXPECT_EQ(preference.theme, "");
  EXPECT_FALSE(preference.prefersDark);
}

}  // namespace
}  // namespace vorli::ui
