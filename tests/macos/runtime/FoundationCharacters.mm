#include "tests/macos/runtime/Foundation.h"

#include <QChar>

@implementation NSCharacterSet
+ (NSCharacterSet*)alphanumericCharacterSet {
  return [[NSCharacterSet alloc] init];
}
- (BOOL)characterIsMember:(unichar)character {
  return QChar(character).isLetterOrNumber();
}
@end
