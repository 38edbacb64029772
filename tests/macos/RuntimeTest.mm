#include "tests/macos/runtime/Dispatch.h"
#include "tests/macos/runtime/Foundation.h"
#include "tests/macos/runtime/Objects.h"

#include <gtest/gtest.h>
#include <string>

// The runtime below all other tests: what it must count, forget and refuse.

@interface VorliPlanted : NSObject
@property(nonatomic, copy) void (^block)(void);
@property(nonatomic, strong) VorliPlanted* partner;
@property(nonatomic, weak) VorliPlanted* acquaintance;
@property(nonatomic) std::string text;
- (NSRect)frameBeside:(double)x;
- (int)number;
@end

@implementation VorliPlanted
- (NSRect)frameBeside:(double)x {
  return {{x, 2.0}, {3.0, 4.0}};
}
- (int)number {
  return 1;
}
@end

@interface VorliPlantedChild : VorliPlanted
@end

@implementation VorliPlantedChild {
  std::string _longText;
}
- (instancetype)init {
  if ((self = [super init])) _longText = "a text that does not fit into the string itself";
  return self;
}
- (int)number {
  return [super number] + static_cast<int>(_longText.size());
}
@end

@interface VorliPlanted (Addition)
- (int)doubled;
@end

@implementation VorliPlanted (Addition)
- (int)doubled {
  return 2 * self.number;
}
@end

namespace vorli::objc {
namespace {

long livingOf(const char* type) {
  const auto all = living();
  const auto found = all.find(type);
  return found == all.end() ? 0 : found->second;
}

TEST(RuntimeTest, anObjectLivesAsLongAsItsLastOwner) {
  VorliPlanted* first = [[VorliPlanted alloc] init];
  VorliPlanted* second = first;
  EXPECT_EQ(second.number, 1);
  first = nil;
  EXPECT_EQ(livingOf("VorliPlanted"), 1);
  second = nil;
  EXPECT_EQ(livingOf("VorliPlanted"), 0);
}

TEST(RuntimeTest, objectsThatOwnEachOtherStayAlive) {
  __weak VorliPlanted* weak = nil;
  @autoreleasepool {
    VorliPlanted* const one = [[VorliPlanted alloc] init];
    one.partner = [[VorliPlanted alloc] init];
    one.partner.partner = one;
    weak = one;
  }
  EXPECT_EQ(livingOf("VorliPlanted"), 2);
  @autoreleasepool {
    weak.partner.partner = nil;
  }
  EXPECT_EQ(livingOf("VorliPlanted"), 0);
}

TEST(RuntimeTest, aBlockThatHoldsItsOwnerKeepsItAlive) {
  VorliPlanted* kept = nil;
  @autoreleasepool {
    VorliPlanted* const owner = [[VorliPlanted alloc] init];
    VorliPlanted* const held = owner;
    owner.block = ^{
      held.text = "held";
    };
    kept = owner;
  }
  __weak VorliPlanted* const weak = kept;
  kept = nil;
  EXPECT_EQ(livingOf("VorliPlanted"), 1);
  EXPECT_EQ(livingOf("block"), 1);
  @autoreleasepool {
    weak.block = nil;
  }
  EXPECT_EQ(livingOf("VorliPlanted"), 0);
  EXPECT_EQ(livingOf("block"), 0);
}

TEST(RuntimeDeathTest, anExcessReleaseStopsTheProgram) {
  EXPECT_DEATH(
      {
        const CFTypeRef object = (__bridge_retained CFTypeRef)[[VorliPlanted alloc] init];
        CFRelease(object);
        CFRelease(object);
      },
      "AddressSanitizer: heap-use-after-free");
}

TEST(RuntimeDeathTest, anUnknownMessageStopsTheProgram) {
  const id object = [[VorliPlanted alloc] init];
  EXPECT_DEATH([static_cast<NSString*>(object) UTF8String], "VorliPlanted: UTF8String");
}

TEST(RuntimeTest, aWeakReferenceIsNilOnceItsObjectIsGone) {
  VorliPlanted* object = [[VorliPlanted alloc] init];
  __weak VorliPlanted* weak = object;
  @autoreleasepool {
    EXPECT_EQ(weak, object);
  }
  object = nil;
  EXPECT_EQ(weak, nil);
}

TEST(RuntimeTest, aVariableOfABlockIsSharedWithItsFunction) {
  __block int count = 0;
  void (^const block)(void) = ^{
    ++count;
  };
  block();
  block();
  EXPECT_EQ(count, 2);
}

TEST(RuntimeTest, messagesReachTheSuperclassAndAdditions) {
  VorliPlantedChild* const child = [[VorliPlantedChild alloc] init];
  EXPECT_EQ(child.number, 48);
  EXPECT_EQ([child doubled], 96);
  EXPECT_TRUE([child isKindOfClass:VorliPlanted.class]);
  EXPECT_FALSE([child isKindOfClass:NSString.class]);
  EXPECT_TRUE([child respondsToSelector:@selector(doubled)]);
  EXPECT_FALSE([child respondsToSelector:@selector(UTF8String)]);
}

TEST(RuntimeTest, resultsOfEveryKindArriveAndNilReturnsZero) {
  VorliPlanted* object = [[VorliPlanted alloc] init];
  const NSRect frame = [object frameBeside:1.5];
  EXPECT_EQ(frame.origin.x, 1.5);
  EXPECT_EQ(frame.size.height, 4.0);
  object = nil;
  EXPECT_EQ([object frameBeside:1.5].size.height, 0.0);
  EXPECT_EQ(object.number, 0);
}

TEST(RuntimeTest, stringLiteralsAreOrdinaryStrings) {
  EXPECT_TRUE([@"same" isEqual:macfake::string("same")]);
  EXPECT_STREQ([@"one " stringByAppendingString:@"two"].UTF8String, "one two");
  EXPECT_EQ(macfake::string("\xFF"), nil);
}

TEST(RuntimeTest, collectionsKeepWhatTheyHold) {
  NSDictionary* const dictionary = @{@"list" : @[ @1, @YES, @2.5 ], @"none" : @[], @"nothing" : @{}};
  int sum = 0;
  for (NSNumber* each in static_cast<NSArray*>(dictionary[@"list"])) sum += each.intValue;
  EXPECT_EQ(sum, 4);
  EXPECT_EQ(dictionary.count, 3U);
  EXPECT_EQ(static_cast<NSArray*>(dictionary[@"none"]).count, 0U);
  EXPECT_EQ(dictionary[@"absent"], nil);
}

TEST(RuntimeTest, theMainQueueRunsItsBlocksInTheirOrder) {
  __block std::string order;
  dispatch_async(dispatch_get_main_queue(), ^{
    order += "a";
    dispatch_async(dispatch_get_main_queue(), ^{
      order += "c";
    });
  });
  dispatch_async(dispatch_get_main_queue(), ^{
    order += "b";
  });
  EXPECT_EQ(order, "");
  macfake::runMainQueue();
  EXPECT_EQ(order, "abc");
}

}  // namespace
}  // namespace vorli::objc
