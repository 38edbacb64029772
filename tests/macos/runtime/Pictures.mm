#include "tests/macos/runtime/Pictures.h"

#include "tests/macos/runtime/Foundation.h"
#include "tests/macos/runtime/State.h"

#include <cstdio>

namespace vorli::macfake {

static State<Pictures> picturesState;

Pictures& pictures() {
  return *picturesState;
}

namespace {

template <typename... Arguments>
void note(const char* format, Arguments... arguments) {
  char line[160];
  std::snprintf(line, sizeof line, format, arguments...);
  pictures().drawn.emplace_back(line);
}

}  // namespace
}  // namespace vorli::macfake

using vorli::macfake::note;
using vorli::macfake::pictures;

@implementation NSImage

+ (instancetype)imageWithSize:(NSSize)size flipped:(BOOL)isFlipped drawingHandler:(BOOL (^)(NSRect))handler {
  NSImage* const image = [[self alloc] init];
  image.size = size;
  image.isFlipped = isFlipped;
  image.drawingHandler = handler;
  return image;
}

// The image is used as its own list of pixels.
- (nullable CGImageRef)CGImageForProposedRect:(nullable NSRect*)area
                                      context:(nullable NSGraphicsContext*)context
                                        hints:(nullable NSDictionary*)hints {
  if (!pictures().canRender) return nullptr;
  self.size = area->size;
  return (__bridge CGImageRef)self;
}
@end

@implementation NSImageRep
@end

@implementation NSBitmapImageRep {
  NSSize _size;
}

- (instancetype)initWithCGImage:(CGImageRef)image {
  self = [super init];
  _size = ((__bridge NSImage*)image).size;
  return self;
}

- (nullable NSData*)representationUsingType:(NSBitmapImageFileType)type properties:(NSDictionary*)properties {
  if (!pictures().canEncode) return nil;
  char text[64];
  std::snprintf(text, sizeof text, "type %d, %g x %g", static_cast<int>(type), _size.width, _size.height);
  return [NSData dataWithText:text];
}
@end

@interface NSColor ()
@property CGFloat red;
@property CGFloat green;
@property CGFloat blue;
@property CGFloat alpha;
@end

@implementation NSColor

+ (NSColor*)clearColor {
  return [self colorWithSRGBRed:0.0 green:0.0 blue:0.0 alpha:0.0];
}
+ (NSColor*)colorWithSRGBRed:(CGFloat)red green:(CGFloat)green blue:(CGFloat)blue alpha:(CGFloat)alpha {
  NSColor* const colour = [[self alloc] init];
  colour.red = red;
  colour.green = green;
  colour.blue = blue;
  colour.alpha = alpha;
  return colour;
}
- (NSColor*)colorWithAlphaComponent:(CGFloat)alpha {
  return [NSColor colorWithSRGBRed:self.red green:self.green blue:self.blue alpha:alpha];
}
- (void)setStroke {
  note("colour %g %g %g %g", self.red, self.green, self.blue, self.alpha);
}
@end

@implementation NSGradient {
  NSColor* _start;
  NSColor* _end;
}

- (nullable instancetype)initWithStartingColor:(NSColor*)start endingColor:(NSColor*)end {
  self = [super init];
  _start = start;
  _end = end;
  return self;
}
- (void)drawInRect:(NSRect)area angle:(CGFloat)degrees {
  note("gradient %g to %g in %g %g %g %g at %g", _start.alpha, _end.alpha, area.origin.x, area.origin.y,
       area.size.width, area.size.height, degrees);
}
@end

@implementation NSBezierPath

+ (NSBezierPath*)bezierPath {
  return [[self alloc] init];
}
- (void)moveToPoint:(NSPoint)point {
  note("from %g %g", point.x, point.y);
}
- (void)lineToPoint:(NSPoint)point {
  note("to %g %g", point.x, point.y);
}
- (void)stroke {
  note("stroke %g cap %d", self.lineWidth, static_cast<int>(self.lineCapStyle));
}
@end
