#include "macos/session/LinkOpener.h"

#include "macos/Text.h"

#import <AppKit/AppKit.h>

namespace vorli::machost {

bool LinkOpener::openURL(const std::string& url) {
  NSURL* const link = [NSURL URLWithString:stringOf(url)];
  return link && [NSWorkspace.sharedWorkspace openURL:link];
}

}  // namespace vorli::machost
