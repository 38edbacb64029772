#include "macos/startup/ApplicationIcons.h"

#include "macos/Text.h"

#import <AppKit/AppKit.h>

namespace vorli::machost {

// Checks that the file exists, because the system returns an icon for every path.
std::optional<std::string> ApplicationIcons::image(const std::string& application, int sidePixels) {
  @autoreleasepool {
    NSString* const path = stringOf(application);
    if (![NSFileManager.defaultManager fileExistsAtPath:path]) return std::nullopt;
    NSImage* const icon = [NSWorkspace.sharedWorkspace iconForFile:path];
    NSRect area{{0.0, 0.0}, {static_cast<CGFloat>(sidePixels), static_cast<CGFloat>(sidePixels)}};
    const auto pixels = [icon CGImageForProposedRect:&area context:nil hints:nil];
    if (!pixels) return std::nullopt;
    NSBitmapImageRep* const bitmap = [[NSBitmapImageRep alloc] initWithCGImage:pixels];
    NSData* const png = [bitmap representationUsingType:NSBitmapImageFileTypePNG properties:@{}];
    if (png.length == 0) return std::nullopt;
    return std::string(static_cast<const char*>(png.bytes), png.length);
  }
}

}  // namespace vorli::machost
