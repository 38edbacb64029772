#include "tests/macos/runtime/Windows.h"

#include "tests/macos/runtime/Foundation.h"
#include "tests/macos/runtime/State.h"

#include <objc/objc.h>

extern "C" void objc_msgSend(void);

namespace vorli::macfake {

static State<Windows> windowsState;

Windows& windows() {
  return *windowsState;
}

NSScreen* addScreen(NSRect frame) {
  NSScreen* const screen = [[NSScreen alloc] init];
  screen.frame = frame;
  [windows().screens addObject:screen];
  return screen;
}

void drawView(NSView* view) {
  [view drawRect:view.bounds];
  for (NSView* each in view.subviews) drawView(each);
}

namespace {

void sendAction(id target, SEL action, id sender) {
  if (target && action) reinterpret_cast<void (*)(id, SEL, id)>(objc_msgSend)(target, action, sender);
}

}  // namespace
}  // namespace vorli::macfake

using vorli::macfake::shared;
using vorli::macfake::windows;

NSString* const NSAccessibilityAnnouncementRequestedNotification = @"announcement requested";
NSString* const NSAccessibilityAnnouncementKey = @"announcement";
NSString* const NSAccessibilityPriorityKey = @"priority";
const NSAccessibilityRole NSAccessibilityButtonRole = @"AXButton";
const NSAppearanceName NSAppearanceNameAqua = @"NSAppearanceNameAqua";
const NSAppearanceName NSAppearanceNameDarkAqua = @"NSAppearanceNameDarkAqua";
const NSNotificationName NSApplicationDidChangeScreenParametersNotification = @"screens did change";

NSApplication* NSApp = nil;

namespace {

[[gnu::constructor(103)]] void makeApplication() {
  NSApp = shared([[NSApplication alloc] init]);
}

}  // namespace

CGWindowLevel CGWindowLevelForKey(CGWindowLevelKey key) {
  constexpr CGWindowLevel ofPopUpMenus = 101;
  return key == kCGPopUpMenuWindowLevelKey ? ofPopUpMenus : 0;
}

void NSAccessibilityPostNotificationWithUserInfo(
    id element, NSAccessibilityNotificationName notification,
    NSDictionary<NSAccessibilityNotificationUserInfoKey, id>* userInfo) {
  std::string line = element == NSApp ? "application: " : "other: ";
  line += std::string(notification.UTF8String) + ", ";
  line += static_cast<NSString*>(userInfo[NSAccessibilityAnnouncementKey]).UTF8String;
  line += ", " + std::to_string(static_cast<NSNumber*>(userInfo[NSAccessibilityPriorityKey]).intValue);
  windows().announcements.push_back(line);
}

@interface VorliHapticPerformer : NSObject <NSHapticFeedbackPerformer>
@end

@implementation VorliHapticPerformer
- (void)performFeedbackPattern:(NSHapticFeedbackPattern)pattern
               performanceTime:(NSHapticFeedbackPerformanceTime)time {
  windows().haptics.push_back(std::to_string(pattern) + " " + std::to_string(time));
}
@end

@implementation NSHapticFeedbackManager
+ (id<NSHapticFeedbackPerformer>)defaultPerformer {
  return [[VorliHapticPerformer alloc] init];
}
@end

@implementation NSAppearance
- (nullable NSAppearanceName)bestMatchFromAppearancesWithNames:(NSArray<NSAppearanceName>*)names {
  for (NSAppearanceName each in names)
    if (windows().appearance == each.UTF8String) return each;
  return nil;
}
@end

@implementation NSEvent
+ (NSUInteger)pressedMouseButtons {
  return windows().pressedButtons;
}
+ (nullable id)addGlobalMonitorForEventsMatchingMask:(NSEventMask)mask handler:(void (^)(NSEvent*))handler {
  if (!windows().allowsMonitors) return nil;
  const id token = [[NSObject alloc] init];
  windows().monitors.push_back({token, mask, handler});
  return token;
}
+ (nullable id)addLocalMonitorForEventsMatchingMask:(NSEventMask)mask
                                            handler:(NSEvent* _Nullable (^)(NSEvent*))handler {
  if (!windows().allowsMonitors) return nil;
  const id token = [[NSObject alloc] init];
  windows().localMonitors.push_back({token, mask, handler});
  return token;
}
+ (void)removeMonitor:(id)monitor {
  const auto isIt = [monitor](const auto& each) { return each.token == monitor; };
  std::erase_if(windows().monitors, isIt);
  std::erase_if(windows().localMonitors, isIt);
}
@end

@implementation NSResponder
@end

@implementation NSApplication
- (NSAppearance*)effectiveAppearance {
  return [[NSAppearance alloc] init];
}
- (void)activateIgnoringOtherApps:(BOOL)ignores {
  if (ignores) ++self.activations;
}
@end

@implementation NSScreen
+ (NSScreen*)mainScreen {
  return windows().screens.firstObject;
}
+ (NSArray<NSScreen*>*)screens {
  return [windows().screens copy];
}
@end

