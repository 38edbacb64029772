#pragma once

#include <gtest/gtest.h>
#include <string_view>

namespace vorli {

/// Fails if a text for a Linux desktop is empty or names something that only another system has.
inline void expectNoForeignWords(std::string_view text) {
  EXPECT_FALSE(text.empty());
  for (const std::string_view word : {"Mac", "macOS", "System Settings", "Login Items", "Finder", "Dock",
                                      "DMG", "Applications folder", "Trash"}) {
    EXPECT_EQ(text.find(word), std::string_view::npos) << text;
  }
}

}  // namespace vorli
