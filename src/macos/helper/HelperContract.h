#pragma once

#import <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

/// The daemon's interface on the connection. The order of the methods, their names and the types of their
/// arguments are the wire format.
@protocol HelperProtocol
- (void)pingWithReply:(void (^)(NSString* reply))reply;
- (void)versionWithReply:(void (^)(NSString* version))reply;
- (void)purgeMemoryWithReply:(void (^)(int exitCode, NSString* output))reply;
- (void)flushDNSWithReply:(void (^)(int exitCode, NSString* output))reply;
- (void)killPID:(int)pid signal:(int)signal reply:(void (^)(int exitCode, NSString* output))reply;
- (void)dumpBTMWithReply:(void (^)(int exitCode, NSString* output))reply;
- (void)moveLaunchAgentPlistFrom:(NSString*)source
                              to:(NSString*)destination
                           reply:(void (^)(int exitCode, NSString* output))reply;
@end

NS_ASSUME_NONNULL_END
