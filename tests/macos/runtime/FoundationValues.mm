#include "base/UTF8.h"
#include "formats/BookmarkData.h"
#include "tests/macos/runtime/Classes.h"
#include "tests/macos/runtime/Foundation.h"
#include "tests/macos/runtime/Machine.h"
#include "tests/macos/runtime/Objects.h"

#include <QString>
#include <cstring>
#include <fstream>
#include <iterator>

// The compiler's own record of a text in the program.
struct ConstantText {
  void* isa;
  std::uint64_t flags;
  const char* bytes;
  std::uint64_t length;
};

@interface VorliConstantText : NSString
@end

@implementation VorliConstantText
- (const char*)UTF8String {
  constexpr std::uint64_t isWide = 0x10;
  const auto& text = *static_cast<const ConstantText*>((__bridge const void*)self);
  if (text.flags & isWide) vorli::objc::breakOff("not ASCII", "text of the program");
  return text.bytes;
}
@end

// The compiler names the class of its texts by this.
__asm__(".globl __CFConstantStringClassReference\n"
        ".set __CFConstantStringClassReference, \"OBJC_CLASS_$_VorliConstantText\"\n");

@implementation NSString {
  std::string _bytes;
}

- (nullable instancetype)initWithBytes:(const void*)bytes
                                length:(NSUInteger)length
                              encoding:(NSStringEncoding)encoding {
  self = [super init];
  const std::string_view text(static_cast<const char*>(bytes), length);
  if (encoding != NSUTF8StringEncoding || !vorli::isUTF8(text)) return nil;
  _bytes = text;
  return self;
}

- (const char*)UTF8String {
  return _bytes.c_str();
}

- (NSUInteger)length {
  return static_cast<NSUInteger>(QString::fromUtf8(self.UTF8String).size());
}

- (unichar)characterAtIndex:(NSUInteger)index {
  return QString::fromUtf8(self.UTF8String).at(static_cast<qsizetype>(index)).unicode();
}

- (NSString*)stringByAppendingString:(NSString*)text {
  return vorli::macfake::string(std::string(self.UTF8String) + text.UTF8String);
}

- (NSString*)stringByAppendingPathComponent:(NSString*)name {
  return vorli::macfake::string(std::string(self.UTF8String) + "/" + name.UTF8String);
}

- (BOOL)isEqual:(id)other {
  return [other isKindOfClass:NSString.class] &&
         std::strcmp(self.UTF8String, static_cast<NSString*>(other).UTF8String) == 0;
}
@end

namespace vorli::macfake {

NSString* string(std::string_view bytes) {
  return [[NSString alloc] initWithBytes:bytes.data() length:bytes.size() encoding:NSUTF8StringEncoding];
}

id shared(id object) {
  objc::keepForEver(object);
  return object;
}

}  // namespace vorli::macfake

@implementation NSValue
@end

namespace {

enum class NumberKind { boolean, integer, real };

}  // namespace

@interface NSNumber ()
@property(readonly) NumberKind kind;
@end

@implementation NSNumber {
  NumberKind _kind;
  long long _integer;
  double _real;
}

- (instancetype)initWithKind:(NumberKind)kind integer:(long long)integer real:(double)real {
  self = [super init];
  _kind = kind;
  _integer = integer;
  _real = real;
  return self;
}

+ (NSNumber*)numberWithBool:(BOOL)value {
  return [[NSNumber alloc] initWithKind:NumberKind::boolean integer:value ? 1 : 0 real:value ? 1.0 : 0.0];
}
+ (NSNumber*)numberWithInt:(int)value {
  return [self numberWithLongLong:value];
}
+ (NSNumber*)numberWithInteger:(NSInteger)value {
  return [self numberWithLongLong:value];
}
+ (NSNumber*)numberWithLongLong:(long long)value {
  return [[NSNumber alloc] initWithKind:NumberKind::integer integer:value real:static_cast<double>(value)];
}
+ (NSNumber*)numberWithDouble:(double)value {
  return [[NSNumber alloc] initWithKind:NumberKind::real integer:static_cast<long long>(value) real:value];
}

- (NumberKind)kind {
  return _kind;
}
- (BOOL)boolValue {
  return _real != 0.0;
}
- (int)intValue {
  return static_cast<int>(_integer);
}
- (long long)longLongValue {
  return _integer;
}
- (double)doubleValue {
  return _real;
}
- (BOOL)isEqual:(id)other {
  return [other isKindOfClass:NSNumber.class] && static_cast<NSNumber*>(other).doubleValue == _real;
}
@end

