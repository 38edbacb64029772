#pragma once

// The part of AppKit that the macOS back end uses.

#include <CoreGraphics/CoreGraphics.h>
#import <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

@class NSGraphicsContext;
@class NSImage;
@class NSMenu;
@class NSWindow;

typedef NS_ENUM(NSInteger, NSApplicationActivationPolicy) {
  NSApplicationActivationPolicyRegular,
  NSApplicationActivationPolicyAccessory,
  NSApplicationActivationPolicyProhibited,
};

@interface NSRunningApplication : NSObject
@property(readonly) NSApplicationActivationPolicy activationPolicy;
@property(nullable, readonly, copy) NSString* localizedName;
@property(nullable, readonly, copy) NSString* bundleIdentifier;
@property(nullable, readonly, copy) NSURL* bundleURL;
@property(readonly) pid_t processIdentifier;
@property(nullable, readonly, copy) NSDate* launchDate;
@property(readonly, getter=isTerminated) BOOL terminated;
- (BOOL)terminate;
+ (NSArray<NSRunningApplication*>*)runningApplicationsWithBundleIdentifier:(NSString*)bundleIdentifier;
+ (nullable instancetype)runningApplicationWithProcessIdentifier:(pid_t)pid;
@end

@interface NSWorkspace : NSObject
@property(class, readonly, strong) NSWorkspace* sharedWorkspace;
@property(readonly, strong) NSNotificationCenter* notificationCenter;
@property(readonly, copy) NSArray<NSRunningApplication*>* runningApplications;
@property(nullable, readonly, strong) NSRunningApplication* frontmostApplication;
@property(readonly) BOOL accessibilityDisplayShouldReduceMotion;
- (BOOL)openURL:(NSURL*)url;
- (void)activateFileViewerSelectingURLs:(NSArray<NSURL*>*)urls;
- (NSImage*)iconForFile:(NSString*)path;
- (nullable NSURL*)URLForApplicationWithBundleIdentifier:(NSString*)bundleIdentifier;
@end

FOUNDATION_EXPORT NSString* const NSWorkspaceApplicationKey;
FOUNDATION_EXPORT const NSNotificationName NSWorkspaceDidActivateApplicationNotification;
FOUNDATION_EXPORT const NSNotificationName NSWorkspaceDidLaunchApplicationNotification;
FOUNDATION_EXPORT const NSNotificationName NSWorkspaceDidTerminateApplicationNotification;
FOUNDATION_EXPORT const NSNotificationName NSWorkspaceActiveSpaceDidChangeNotification;
FOUNDATION_EXPORT const NSNotificationName NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification;

typedef NS_ENUM(NSInteger, NSHapticFeedbackPattern) {
  NSHapticFeedbackPatternGeneric = 0,
};
typedef NS_ENUM(NSUInteger, NSHapticFeedbackPerformanceTime) {
  NSHapticFeedbackPerformanceTimeNow = 1,
};

@protocol NSHapticFeedbackPerformer <NSObject>
- (void)performFeedbackPattern:(NSHapticFeedbackPattern)pattern
               performanceTime:(NSHapticFeedbackPerformanceTime)performanceTime;
@end

@interface NSHapticFeedbackManager : NSObject
@property(class, readonly, strong) id<NSHapticFeedbackPerformer> defaultPerformer;
@end

typedef NSString* NSAppearanceName;
FOUNDATION_EXPORT const NSAppearanceName NSAppearanceNameAqua;
FOUNDATION_EXPORT const NSAppearanceName NSAppearanceNameDarkAqua;

@interface NSAppearance : NSObject
- (nullable NSAppearanceName)bestMatchFromAppearancesWithNames:(NSArray<NSAppearanceName>*)names;
@end

typedef NS_OPTIONS(NSUInteger, NSEventModifierFlags) {
  NSEventModifierFlagControl = 1 << 18,
};
typedef NS_ENUM(NSUInteger, NSEventType) {
  NSEventTypeRightMouseUp = 4,
};
typedef NS_OPTIONS(NSUInteger, NSEventMask) {
  NSEventMaskLeftMouseDown = 1 << 1,
  NSEventMaskLeftMouseUp = 1 << 2,
  NSEventMaskRightMouseDown = 1 << 3,
  NSEventMaskRightMouseUp = 1 << 4,
  NSEventMaskKeyDown = 1 << 10,
};

