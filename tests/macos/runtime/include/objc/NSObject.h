#pragma once

#include <objc/objc.h>

@class NSString;
@class Protocol;

@protocol NSObject
- (Class)class;
- (BOOL)isKindOfClass:(Class)other;
- (BOOL)respondsToSelector:(SEL)selector;
- (BOOL)conformsToProtocol:(Protocol*)protocol;
- (BOOL)isEqual:(id)other;
- (NSUInteger)hash;
@end

__attribute__((objc_root_class))
@interface NSObject<NSObject> {
  Class isa;
}
+ (instancetype)alloc;
+ (instancetype)new;
+ (Class)class;
- (instancetype)init;
- (void)dealloc;
- (id)copy;
@end