@implementation NSView {
  NSMutableArray<NSView*>* _subviews;
  NSRect _frame;
}

- (instancetype)init {
  return [self initWithFrame:NSRect{}];
}
- (instancetype)initWithFrame:(NSRect)frame {
  self = [super init];
  _subviews = [[NSMutableArray alloc] init];
  self.frame = frame;
  return self;
}
- (NSRect)frame {
  return _frame;
}
- (void)setFrame:(NSRect)frame {
  _frame = frame;
  self.bounds = {{0.0, 0.0}, frame.size};
}
- (void)addSubview:(NSView*)view {
  [_subviews addObject:view];
}
- (NSArray<NSView*>*)subviews {
  return [_subviews copy];
}
- (NSRect)convertRect:(NSRect)area toView:(nullable NSView*)view {
  return {{self.frame.origin.x + area.origin.x, self.frame.origin.y + area.origin.y}, area.size};
}
- (void)drawRect:(NSRect)area {
}
@end

@implementation NSControl
- (NSInteger)sendActionOn:(NSEventMask)mask {
  self.sentEvents = mask;
  return 0;
}
- (void)performClick:(nullable id)sender {
  vorli::macfake::sendAction(self.target, self.action, self);
}
@end

@implementation NSButton
@end

@implementation NSStatusBarButton

// An item with a menu opens it, and sends no action.
- (void)performClick:(nullable id)sender {
  NSMenu* const menu = self.item.menu;
  if (!menu) return [super performClick:sender];
  if (windows().openMenu) windows().openMenu(menu);
}
- (void)click:(NSEventType)type modifiers:(NSEventModifierFlags)modifiers {
  if ((self.sentEvents & (NSEventMask{1} << type)) == 0) return;
  NSEvent* const event = [[NSEvent alloc] init];
  event.type = type;
  event.modifierFlags = modifiers;
  NSApp.currentEvent = event;
  [self performClick:nil];
  NSApp.currentEvent = nil;
}
@end

@implementation NSMenuItem

- (instancetype)initWithTitle:(NSString*)title action:(nullable SEL)action keyEquivalent:(NSString*)key {
  self = [super init];
  self.title = title;
  self.action = action;
  self.keyEquivalent = key;
  return self;
}
+ (NSMenuItem*)separatorItem {
  NSMenuItem* const item = [[self alloc] init];
  item.isSeparator = YES;
  return item;
}
- (void)choose {
  vorli::macfake::sendAction(self.target, self.action, self);
}
@end

@implementation NSMenu {
  NSMutableArray<NSMenuItem*>* _items;
}

- (void)addItem:(NSMenuItem*)item {
  if (!_items) _items = [[NSMutableArray alloc] init];
  [_items addObject:item];
}
- (NSArray<NSMenuItem*>*)items {
  return [_items copy];
}
@end

@implementation NSStatusItem
@end

@implementation NSStatusBar

+ (NSStatusBar*)systemStatusBar {
  static NSStatusBar* const bar = shared([[NSStatusBar alloc] init]);
  return bar;
}
- (NSStatusItem*)statusItemWithLength:(CGFloat)length {
  NSStatusItem* const item = [[NSStatusItem alloc] init];
  item.length = length;
  if (windows().hasStatusButtons) {
    item.button = [[NSStatusBarButton alloc] init];
    item.button.item = item;
  }
  [windows().statusItems addObject:item];
  return item;
}
- (void)removeStatusItem:(NSStatusItem*)item {
  NSMutableArray<NSStatusItem*>* const left = [[NSMutableArray alloc] init];
  for (NSStatusItem* each in windows().statusItems)
    if (each != item) [left addObject:each];
  windows().statusItems = left;
}
@end

@implementation NSWindow {
  NSColor* _backgroundColor;
}

- (NSColor*)backgroundColor {
  return _backgroundColor;
}
- (void)setBackgroundColor:(NSColor*)colour {
  _backgroundColor = colour;
}
- (instancetype)initWithContentRect:(NSRect)content
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backing
                              defer:(BOOL)isDeferred {
  self = [super init];
  self.frame = content;
  self.style = style;
  self.opaque = YES;
  self.hasShadow = YES;
  self.releasedWhenClosed = YES;
  [windows().all addObject:self];
  return self;
}
- (void)setFrame:(NSRect)frame display:(BOOL)displays {
  self.frame = frame;
}
- (NSRect)convertRectToScreen:(NSRect)area {
  return {{self.frame.origin.x + area.origin.x, self.frame.origin.y + area.origin.y}, area.size};
}
- (void)orderFrontRegardless {
  self.isVisible = YES;
  ++self.timesOrderedFront;
}
- (void)orderOut:(nullable id)sender {
  self.isVisible = NO;
}
- (void)makeKeyAndOrderFront:(nullable id)sender {
  [self orderFrontRegardless];
}
@end
