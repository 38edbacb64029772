#pragma once

// Registration of daemons and login items.

#import <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

typedef NS_ENUM(NSInteger, SMAppServiceStatus) {
  SMAppServiceStatusNotRegistered,
  SMAppServiceStatusEnabled,
  SMAppServiceStatusRequiresApproval,
  SMAppServiceStatusNotFound,
};

@interface SMAppService : NSObject
@property(class, readonly) SMAppService* mainAppService;
+ (instancetype)daemonServiceWithPlistName:(NSString*)name;
- (BOOL)registerAndReturnError:(NSError* __autoreleasing _Nullable* _Nullable)error;
- (BOOL)unregisterAndReturnError:(NSError* __autoreleasing _Nullable* _Nullable)error;
- (void)unregisterWithCompletionHandler:(void (^)(NSError* _Nullable error))handler;
@property(readonly) SMAppServiceStatus status;
+ (void)openSystemSettingsLoginItems;
@end

NS_ASSUME_NONNULL_END
