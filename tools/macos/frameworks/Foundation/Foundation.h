#pragma once

// The part of Foundation that the macOS back end uses.

#include <CoreFoundation/CoreFoundation.h>
#include <dispatch/dispatch.h>
#import <objc/NSObject.h>
#include <sys/types.h>

#define FOUNDATION_EXPORT extern "C"
#define NS_ASSUME_NONNULL_BEGIN _Pragma("clang assume_nonnull begin")
#define NS_ASSUME_NONNULL_END _Pragma("clang assume_nonnull end")
#define NS_ENUM(type, name) \
  enum name : type name;    \
  enum name : type
// The options of one type can be joined by |, which in C++ takes a number and no enum.
#define NS_OPTIONS(type, name) \
  type name;                   \
  enum : name

NS_ASSUME_NONNULL_BEGIN

@class NSArray<__covariant ObjectType>;
@class NSData;
@class NSDate;
@class NSError;
@class NSFileHandle;
@class NSString;
@class NSURL;

// Moves an object that a C function has created into the care of the compiler.
static inline id _Nullable CFBridgingRelease(CFTypeRef _Nullable __attribute__((cf_consumed)) object) {
  return (__bridge_transfer id)object;
}

typedef CGPoint NSPoint;
typedef CGSize NSSize;
typedef CGRect NSRect;
typedef double NSTimeInterval;
typedef NSUInteger NSStringEncoding;
typedef unsigned short unichar;
typedef NSString* NSErrorDomain;
typedef NSString* NSNotificationName;

enum : NSStringEncoding { NSUTF8StringEncoding = 4 };

@protocol NSCopying
@end

@protocol NSMutableCopying
@end

@protocol NSCoding
@end

@protocol NSSecureCoding <NSCoding>
@end

struct NSFastEnumerationState {
  unsigned long state;
  id __unsafe_unretained _Nullable* _Nullable itemsPtr;
  unsigned long* _Nullable mutationsPtr;
  unsigned long extra[5];
};
typedef struct NSFastEnumerationState NSFastEnumerationState;

@protocol NSFastEnumeration
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id __unsafe_unretained _Nullable[_Nonnull])buffer
                                    count:(NSUInteger)count;
@end

@interface NSString : NSObject <NSCopying, NSMutableCopying, NSSecureCoding>
- (nullable instancetype)initWithBytes:(const void*)bytes
                                length:(NSUInteger)length
                              encoding:(NSStringEncoding)encoding;
@property(nullable, readonly) const char* UTF8String;
@property(readonly) NSUInteger length;
- (unichar)characterAtIndex:(NSUInteger)index;
- (NSString*)stringByAppendingString:(NSString*)text;
- (NSString*)stringByAppendingPathComponent:(NSString*)name;
@end

@interface NSCharacterSet : NSObject <NSCopying, NSMutableCopying, NSSecureCoding>
@property(class, readonly, copy) NSCharacterSet* alphanumericCharacterSet;
- (BOOL)characterIsMember:(unichar)character;
@end

@interface NSValue : NSObject <NSCopying, NSSecureCoding>
@end

@interface NSNumber : NSValue
+ (NSNumber*)numberWithBool:(BOOL)value;
+ (NSNumber*)numberWithInt:(int)value;
+ (NSNumber*)numberWithLongLong:(long long)value;
+ (NSNumber*)numberWithInteger:(NSInteger)value;
+ (NSNumber*)numberWithDouble:(double)value;
@property(readonly) BOOL boolValue;
@property(readonly) int intValue;
@property(readonly) long long longLongValue;
@property(readonly) double doubleValue;
@end

@interface NSDate : NSObject <NSCopying, NSSecureCoding>
+ (instancetype)dateWithTimeIntervalSince1970:(NSTimeInterval)seconds;
@property(readonly) NSTimeInterval timeIntervalSince1970;
@end

@interface NSData : NSObject <NSCopying, NSMutableCopying, NSSecureCoding>
+ (nullable instancetype)dataWithContentsOfFile:(NSString*)path;
@property(readonly) NSUInteger length;
@property(readonly) const void* bytes;
@end

@interface NSArray<__covariant ObjectType>
    : NSObject <NSCopying, NSMutableCopying, NSSecureCoding, NSFastEnumeration>
+ (instancetype)arrayWithObjects:(const ObjectType _Nonnull[_Nullable])objects count:(NSUInteger)count;
- (ObjectType)objectAtIndexedSubscript:(NSUInteger)index;
@property(readonly) NSUInteger count;
@property(nullable, readonly) ObjectType firstObject;
@end

@interface NSMutableArray<ObjectType> : NSArray <ObjectType>
- (void)addObject:(ObjectType)object;
@end

@interface NSDictionary<__covariant KeyType, __covariant ObjectType>
    : NSObject <NSCopying, NSMutableCopying, NSSecureCoding, NSFastEnumeration>