@interface NSEvent : NSObject
@property(readonly) NSEventType type;
@property(readonly) NSEventModifierFlags modifierFlags;
@property(readonly) unsigned short keyCode;
@property(nullable, readonly, copy) NSString* charactersIgnoringModifiers;
@property(class, readonly) NSUInteger pressedMouseButtons;
+ (nullable id)addLocalMonitorForEventsMatchingMask:(NSEventMask)mask
                                            handler:(NSEvent* _Nullable (^)(NSEvent* event))handler;
+ (nullable id)addGlobalMonitorForEventsMatchingMask:(NSEventMask)mask
                                             handler:(void (^)(NSEvent* event))handler;
+ (void)removeMonitor:(id)monitor;
@end

@interface NSResponder : NSObject
@end

@interface NSApplication : NSResponder
@property(nullable, readonly, strong) NSEvent* currentEvent;
@property(readonly, strong) NSAppearance* effectiveAppearance;
- (void)activateIgnoringOtherApps:(BOOL)ignores;
@end
FOUNDATION_EXPORT NSApplication* _Null_unspecified NSApp;
FOUNDATION_EXPORT const NSNotificationName NSApplicationDidChangeScreenParametersNotification;

@interface NSColor : NSObject
@property(class, readonly, strong) NSColor* clearColor;
+ (NSColor*)colorWithSRGBRed:(CGFloat)red green:(CGFloat)green blue:(CGFloat)blue alpha:(CGFloat)alpha;
- (NSColor*)colorWithAlphaComponent:(CGFloat)alpha;
- (void)setStroke;
@end

@interface NSGradient : NSObject
- (nullable instancetype)initWithStartingColor:(NSColor*)start endingColor:(NSColor*)end;
- (void)drawInRect:(NSRect)area angle:(CGFloat)degrees;
@end

typedef NS_ENUM(NSUInteger, NSLineCapStyle) {
  NSLineCapStyleRound = 1,
};

@interface NSBezierPath : NSObject
+ (NSBezierPath*)bezierPath;
@property CGFloat lineWidth;
@property NSLineCapStyle lineCapStyle;
- (void)moveToPoint:(NSPoint)point;
- (void)lineToPoint:(NSPoint)point;
- (void)stroke;
@end

@interface NSImage : NSObject
+ (instancetype)imageWithSize:(NSSize)size
                      flipped:(BOOL)isFlipped
               drawingHandler:(BOOL (^)(NSRect area))handler;
- (nullable CGImageRef)CGImageForProposedRect:(nullable NSRect*)area
                                      context:(nullable NSGraphicsContext*)context
                                        hints:(nullable NSDictionary*)hints;
@end

typedef NS_ENUM(NSUInteger, NSBitmapImageFileType) {
  NSBitmapImageFileTypePNG = 4,
};

@interface NSImageRep : NSObject
@end

@interface NSBitmapImageRep : NSImageRep
- (instancetype)initWithCGImage:(CGImageRef)image;
- (nullable NSData*)representationUsingType:(NSBitmapImageFileType)type properties:(NSDictionary*)properties;
@end

@interface NSScreen : NSObject
@property(class, nullable, readonly, strong) NSScreen* mainScreen;
@property(class, readonly, copy) NSArray<NSScreen*>* screens;
@property(readonly) NSRect frame;
@end

typedef NSString* NSAccessibilityRole;
FOUNDATION_EXPORT const NSAccessibilityRole NSAccessibilityButtonRole;

