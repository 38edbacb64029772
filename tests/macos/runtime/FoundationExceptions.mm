#include "tests/macos/runtime/Foundation.h"
#include "tests/macos/runtime/State.h"

namespace vorli::macfake {

namespace {

struct ExceptionHandler {
  NSUncaughtExceptionHandler* set = nullptr;
};

State<ExceptionHandler> exceptionHandlerState;

}  // namespace

NSUncaughtExceptionHandler* uncaughtExceptionHandler() {
  return exceptionHandlerState->set;
}

}  // namespace vorli::macfake

void NSSetUncaughtExceptionHandler(NSUncaughtExceptionHandler* handler) {
  vorli::macfake::exceptionHandlerState->set = handler;
}

@implementation NSException
@synthesize name = _name;
@synthesize reason = _reason;
@synthesize callStackReturnAddresses = _calls;

+ (instancetype)exceptionWithName:(NSString*)name reason:(NSString*)reason calls:(NSArray<NSNumber*>*)calls {
  NSException* const exception = [[self alloc] init];
  exception->_name = name;
  exception->_reason = reason;
  exception->_calls = calls;
  return exception;
}
@end
