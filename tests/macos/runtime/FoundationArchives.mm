#include "formats/KeyedArchive.h"
#include "formats/PropertyList.h"
#include "tests/macos/runtime/Foundation.h"
#include "tests/macos/runtime/Machine.h"

#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

// Archives are read by the program's own portable reader. What is checked is how the code under test uses the
// system's.

using Archived = vorli::formats::KeyedArchive::Object;

NSString* const NSKeyedArchiveRootObjectKey = @"root";

namespace {

constexpr std::size_t largestArchive = std::size_t{1} << 20;

}  // namespace

@implementation NSCoder
- (nullable id)decodeObjectForKey:(NSString*)key {
  return nil;
}
- (NSInteger)decodeIntegerForKey:(NSString*)key {
  return 0;
}
@end

@implementation NSKeyedUnarchiver {
  std::string _bytes;
  std::map<std::string, Class> _classes;  // that the code under test has set, by the name in the archive
  std::unique_ptr<vorli::formats::KeyedArchive> _archive;
  std::vector<Archived> _open;  // the objects that are being decoded, the innermost last
}
@synthesize requiresSecureCoding = _requiresSecureCoding;

- (nullable instancetype)initForReadingFromData:(NSData*)data
                                          error:(NSError* __autoreleasing _Nullable* _Nullable)error {
  self = [super init];
  _bytes.assign(static_cast<const char*>(data.bytes), data.length);
  _requiresSecureCoding = YES;
  auto list = vorli::formats::readPropertyList(_bytes, largestArchive);
  if (list && vorli::formats::KeyedArchive::open(std::move(*list), {})) return self;
  if (error) *error = [NSError errorWithCode:4864 text:@"not an archive"];
  return nil;
}
- (void)setClass:(nullable Class)type forClassName:(NSString*)name {
  _classes[name.UTF8String] = type;
}
- (void)finishDecoding {
  _archive.reset();
}
- (void)openArchive {
  std::vector<std::string> names;
  for (const auto& [name, type] : _classes) names.push_back(name);
  auto list = vorli::formats::readPropertyList(_bytes, largestArchive);
  auto archive = vorli::formats::KeyedArchive::open(std::move(*list), names);
  _archive = std::make_unique<vorli::formats::KeyedArchive>(std::move(*archive));
}
- (nullable id)decodeObjectForKey:(NSString*)key {
  if (!_open.empty()) return [self decoded:_open.back().object(key.UTF8String)];
  if (![key isEqual:NSKeyedArchiveRootObjectKey]) return nil;
  [self openArchive];
  return [self decoded:_archive->root()];
}
- (NSInteger)decodeIntegerForKey:(NSString*)key {
  return _open.empty() ? 0 : _open.back().integer(key.UTF8String);
}

- (nullable id)decoded:(std::optional<Archived>)object {
  if (!object) return nil;
  if (const auto text = object->text()) return vorli::macfake::string(*text);
  if (const auto data = object->data()) return [NSData dataWithText:std::string(*data)];
  if (object->uuid()) return [NSUUID UUID];
  if (const auto elements = object->setElements()) return [NSSet setWithArray:[self decodedAll:*elements]];
  if (const auto elements = object->arrayElements()) return [self decodedAll:*elements];
  const auto type = _classes.find(std::string(object->className()));
  return type == _classes.end() ? [self decodedDictionary:*object] : [self decoded:*object as:type->second];
}
- (NSArray*)decodedAll:(const std::vector<Archived>&)elements {
  NSMutableArray* const objects = [[NSMutableArray alloc] init];
  for (const auto& element : elements) {
    const id object = [self decoded:element];
    if (object) [objects addObject:object];
  }
  return objects;
}
// Knows the keys that tests use: the portable reader looks entries up and does not list them.
- (nullable id)decodedDictionary:(const Archived&)object {
  if (object.className() != "NSDictionary") return nil;
  NSMutableDictionary* const dictionary = [[NSMutableDictionary alloc] init];
  dictionary[@"backgroundItems"] = [self decoded:object.entry("backgroundItems")];
  return dictionary;
}
// A class that is not made for secure coding is refused unless the code under test has switched it off. The
// exception is one of C++, which every handler of all exceptions sees in the same way.
- (nullable id)decoded:(const Archived&)object as:(Class)type {
  if (_requiresSecureCoding) return nil;
  if (vorli::macfake::machine().decodingThrows) throw std::runtime_error("damaged");
  _open.push_back(object);
  const id made = [static_cast<id<VorliCoding>>([type alloc]) initWithCoder:self];
  _open.pop_back();
  return made;
}
@end