+ (instancetype)dictionaryWithObjects:(const ObjectType _Nonnull[_Nullable])objects
                              forKeys:(const KeyType<NSCopying> _Nonnull[_Nullable])keys
                                count:(NSUInteger)count;
- (nullable ObjectType)objectForKeyedSubscript:(KeyType)key;
@property(readonly) NSUInteger count;
@end

@interface NSMutableDictionary<KeyType, ObjectType> : NSDictionary <KeyType, ObjectType>
+ (instancetype)dictionaryWithDictionary:(NSDictionary<KeyType, ObjectType>*)other;
- (void)setObject:(nullable ObjectType)object forKeyedSubscript:(KeyType<NSCopying>)key;
@end

@interface NSSet<__covariant ObjectType>
    : NSObject <NSCopying, NSMutableCopying, NSSecureCoding, NSFastEnumeration>
+ (instancetype)setWithArray:(NSArray<ObjectType>*)array;
@property(readonly, copy) NSArray<ObjectType>* allObjects;
@end

@interface NSError : NSObject <NSCopying, NSSecureCoding>
@property(readonly) NSInteger code;
@property(readonly, copy) NSString* localizedDescription;
@end

@interface NSException : NSObject <NSCopying, NSSecureCoding>
@property(readonly, copy) NSString* name;
@property(nullable, readonly, copy) NSString* reason;
@property(readonly, copy) NSArray<NSNumber*>* callStackReturnAddresses;
@end

typedef void NSUncaughtExceptionHandler(NSException* exception);
FOUNDATION_EXPORT void NSSetUncaughtExceptionHandler(NSUncaughtExceptionHandler* _Nullable handler);

typedef NS_OPTIONS(NSUInteger, NSURLBookmarkResolutionOptions) {
  NSURLBookmarkResolutionWithoutUI = 1 << 8,
  NSURLBookmarkResolutionWithoutMounting = 1 << 9,
};

@interface NSURL : NSObject <NSCopying, NSSecureCoding>
+ (nullable instancetype)URLWithString:(NSString*)text;
+ (NSURL*)fileURLWithPath:(NSString*)path;
+ (nullable instancetype)URLByResolvingBookmarkData:(NSData*)data
                                            options:(NSURLBookmarkResolutionOptions)options
                                      relativeToURL:(nullable NSURL*)base
                                bookmarkDataIsStale:(BOOL* _Nullable)isStale
                                              error:(NSError* __autoreleasing _Nullable* _Nullable)error;
@property(nullable, readonly, copy) NSString* path;
@end

@interface NSUUID : NSObject <NSCopying, NSSecureCoding>
+ (instancetype)UUID;
@property(readonly, copy) NSString* UUIDString;
@end

@interface NSCoder : NSObject
- (nullable id)decodeObjectForKey:(NSString*)key;
- (NSInteger)decodeIntegerForKey:(NSString*)key;
@end

FOUNDATION_EXPORT NSString* const NSKeyedArchiveRootObjectKey;

@interface NSKeyedUnarchiver : NSCoder
- (nullable instancetype)initForReadingFromData:(NSData*)data
                                          error:(NSError* __autoreleasing _Nullable* _Nullable)error;
- (void)setClass:(nullable Class)type forClassName:(NSString*)name;
- (void)finishDecoding;
@property BOOL requiresSecureCoding;
@end

@interface NSBundle : NSObject
@property(class, readonly, strong) NSBundle* mainBundle;
+ (nullable instancetype)bundleWithPath:(NSString*)path;
- (BOOL)loadAndReturnError:(NSError* __autoreleasing _Nullable* _Nullable)error;
- (nullable id)objectForInfoDictionaryKey:(NSString*)key;
@property(readonly, copy) NSString* bundlePath;
@property(nullable, readonly, copy) NSString* bundleIdentifier;
@property(nullable, readonly, copy) NSString* privateFrameworksPath;
@end

typedef struct {
  NSInteger majorVersion;
  NSInteger minorVersion;
  NSInteger patchVersion;
} NSOperatingSystemVersion;

typedef NS_ENUM(NSInteger, NSProcessInfoThermalState) {
  NSProcessInfoThermalStateNominal,
  NSProcessInfoThermalStateFair,
  NSProcessInfoThermalStateSerious,
  NSProcessInfoThermalStateCritical,
};

@interface NSProcessInfo : NSObject
@property(class, readonly, strong) NSProcessInfo* processInfo;
@property(readonly, copy) NSDictionary<NSString*, NSString*>* environment;
@property(readonly) NSUInteger processorCount;
@property(readonly) NSUInteger activeProcessorCount;
@property(readonly) unsigned long long physicalMemory;
@property(readonly) NSOperatingSystemVersion operatingSystemVersion;
@property(readonly) NSProcessInfoThermalState thermalState;
@property(readonly, getter=isLowPowerModeEnabled) BOOL lowPowerModeEnabled;
@end

