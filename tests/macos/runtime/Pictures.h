#pragma once

#import <AppKit/AppKit.h>
#include <string>
#include <vector>

namespace vorli::macfake {

/// The drawing calls so far, one line for each, in their order.
struct Pictures {
  std::vector<std::string> drawn;
  bool canRender = true;  // icons
  bool canEncode = true;
};

Pictures& pictures();

}  // namespace vorli::macfake

@interface NSImage ()
@property NSSize size;
@property BOOL isFlipped;
@property(copy) BOOL (^drawingHandler)(NSRect area);
@end
