#pragma once

// The user's notifications.

#import <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

typedef NS_OPTIONS(NSUInteger, UNAuthorizationOptions) {
  UNAuthorizationOptionSound = 1 << 1,
  UNAuthorizationOptionAlert = 1 << 2,
};
typedef NS_OPTIONS(NSUInteger, UNNotificationActionOptions) {
  UNNotificationActionOptionForeground = 1 << 2,
};
typedef NSUInteger UNNotificationCategoryOptions;
typedef NS_OPTIONS(NSUInteger, UNNotificationPresentationOptions) {
  UNNotificationPresentationOptionSound = 1 << 1,
  UNNotificationPresentationOptionBanner = 1 << 4,
};
typedef NS_ENUM(NSUInteger, UNNotificationInterruptionLevel) {
  UNNotificationInterruptionLevelPassive,
  UNNotificationInterruptionLevelActive,
};

FOUNDATION_EXPORT NSString* const UNNotificationDefaultActionIdentifier;

@class UNNotificationTrigger;

@interface UNNotificationContent : NSObject <NSCopying, NSMutableCopying, NSSecureCoding>
@property(readonly, copy) NSString* categoryIdentifier;
@end

@interface UNMutableNotificationContent : UNNotificationContent
@property(readwrite, copy) NSString* title;
@property(readwrite, copy) NSString* body;
@property(readwrite, copy) NSString* categoryIdentifier;
@property(readwrite) UNNotificationInterruptionLevel interruptionLevel;
@end

@interface UNNotificationRequest : NSObject <NSCopying, NSSecureCoding>
+ (instancetype)requestWithIdentifier:(NSString*)identifier
                              content:(UNNotificationContent*)content
                              trigger:(nullable UNNotificationTrigger*)trigger;
@property(readonly, copy) UNNotificationContent* content;
@end

@interface UNNotification : NSObject <NSCopying, NSSecureCoding>
@property(readonly, copy) UNNotificationRequest* request;
@end

@interface UNNotificationResponse : NSObject <NSCopying, NSSecureCoding>
@property(readonly, copy) UNNotification* notification;
@property(readonly, copy) NSString* actionIdentifier;
@end

@interface UNNotificationAction : NSObject <NSCopying, NSSecureCoding>
+ (instancetype)actionWithIdentifier:(NSString*)identifier
                               title:(NSString*)title
                             options:(UNNotificationActionOptions)options;
@end

@interface UNNotificationCategory : NSObject <NSCopying, NSSecureCoding>
+ (instancetype)categoryWithIdentifier:(NSString*)identifier
                               actions:(NSArray<UNNotificationAction*>*)actions
                     intentIdentifiers:(NSArray<NSString*>*)intentIdentifiers
                               options:(UNNotificationCategoryOptions)options;
@end

@class UNUserNotificationCenter;

@protocol UNUserNotificationCenterDelegate <NSObject>
@optional
- (void)userNotificationCenter:(UNUserNotificationCenter*)center
       willPresentNotification:(UNNotification*)notification
         withCompletionHandler:(void (^)(UNNotificationPresentationOptions options))completionHandler;
- (void)userNotificationCenter:(UNUserNotificationCenter*)center
    didReceiveNotificationResponse:(UNNotificationResponse*)response
             withCompletionHandler:(void (^)(void))completionHandler;
@end

@interface UNUserNotificationCenter : NSObject
+ (UNUserNotificationCenter*)currentNotificationCenter;
@property(weak, nullable) id<UNUserNotificationCenterDelegate> delegate;
- (void)setNotificationCategories:(NSSet<UNNotificationCategory*>*)categories;
- (void)requestAuthorizationWithOptions:(UNAuthorizationOptions)options
                      completionHandler:(void (^)(BOOL granted, NSError* _Nullable error))completionHandler;
- (void)addNotificationRequest:(UNNotificationRequest*)request
         withCompletionHandler:(nullable void (^)(NSError* _Nullable error))completionHandler;
@end

NS_ASSUME_NONNULL_END
