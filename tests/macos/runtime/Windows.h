#pragma once

#import <AppKit/AppKit.h>
#include <string>
#include <vector>

// Screens, windows, the menu bar and events of the fake desktop.

namespace vorli::macfake {

struct Windows {
  NSMutableArray<NSScreen*>* screens = [[NSMutableArray alloc] init];
  NSMutableArray<NSWindow*>* all = [[NSMutableArray alloc] init];

  NSMutableArray<NSStatusItem*>* statusItems = [[NSMutableArray alloc] init];
  bool hasStatusButtons = true;
  /// Behaves as the menu bar at a click on an item with a menu: opens it and returns when it is closed.
  void (^openMenu)(NSMenu* menu) = nil;

  std::vector<std::string> announcements;
  std::vector<std::string> haptics;
  std::string appearance = "NSAppearanceNameAqua";

  NSUInteger pressedButtons = 0;
  bool allowsMonitors = true;
  struct Monitor {
    id token;
    NSEventMask mask;
    void (^handler)(NSEvent*);
  };
  std::vector<Monitor> monitors;
  struct LocalMonitor {
    id token;
    NSEventMask mask;
    NSEvent* (^handler)(NSEvent*);
  };
  std::vector<LocalMonitor> localMonitors;
};

Windows& windows();

/// Adds a screen; the first one is the main screen.
NSScreen* addScreen(NSRect frame);

/// Draws a view and its subviews.
void drawView(NSView* view);

}  // namespace vorli::macfake

@interface NSScreen ()
@property NSRect frame;
@end
@interface NSEvent ()
@property NSEventType type;
@property NSEventModifierFlags modifierFlags;
@property unsigned short keyCode;
@property(nullable, copy) NSString* charactersIgnoringModifiers;
@end
@interface NSApplication ()
@property(nullable, strong) NSEvent* currentEvent;
@property int activations;
@end
@interface NSView ()
@property(nullable, unsafe_unretained) NSWindow* window;
@property(readonly) NSArray<NSView*>* subviews;
@end
@interface NSControl ()
@property NSEventMask sentEvents;
@end
@interface NSStatusBarButton ()
@property(nullable, weak) NSStatusItem* item;
/// Lets the user click with this event.
- (void)click:(NSEventType)type modifiers:(NSEventModifierFlags)modifiers;
@end
@interface NSMenuItem ()
@property(copy) NSString* title;
@property(copy) NSString* keyEquivalent;
@property SEL action;
@property BOOL isSeparator;
/// Lets the user choose the row.
- (void)choose;
@end
@interface NSMenu ()
@property(readonly) NSArray<NSMenuItem*>* items;
@end
@interface NSStatusItem ()
@property(nullable, strong) NSStatusBarButton* button;
@property CGFloat length;
@end
@interface NSWindow ()
@property NSRect frame;
@property BOOL isVisible;
@property NSWindowStyleMask style;
@property int timesOrderedFront;
@end
