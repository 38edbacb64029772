#include "macos/session/FileViewer.h"

#include "macos/Text.h"

#import <AppKit/AppKit.h>

namespace vorli::machost {

void FileViewer::reveal(const std::string& path) {
  [NSWorkspace.sharedWorkspace activateFileViewerSelectingURLs:@[ [NSURL fileURLWithPath:stringOf(path)] ]];
}

}  // namespace vorli::machost