FOUNDATION_EXPORT Class _Nullable NSClassFromString(NSString* name);

@interface NSThread : NSObject
+ (void)sleepForTimeInterval:(NSTimeInterval)seconds;
@end

@interface NSFileManager : NSObject
@property(class, readonly, strong) NSFileManager* defaultManager;
@property(readonly, copy) NSURL* homeDirectoryForCurrentUser;
- (BOOL)fileExistsAtPath:(NSString*)path;
- (BOOL)isReadableFileAtPath:(NSString*)path;
- (NSString*)displayNameAtPath:(NSString*)path;
@end

@interface NSUserDefaults : NSObject
@property(class, readonly, strong) NSUserDefaults* standardUserDefaults;
- (nullable id)objectForKey:(NSString*)key;
- (void)setObject:(nullable id)value forKey:(NSString*)key;
- (void)removeObjectForKey:(NSString*)key;
- (BOOL)synchronize;
@end

@interface NSNotification : NSObject <NSCopying, NSCoding>
@property(nullable, readonly, copy) NSDictionary* userInfo;
@end

@interface NSOperationQueue : NSObject
@property(class, readonly, strong) NSOperationQueue* mainQueue;
@end

@interface NSNotificationCenter : NSObject
- (id<NSObject>)addObserverForName:(nullable NSNotificationName)name
                            object:(nullable id)object
                             queue:(nullable NSOperationQueue*)queue
                        usingBlock:(void (^)(NSNotification* notification))block;
- (void)removeObserver:(id)observer;
@property(class, readonly, strong) NSNotificationCenter* defaultCenter;
@end

@interface NSDistributedNotificationCenter : NSNotificationCenter
+ (NSDistributedNotificationCenter*)defaultCenter;
@end

@interface NSFileHandle : NSObject
@property(class, readonly, strong) NSFileHandle* fileHandleWithNullDevice;
- (nullable NSData*)readDataToEndOfFileAndReturnError:(NSError* __autoreleasing _Nullable* _Nullable)error;
@end

@interface NSPipe : NSObject
+ (NSPipe*)pipe;
@property(readonly, retain) NSFileHandle* fileHandleForReading;
@end

typedef NS_ENUM(NSInteger, NSTaskTerminationReason) {
  NSTaskTerminationReasonExit = 1,
  NSTaskTerminationReasonUncaughtSignal = 2,
};

@interface NSTask : NSObject
@property(nullable, copy) NSURL* executableURL;
@property(nullable, copy) NSArray<NSString*>* arguments;
@property(nullable, retain) id standardInput;
@property(nullable, retain) id standardOutput;
@property(nullable, retain) id standardError;
@property(nullable, copy) void (^terminationHandler)(NSTask* task);
@property(nullable, copy) NSDictionary<NSString*, NSString*>* environment;
@property(readonly) int terminationStatus;
@property(readonly) NSTaskTerminationReason terminationReason;
- (void)terminate;
- (BOOL)launchAndReturnError:(NSError* __autoreleasing _Nullable* _Nullable)error;
@end

typedef NS_OPTIONS(NSUInteger, NSXPCConnectionOptions) {
  NSXPCConnectionPrivileged = 1 << 12,
};

@interface NSXPCInterface : NSObject
+ (NSXPCInterface*)interfaceWithProtocol:(Protocol*)protocol;
@end

@protocol NSXPCProxyCreating
- (id)remoteObjectProxyWithErrorHandler:(void (^)(NSError* error))handler;
@end

@interface NSXPCConnection : NSObject <NSXPCProxyCreating>
- (instancetype)initWithMachServiceName:(NSString*)name options:(NSXPCConnectionOptions)options;
@property(nullable, retain) NSXPCInterface* exportedInterface;
@property(nullable, retain) id exportedObject;
@property(nullable, retain) NSXPCInterface* remoteObjectInterface;
@property(readonly) uid_t effectiveUserIdentifier;
@property(nullable, copy) void (^interruptionHandler)(void);
@property(nullable, copy) void (^invalidationHandler)(void);
- (void)resume;
- (void)invalidate;
@end

@class NSXPCListener;

@protocol NSXPCListenerDelegate <NSObject>
@optional
- (BOOL)listener:(NSXPCListener*)listener shouldAcceptNewConnection:(NSXPCConnection*)connection;
@end

@interface NSXPCListener : NSObject
- (instancetype)initWithMachServiceName:(NSString*)name;
@property(nullable, weak) id<NSXPCListenerDelegate> delegate;
- (void)setConnectionCodeSigningRequirement:(NSString*)requirement;
- (void)resume;
- (void)suspend;
@end

NS_ASSUME_NONNULL_END
