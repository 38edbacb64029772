#pragma once

#include "formats/IconTheme.h"
#include "ports/ApplicationIcons.h"

#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorli::linuxhost {

/// The icons that desktop entries name: those of the user's icon theme, of the themes that it inherits from,
/// and of the theme to which applications add their own. SVG drawings are ignored: a renderer for them would
/// stay in memory from login to logout.
class ApplicationIcons final : public ports::ApplicationIcons {
 public:
  struct Places {
    std::vector<std::string> themes;  // folders of themes, the most important first
    std::vector<std::string> loose;   // folders with images that belong to no theme

    /// The icon folders beside the folders of the desktop entries, and ".icons" in the user's home.
    static Places ofThisUser();
  };

  /// `themeName` is called on the main thread; it is empty when the desktop has chosen no theme.
  ApplicationIcons(Places places, std::function<std::string()> themeName);

  void lookAgain() override;
  /// `application` is the path of a desktop entry, which keeps its icon while it is paused.
  std::optional<std::string> image(const std::string& application, int sidePixels) override;

 private:
  struct Folder {
    std::vector<std::string> paths;  // existing folders, the most important first
    formats::IconFolder sizes;
  };
  using Theme = std::vector<Folder>;

  void readThemes();
  void readTheme(const std::string& name, std::vector<std::string>& seen);
  std::optional<std::string> imageNamed(const std::string& name, int sidePixels);

  const Places places_;
  const std::function<std::string()> themeName_;
  std::mutex nameLock_;
  std::optional<std::string> wanted_;  // name of a theme that is not read yet
  std::mutex lock_;                    // guards the themes
  std::vector<Theme> themes_;          // in search order
};

}  // namespace vorli::linuxhost
