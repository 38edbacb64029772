#include "tests/macos/runtime/Classes.h"
#include "tests/macos/runtime/Objects.h"
#include "tests/macos/runtime/Ownership.h"

#import <objc/NSObject.h>

// Compiled without automatic counting, which it is the foundation of.

@implementation NSObject

+ (instancetype)alloc {
  return vorli::objc::allocate(self);
}
+ (instancetype)new {
  return [[self alloc] init];
}
+ (Class)class {
  return self;
}
- (Class)class {
  return vorli::objc::classOf(self);
}
- (instancetype)init {
  return self;
}
- (void)dealloc {
  vorli::objc::destroy(self);
}
- (BOOL)isKindOfClass:(Class)other {
  return vorli::objc::isKind(vorli::objc::classOf(self), other);
}
- (BOOL)respondsToSelector:(SEL)selector {
  return vorli::objc::codeFor(vorli::objc::classOf(self), selector) != nullptr;
}
- (BOOL)conformsToProtocol:(Protocol*)protocol {
  return vorli::objc::conforms(vorli::objc::classOf(self),
                               *reinterpret_cast<const vorli::objc::ProtocolRecord*>(protocol));
}
- (BOOL)isEqual:(id)other {
  return self == other;
}
- (NSUInteger)hash {
  return reinterpret_cast<NSUInteger>(self);
}
- (id)copy {
  return objc_retain(self);
}
@end
