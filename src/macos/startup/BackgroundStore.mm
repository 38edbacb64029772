#include "macos/startup/BackgroundStore.h"

#include "macos/Text.h"

#include <optional>
#include <utility>

// Stand in for the classes of the system that the store was written with. A field that is missing or of
// another type is nil; nothing is ever written.

@interface BTMBookmark : NSObject <NSCoding>
@property(readonly, strong) NSData* data;
@end

@interface BTMBackgroundItem : NSObject <NSCoding>
@property(readonly, strong) BTMBookmark* bookmark;
@property(readonly) NSInteger type;
@end

@interface BTMBackgroundItemContainer : NSObject <NSCoding>
@property(readonly, strong) NSUUID* identifier;
@property(readonly, strong) BTMBookmark* bookmark;
@property(readonly, strong) NSSet* internalItems;
@property(readonly) NSInteger userElection;
@end

@interface BTMBackgroundItems : NSObject <NSCoding>
@property(readonly, strong) NSArray* allContainers;
@end

namespace {

id decodedField(NSCoder* coder, NSString* key, Class type) {
  const id value = [coder decodeObjectForKey:key];
  return [value isKindOfClass:type] ? value : nil;
}

}  // namespace

@implementation BTMBookmark
- (instancetype)initWithCoder:(NSCoder*)coder {
  if ((self = [super init])) _data = decodedField(coder, @"data", NSData.class);
  return self;
}
- (void)encodeWithCoder:(NSCoder*)coder {
}
@end

@implementation BTMBackgroundItem
- (instancetype)initWithCoder:(NSCoder*)coder {
  if ((self = [super init])) {
    _bookmark = decodedField(coder, @"bookmark", BTMBookmark.class);
    _type = [coder decodeIntegerForKey:@"type"];
  }
  return self;
}
- (void)encodeWithCoder:(NSCoder*)coder {
}
@end

@implementation BTMBackgroundItemContainer
- (instancetype)initWithCoder:(NSCoder*)coder {
  if ((self = [super init])) {
    _identifier = decodedField(coder, @"identifier", NSUUID.class);
    _bookmark = decodedField(coder, @"bookmark", BTMBookmark.class);
    _internalItems = decodedField(coder, @"internalItems", NSSet.class);
    _userElection = [coder decodeIntegerForKey:@"userElection"];
  }
  return self;
}
- (void)encodeWithCoder:(NSCoder*)coder {
}
@end

@implementation BTMBackgroundItems
- (instancetype)initWithCoder:(NSCoder*)coder {
  if ((self = [super init])) {
    NSSet* const set = decodedField(coder, @"allContainers", NSSet.class);
    _allContainers = set ? set.allObjects : decodedField(coder, @"allContainers", NSArray.class);
  }
  return self;
}
- (void)encodeWithCoder:(NSCoder*)coder {
}
@end

namespace vorli::machost {

namespace {

NSKeyedUnarchiver* unarchiverOf(NSData* bytes) {
  NSKeyedUnarchiver* const unarchiver = [[NSKeyedUnarchiver alloc] initForReadingFromData:bytes error:nil];
  unarchiver.requiresSecureCoding = NO;  // the system's classes were not written for it
  [unarchiver setClass:BTMBackgroundItems.class forClassName:@"BackgroundItems"];
  [unarchiver setClass:BTMBackgroundItemContainer.class forClassName:@"BackgroundItemContainer"];
  [unarchiver setClass:BTMBackgroundItem.class forClassName:@"BackgroundItem"];
  [unarchiver setClass:BTMBookmark.class forClassName:@"Bookmark"];
  return unarchiver;
}

// The system's own classes may throw when their part of the archive is damaged.
id rootIn(NSKeyedUnarchiver* unarchiver) {
  try {
    return [unarchiver decodeObjectForKey:NSKeyedArchiveRootObjectKey];
  } catch (...) {
    return nil;
  }
}

NSArray* containersIn(NSData* bytes) {
  NSKeyedUnarchiver* const unarchiver = unarchiverOf(bytes);
  const id root = rootIn(unarchiver);
  [unarchiver finishDecoding];
  if (![root isKindOfClass:NSDictionary.class]) return nil;
  const id items = static_cast<NSDictionary*>(root)[@"backgroundItems"];
  if (![items isKindOfClass:BTMBackgroundItems.class]) return nil;
  return static_cast<BTMBackgroundItems*>(items).allContainers;
}

std::optional<std::string> resolvedPath(BTMBookmark* bookmark) {
  if (!bookmark.data) return std::nullopt;
  constexpr auto quietly = NSURLBookmarkResolutionWithoutUI | NSURLBookmarkResolutionWithoutMounting;
  NSURL* const url = [NSURL URLByResolvingBookmarkData:bookmark.data
                                               options:quietly
                                         relativeToURL:nil
                                   bookmarkDataIsStale:nil
                                                 error:nil];
  return textIn(url.path);
}

std::optional<ports::BackgroundContainer> containerOf(id element) {
  if (![element isKindOfClass:BTMBackgroundItemContainer.class]) return std::nullopt;
  BTMBackgroundItemContainer* const given = static_cast<BTMBackgroundItemContainer*>(element);
  ports::BackgroundContainer container;
  container.appURL = resolvedPath(given.bookmark);
  for (id item in given.internalItems) {
    if (![item isKindOfClass:BTMBackgroundItem.class]) continue;
    if (auto path = resolvedPath(static_cast<BTMBackgroundItem*>(item).bookmark))
      container.internalURLs.push_back(std::move(*path));
  }
  container.isEnabled = given.userElection == 0;
  if (!container.appURL && container.internalURLs.empty()) return std::nullopt;
  return container;
}

}  // namespace

std::vector<ports::BackgroundContainer> readBackgroundStore(const std::string& path) {
  std::vector<ports::BackgroundContainer> containers;
  @autoreleasepool {
    NSString* const file = stringOf(path);
    if (![NSFileManager.defaultManager isReadableFileAtPath:file]) return containers;
    NSData* const bytes = [NSData dataWithContentsOfFile:file];
    NSArray* const elements = bytes ? containersIn(bytes) : nil;
    for (id element in elements)
      if (auto container = containerOf(element)) containers.push_back(std::move(*container));
    return containers;
  }
}

}  // namespace vorli::machost
