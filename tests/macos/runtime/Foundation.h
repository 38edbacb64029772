#pragma once

#import <Foundation/Foundation.h>
#include <string>
#include <string_view>

// Functions of the fake Foundation that only tests and other fakes use.

namespace vorli::macfake {

NSString* string(std::string_view bytes);

/// The object lives as long as the program: a shared instance of the system.
id shared(id object);

/// The handler that was set; null when none was.
NSUncaughtExceptionHandler* uncaughtExceptionHandler();

}  // namespace vorli::macfake

@interface NSArray ()
- (instancetype)initWithObjects:(const id __unsafe_unretained*)objects count:(NSUInteger)count;
@end

@interface NSSet ()
@property(readonly) NSUInteger count;
- (BOOL)containsObject:(id)object;
@end

/// The methods that an unarchiver calls.
@protocol VorliCoding
- (instancetype)initWithCoder:(NSCoder*)coder;
@end

@interface NSError ()
+ (instancetype)errorWithCode:(NSInteger)code text:(NSString*)text;
@end

@interface NSException ()
+ (instancetype)exceptionWithName:(NSString*)name reason:(NSString*)reason calls:(NSArray<NSNumber*>*)calls;
@end

@interface NSURL ()
@property(readonly, copy) NSString* absoluteString;
@end

@interface NSData ()
+ (instancetype)dataWithText:(std::string)text;
@end

@interface NSNotification ()
+ (instancetype)notificationWithUserInfo:(NSDictionary*)userInfo;
@end

@interface NSNotificationCenter ()
/// Posts as another program or the system does: each observer's block waits in its queue.
- (void)post:(NSNotificationName)name userInfo:(NSDictionary*)userInfo;
@property(readonly) NSUInteger observerCount;
@end

@interface NSBundle ()
/// A bundle at a path, which `bundleWithPath:` then finds.
+ (instancetype)installAt:(NSString*)path info:(NSDictionary*)info;
@end
