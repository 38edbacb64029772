#pragma once

#import <AppKit/AppKit.h>
#include <string>
#include <vector>

// The fake desktop, and the parts of its objects that tests may set.

@interface NSRunningApplication ()
@property NSApplicationActivationPolicy activationPolicy;
@property(nullable, copy) NSString* localizedName;
@property(nullable, copy) NSString* bundleIdentifier;
@property(nullable, copy) NSURL* bundleURL;
@property pid_t processIdentifier;
@property(nullable, copy) NSDate* launchDate;
@property(getter=isTerminated) BOOL terminated;
@property BOOL refusesToQuit;
@property int quitRequests;
@end

namespace vorli::macfake {

struct Desktop {
  NSMutableArray<NSRunningApplication*>* applications = [[NSMutableArray alloc] init];
  NSRunningApplication* frontmost = nil;
  bool reducesMotion = false;
  bool canOpenLinks = true;
  std::vector<std::string> openedLinks;
  std::vector<std::string> revealedFiles;
  NSMutableDictionary* applicationURLs = [[NSMutableDictionary alloc] init];  // by bundle identifier

  /// The answer of the window server; nil when it has none.
  id windows = nil;
  std::vector<CGWindowListOption> windowOptions;
};

Desktop& desktop();

/// An application in the desktop's list.
NSRunningApplication* launch(pid_t pid, NSString* name);

}  // namespace vorli::macfake