@implementation NSDate {
  double _seconds;
}

+ (instancetype)dateWithTimeIntervalSince1970:(NSTimeInterval)seconds {
  NSDate* const date = [[self alloc] init];
  date->_seconds = seconds;
  return date;
}
- (NSTimeInterval)timeIntervalSince1970 {
  return _seconds;
}
@end

@implementation NSData {
  std::string _content;
}

+ (instancetype)dataWithText:(std::string)text {
  NSData* const data = [[self alloc] init];
  data->_content = std::move(text);
  return data;
}
// Files are those of this system.
+ (nullable instancetype)dataWithContentsOfFile:(NSString*)path {
  std::ifstream file(path.UTF8String, std::ios::binary);
  return file ? [self dataWithText:std::string(std::istreambuf_iterator<char>(file), {})] : nil;
}
- (NSUInteger)length {
  return _content.size();
}
- (const void*)bytes {
  return _content.data();
}
@end

@implementation NSError {
  NSString* _text;
}
@synthesize code = _code;

+ (instancetype)errorWithCode:(NSInteger)code text:(NSString*)text {
  NSError* const error = [[self alloc] init];
  error->_code = code;
  error->_text = text;
  return error;
}
- (NSString*)localizedDescription {
  return _text;
}
@end

@implementation NSURL {
  NSString* _text;
}

+ (nullable instancetype)URLWithString:(NSString*)text {
  if (*text.UTF8String == '\0') return nil;
  NSURL* const url = [[self alloc] init];
  url->_text = text;
  return url;
}
+ (NSURL*)fileURLWithPath:(NSString*)path {
  return [self URLWithString:[@"file://" stringByAppendingString:path]];
}
// Reads the bookmark with the program's own reader, and finds only the files that a test has named. A
// bookmark is not resolved if that could mount a volume or ask the user.
+ (nullable instancetype)URLByResolvingBookmarkData:(NSData*)data
                                            options:(NSURLBookmarkResolutionOptions)options
                                      relativeToURL:(nullable NSURL*)base
                                bookmarkDataIsStale:(BOOL* _Nullable)isStale
                                              error:(NSError* __autoreleasing _Nullable* _Nullable)error {
  constexpr NSUInteger quietly = 768;
  const auto target = vorli::formats::readBookmarkData({static_cast<const char*>(data.bytes), data.length});
  if (options == quietly && target && vorli::macfake::machine().displayNames.contains(target->path))
    return [self fileURLWithPath:vorli::macfake::string(target->path)];
  if (error) *error = [NSError errorWithCode:4 text:@"The file doesn't exist."];
  return nil;
}
- (NSString*)absoluteString {
  return _text;
}
- (NSString*)path {
  constexpr std::string_view scheme = "file://";
  const std::string_view text = _text.UTF8String;
  return text.starts_with(scheme) ? vorli::macfake::string(text.substr(scheme.size())) : nil;
}
- (BOOL)isEqual:(id)other {
  return [other isKindOfClass:NSURL.class] && [_text isEqual:static_cast<NSURL*>(other).absoluteString];
}
@end

@implementation NSUUID

+ (instancetype)UUID {
  return [[self alloc] init];
}
- (NSString*)UUIDString {
  return @"5B7E0F2A-0000-4000-8000-000000000001";
}
@end

// Core Foundation's view of the same objects.

namespace {

constexpr CFTypeID booleanTypeID = 21;
constexpr CFTypeID otherTypeID = 1;

NSNumber* asNumber(CFTypeRef object) {
  const id number = (__bridge id)object;
  return [number isKindOfClass:NSNumber.class] ? static_cast<NSNumber*>(number) : nil;
}

}  // namespace

void CFRelease(CFTypeRef object) {
  const id owned = (__bridge_transfer id)object;
  static_cast<void>(owned);
}

CFTypeID CFGetTypeID(CFTypeRef object) {
  NSNumber* const number = asNumber(object);
  return number && number.kind == NumberKind::boolean ? booleanTypeID : otherTypeID;
}

CFTypeID CFBooleanGetTypeID() {
  return booleanTypeID;
}

Boolean CFNumberIsFloatType(CFNumberRef number) {
  return asNumber(number).kind == NumberKind::real;
}
