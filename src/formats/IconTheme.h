#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vorli::formats {

/// A folder of an icon theme. All its images are drawn for the same range of sizes.
struct IconFolder {
  std::string path;  // relative to the theme
  // Range of sizes in pixels for which the images are meant; both ends are included.
  int leastPixels = 0;
  int greatestPixels = 0;

  bool operator==(const IconFolder&) const = default;
};

/// The contents of an icon theme, as its index file lists them.
struct IconTheme {
  std::vector<std::string> inherits;  // names of the themes to search after it
  std::vector<IconFolder> folders;

  bool operator==(const IconTheme&) const = default;
};

/// Parses the text of an "index.theme" file. Never fails: a folder without a sensible size, and one that is
/// not inside the theme, are left out.
IconTheme parseIconTheme(std::string_view text);

/// Returns how badly the images of a folder fit a square of `pixels`; 0 is a fit. Reducing any image is
/// better than enlarging one.
int misfit(const IconFolder& folder, int pixels);

}  // namespace vorli::formats
