#include "macos/session/ApplicationBundle.h"

#include "macos/Text.h"

namespace vorli::machost {

std::optional<std::string> ApplicationBundle::infoString(const std::string& key) const {
  return textIn([NSBundle.mainBundle objectForInfoDictionaryKey:stringOf(key)]);
}

std::string ApplicationBundle::bundlePath() const {
  return textOf(NSBundle.mainBundle.bundlePath);
}

std::string ApplicationBundle::homeDirectory() const {
  return textOf(NSFileManager.defaultManager.homeDirectoryForCurrentUser.path);
}

}  // namespace vorli::machost
