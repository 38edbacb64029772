#include "settings/VersionText.h"

namespace vorli {

std::string versionText(const ports::ApplicationBundle& bundle) {
  return "v" + bundle.infoString("CFBundleShortVersionString").value_or("?") + " (build " +
         bundle.infoString("CFBundleVersion").value_or("?") + ")";
}

}  // namespace vorli