@interface NSView : NSResponder
- (instancetype)initWithFrame:(NSRect)frame;
- (void)addSubview:(NSView*)view;
- (NSRect)convertRect:(NSRect)area toView:(nullable NSView*)view;
- (void)drawRect:(NSRect)area;
@property(nullable, readonly, unsafe_unretained) NSWindow* window;
@property NSRect frame;
@property NSRect bounds;
@property CGFloat alphaValue;
@property BOOL wantsLayer;
@property BOOL needsDisplay;
@property(nullable, copy) NSString* toolTip;
@property(nullable, copy) NSString* accessibilityLabel;
@property(nullable, strong) id accessibilityValue;
@property(nullable, copy) NSAccessibilityRole accessibilityRole;
@end

@interface NSControl : NSView
@property(nullable, weak) id target;
@property(nullable) SEL action;
- (NSInteger)sendActionOn:(NSEventMask)mask;
- (void)performClick:(nullable id)sender;
@end

@interface NSButton : NSControl
@property(nullable, strong) NSImage* image;
@end

@interface NSStatusBarButton : NSButton
@end

@interface NSMenuItem : NSObject
- (instancetype)initWithTitle:(NSString*)title action:(nullable SEL)action keyEquivalent:(NSString*)key;
+ (NSMenuItem*)separatorItem;
@property(nullable, weak) id target;
@property NSInteger tag;
@end

@interface NSMenu : NSObject
- (void)addItem:(NSMenuItem*)item;
@end

@interface NSStatusItem : NSObject
@property(nullable, readonly, strong) NSStatusBarButton* button;
@property(nullable, strong) NSMenu* menu;
@end

@interface NSStatusBar : NSObject
@property(class, readonly, strong) NSStatusBar* systemStatusBar;
- (NSStatusItem*)statusItemWithLength:(CGFloat)length;
- (void)removeStatusItem:(NSStatusItem*)item;
@end

typedef NSInteger NSWindowLevel;
typedef NS_OPTIONS(NSUInteger, NSWindowStyleMask) {
  NSWindowStyleMaskBorderless = 0,
};
typedef NS_ENUM(NSUInteger, NSBackingStoreType) {
  NSBackingStoreBuffered = 2,
};
typedef NS_OPTIONS(NSUInteger, NSWindowCollectionBehavior) {
  NSWindowCollectionBehaviorCanJoinAllSpaces = 1 << 0,
  NSWindowCollectionBehaviorTransient = 1 << 3,
  NSWindowCollectionBehaviorStationary = 1 << 4,
  NSWindowCollectionBehaviorFullScreenAuxiliary = 1 << 8,
};

@interface NSWindow : NSResponder
- (instancetype)initWithContentRect:(NSRect)content
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backing
                              defer:(BOOL)isDeferred;
@property NSWindowLevel level;
@property NSWindowCollectionBehavior collectionBehavior;
@property(getter=isOpaque) BOOL opaque;
@property BOOL hasShadow;
@property BOOL ignoresMouseEvents;
@property(getter=isReleasedWhenClosed) BOOL releasedWhenClosed;
@property(null_resettable, copy) NSColor* backgroundColor;
@property(nullable, strong) NSView* contentView;
- (void)setFrame:(NSRect)frame display:(BOOL)displays;
- (NSRect)convertRectToScreen:(NSRect)area;
- (void)orderFrontRegardless;
- (void)orderOut:(nullable id)sender;
- (void)makeKeyAndOrderFront:(nullable id)sender;
@end

typedef NSString* NSAccessibilityNotificationName;
typedef NSString* NSAccessibilityNotificationUserInfoKey;
typedef NS_ENUM(NSInteger, NSAccessibilityPriorityLevel) {
  NSAccessibilityPriorityMedium = 50,
};
FOUNDATION_EXPORT const NSAccessibilityNotificationName NSAccessibilityAnnouncementRequestedNotification;
FOUNDATION_EXPORT const NSAccessibilityNotificationUserInfoKey NSAccessibilityAnnouncementKey;
FOUNDATION_EXPORT const NSAccessibilityNotificationUserInfoKey NSAccessibilityPriorityKey;
FOUNDATION_EXPORT void NSAccessibilityPostNotificationWithUserInfo(
    id element, NSAccessibilityNotificationName notification,
    NSDictionary<NSAccessibilityNotificationUserInfoKey, id>* _Nullable userInfo);

NS_ASSUME_NONNULL_END
