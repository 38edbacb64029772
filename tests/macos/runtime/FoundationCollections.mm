#include "tests/macos/runtime/Classes.h"
#include "tests/macos/runtime/Foundation.h"
#include "tests/macos/runtime/Objects.h"

#include <algorithm>
#include <vector>

using Objects = std::vector<id>;

namespace {

// The system raises an exception, which ends the program.
id present(id object) {
  if (!object) vorli::objc::breakOff("put into a collection", "nil");
  return object;
}

NSUInteger handOut(const Objects& objects, NSFastEnumerationState* state) {
  static unsigned long neverChanged = 0;
  if (state->state != 0) return 0;
  state->state = 1;
  state->mutationsPtr = &neverChanged;
  state->itemsPtr = (id __unsafe_unretained*)(void*)objects.data();
  return objects.size();
}

Objects::const_iterator find(const Objects& objects, id wanted) {
  return std::find_if(objects.begin(), objects.end(), [wanted](id each) { return [each isEqual:wanted]; });
}

}  // namespace

@implementation NSArray {
 @protected
  Objects _objects;
}

+ (instancetype)arrayWithObjects:(const id __unsafe_unretained*)objects count:(NSUInteger)count {
  return [[self alloc] initWithObjects:objects count:count];
}
- (instancetype)initWithObjects:(const id __unsafe_unretained*)objects count:(NSUInteger)count {
  self = [super init];
  for (NSUInteger index = 0; index < count; ++index) _objects.push_back(present(objects[index]));
  return self;
}
- (id)objectAtIndexedSubscript:(NSUInteger)index {
  if (index >= _objects.size()) vorli::objc::breakOff("index beyond the end", "NSArray");
  return _objects[index];
}
- (NSUInteger)count {
  return _objects.size();
}
- (id)firstObject {
  return _objects.empty() ? nil : _objects.front();
}
- (id)copy {
  NSArray* const copy = [[NSArray alloc] init];
  copy->_objects = _objects;
  return copy;
}
- (BOOL)isEqual:(id)other {
  if (![other isKindOfClass:NSArray.class]) return NO;
  const Objects& others = static_cast<NSArray*>(other)->_objects;
  return std::equal(_objects.begin(), _objects.end(), others.begin(), others.end(),
                    [](id mine, id theirs) { return [mine isEqual:theirs]; });
}
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id __unsafe_unretained[])buffer
                                    count:(NSUInteger)count {
  return handOut(_objects, state);
}
@end

@implementation NSMutableArray
- (void)addObject:(id)object {
  _objects.push_back(present(object));
}
@end

@implementation NSDictionary {
 @protected
  Objects _keys;
  Objects _values;
}

+ (instancetype)dictionaryWithObjects:(const id __unsafe_unretained*)objects
                              forKeys:(const id<NSCopying> __unsafe_unretained*)keys
                                count:(NSUInteger)count {
  NSDictionary* const dictionary = [[self alloc] init];
  for (NSUInteger index = 0; index < count; ++index) {
    dictionary->_keys.push_back(present(keys[index]));
    dictionary->_values.push_back(present(objects[index]));
  }
  return dictionary;
}
- (id)objectForKeyedSubscript:(id)key {
  const auto found = find(_keys, key);
  return found == _keys.end() ? nil : _values[static_cast<std::size_t>(found - _keys.begin())];
}
- (NSUInteger)count {
  return _keys.size();
}
- (id)copy {
  NSDictionary* const copy = [[NSDictionary alloc] init];
  copy->_keys = _keys;
  copy->_values = _values;
  return copy;
}
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id __unsafe_unretained[])buffer
                                    count:(NSUInteger)count {
  return handOut(_keys, state);
}
@end

@implementation NSMutableDictionary

+ (instancetype)dictionaryWithDictionary:(NSDictionary*)other {
  NSMutableDictionary* const dictionary = [[self alloc] init];
  for (id key in other) dictionary[key] = other[key];
  return dictionary;
}
- (void)setObject:(id)object forKeyedSubscript:(id)key {
  const auto found = find(_keys, present(key));
  const auto index = found - _keys.begin();
  if (found != _keys.end()) {
    _keys.erase(found);
    _values.erase(_values.begin() + index);
  }
  if (!object) return;
  _keys.push_back(key);
  _values.push_back(object);
}
@end

@implementation NSSet {
  Objects _members;
}

+ (instancetype)setWithArray:(NSArray*)array {
  NSSet* const set = [[self alloc] init];
  for (id each in array)
    if (find(set->_members, each) == set->_members.end()) set->_members.push_back(each);
  return set;
}
- (NSUInteger)count {
  return _members.size();
}
- (NSArray*)allObjects {
  NSMutableArray* const objects = [[NSMutableArray alloc] init];
  for (id each : _members) [objects addObject:each];
  return objects;
}
- (BOOL)containsObject:(id)object {
  return find(_members, object) != _members.end();
}
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id __unsafe_unretained[])buffer
                                    count:(NSUInteger)count {
  return handOut(_members, state);
}
@end

// The compiler uses these for an empty literal.
extern "C" {
id __NSArray0__;
id __NSDictionary0__;
}

namespace {

[[gnu::constructor(102)]] void makeEmptyCollections() {
  __NSArray0__ = vorli::macfake::shared([[NSArray alloc] init]);
  __NSDictionary0__ = vorli::macfake::shared([[NSDictionary alloc] init]);
}

}  // namespace
