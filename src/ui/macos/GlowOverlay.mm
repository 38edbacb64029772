#include "ui/macos/GlowOverlay.h"

#include "macos/Observation.h"
#include "ui/macos/ScreenCoordinates.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

using vorli::Colour;

enum class Edge { top, bottom, left, right };

// Returns the direction from the edge towards the middle, in degrees.
CGFloat directionFrom(Edge edge) {
  switch (edge) {
    case Edge::top:
      return 270.0;
    case Edge::bottom:
      return 90.0;
    case Edge::left:
      return 0.0;
    case Edge::right:
      return 180.0;
  }
  return 0.0;
}

NSRect bandAt(Edge edge, const NSSize& screen, CGFloat depth) {
  const CGFloat high = std::min(depth, screen.height);
  const CGFloat wide = std::min(depth, screen.width);
  switch (edge) {
    case Edge::top:
      return {{0.0, screen.height - high}, {screen.width, high}};
    case Edge::bottom:
      return {{0.0, 0.0}, {screen.width, high}};
    case Edge::left:
      return {{0.0, 0.0}, {wide, screen.height}};
    case Edge::right:
      return {{screen.width - wide, 0.0}, {wide, screen.height}};
  }
  return {};
}

}  // namespace

/// One light. It is drawn once for each colour; its opacity is composed by the system.
@interface VorliGlowBand : NSView
- (instancetype)initWithEdge:(Edge)edge;
- (void)setColour:(const Colour&)colour;
@end

@implementation VorliGlowBand {
  Edge _edge;
  Colour _colour;
}

- (instancetype)initWithEdge:(Edge)edge {
  self = [super initWithFrame:NSRect{}];
  _edge = edge;
  self.wantsLayer = YES;
  return self;
}

- (void)setColour:(const Colour&)colour {
  if (colour == _colour) return;
  _colour = colour;
  self.needsDisplay = YES;
}

- (void)drawRect:(NSRect)area {
  NSColor* const light = [NSColor colorWithSRGBRed:_colour.red
                                             green:_colour.green
                                              blue:_colour.blue
                                             alpha:1.0];
  NSGradient* const gradient = [[NSGradient alloc] initWithStartingColor:light
                                                             endingColor:[light colorWithAlphaComponent:0.0]];
  [gradient drawInRect:self.bounds angle:directionFrom(_edge)];
}

@end

/// The content of the overlay's window.
@interface VorliGlowView : NSView
- (instancetype)initWithDepth:(CGFloat)depth;
- (void)placeIn:(NSSize)screen;
- (void)showColour:(const Colour&)colour opacity:(CGFloat)opacity;
@end

@implementation VorliGlowView {
  CGFloat _depth;
  std::array<Edge, 4> _edges;
  std::array<VorliGlowBand*, 4> _bands;
}

- (instancetype)initWithDepth:(CGFloat)depth {
  self = [super initWithFrame:NSRect{}];
  _depth = depth;
  _edges = {Edge::top, Edge::bottom, Edge::left, Edge::right};
  self.wantsLayer = YES;
  for (std::size_t index = 0; index < _edges.size(); ++index) {
    _bands[index] = [[VorliGlowBand alloc] initWithEdge:_edges[index]];
    [self addSubview:_bands[index]];
  }
  return self;
}

- (void)placeIn:(NSSize)screen {
  for (std::size_t index = 0; index < _edges.size(); ++index)
    _bands[index].frame = bandAt(_edges[index], screen, _depth);
}

- (void)showColour:(const Colour&)colour opacity:(CGFloat)opacity {
  for (VorliGlowBand* band : _bands) {
    [band setColour:colour];
    band.alphaValue = opacity;
  }
}

@end

namespace vorli::ui {

namespace {

constexpr double visibleStep = 1.0 / 255.0;
constexpr NSWindowLevel floatingLevel = 3;

NSWindow* overlayWindow(const NSRect& frame) {
  NSWindow* const window = [[NSWindow alloc] initWithContentRect:frame
                                                       styleMask:NSWindowStyleMaskBorderless
                                                         backing:NSBackingStoreBuffered
                                                           defer:NO];
  window.releasedWhenClosed = NO;
  window.opaque = NO;
  window.backgroundColor = NSColor.clearColor;
  window.hasShadow = NO;
  window.ignoresMouseEvents = YES;
  window.level = floatingLevel;
  window.collectionBehavior = NSWindowCollectionBehaviorCanJoinAllSpaces |
                              NSWindowCollectionBehaviorStationary |
                              NSWindowCollectionBehaviorFullScreenAuxiliary;
  return window;
}

}  // namespace

GlowOverlay::GlowOverlay(Scheduler& scheduler)
    : window_(nil),
      view_(nil),
      frames_(scheduler, [this](const ports::GlowPicture& picture) { return show(picture); }) {}

GlowOverlay::~GlowOverlay() {
  remove();
}

std::optional<ports::ScreenFrame> GlowOverlay::mainScreen() {
  NSScreen* const screen = NSScreen.mainScreen;
  if (!screen) return std::nullopt;
  return downwards(screen.frame);
}

Subscription GlowOverlay::subscribeToScreens(std::function<void()> handler) {
  return machost::observe(NSNotificationCenter.defaultCenter,
                          NSApplicationDidChangeScreenParametersNotification,
                          [handler = std::move(handler)](NSNotification*) { handler(); });
}

bool GlowOverlay::build(double bandDepthPoints) {
  remove();
  const auto screen = mainScreen();
  if (!screen) return false;
  window_ = overlayWindow(upwards(*screen));
  view_ = [[VorliGlowView alloc] initWithDepth:bandDepthPoints];
  window_.contentView = view_;
  setFrame(*screen);
  return true;
}

void GlowOverlay::setFrame(const ports::ScreenFrame& frame) {
  frame_ = frame;
  [window_ setFrame:upwards(frame) display:YES];
  [view_ placeIn:NSSize{frame.width, frame.height}];
}

void GlowOverlay::animate(Frames frames, double restsAt) {
  frames_.start(std::move(frames), restsAt);
}

void GlowOverlay::remove() {
  frames_.stop();
  shownOpacity_ = 0.0;
  [window_ orderOut:nil];
  window_ = nil;
  view_ = nil;
}

// A window that shows nothing is taken off the screen, where it would still be composed.
double GlowOverlay::show(const ports::GlowPicture& picture) {
  const bool wasLit = shownOpacity_ > 0.0;
  shownOpacity_ = picture.opacity < visibleStep / 2.0 ? 0.0 : picture.opacity;
  [view_ showColour:picture.colour.withAlpha(1.0) opacity:shownOpacity_];
  const bool isLit = shownOpacity_ > 0.0;
  if (isLit && !wasLit) [window_ orderFrontRegardless];
  if (!isLit && wasLit) [window_ orderOut:nil];
  return shownOpacity_ / visibleStep;
}

}  // namespace vorli::ui
