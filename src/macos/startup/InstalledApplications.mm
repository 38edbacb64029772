#include "macos/startup/InstalledApplications.h"

#include "macos/Text.h"

#import <AppKit/AppKit.h>

namespace vorli::machost {

void InstalledApplications::lookAgain() {}

std::optional<std::string> InstalledApplications::urlForApplication(std::string_view bundleIdentifier) {
  @autoreleasepool {
    NSString* const identifier = stringOf(bundleIdentifier);
    return textIn([NSWorkspace.sharedWorkspace URLForApplicationWithBundleIdentifier:identifier].path);
  }
}

// Always empty: the bundle around a program identifies its application.
std::optional<std::string> InstalledApplications::urlForProgram(const std::string&) {
  return std::nullopt;
}

std::optional<ports::BundleInfo> InstalledApplications::bundle(const std::string& path) {
  @autoreleasepool {
    NSBundle* const bundle = [NSBundle bundleWithPath:stringOf(path)];
    if (!bundle) return std::nullopt;
    return ports::BundleInfo{
        .bundleIdentifier = textIn(bundle.bundleIdentifier),
        .bundleDisplayName = textIn([bundle objectForInfoDictionaryKey:@"CFBundleDisplayName"]),
        .bundleName = textIn([bundle objectForInfoDictionaryKey:@"CFBundleName"]),
    };
  }
}

}  // namespace vorli::machost
