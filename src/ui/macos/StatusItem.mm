#include "ui/macos/StatusItem.h"

#include "macos/Text.h"
#include "ui/macos/ScreenCoordinates.h"
#include "ui/macos/SystemAppearance.h"

#include <memory>
#include <utility>

using vorli::ports::StatusClick;

/// Receives what the button and the rows of the menu send.
@interface VorliStatusTarget : NSObject
- (instancetype)initWithScheduler:(vorli::Scheduler*)scheduler;
- (void)setClickHandler:(std::function<void(const StatusClick&)>)handler;
- (NSMenu*)menuOf:(std::vector<vorli::ports::MenuRow>)rows;
- (void)handleStatusClick:(id)sender;
@end

@implementation VorliStatusTarget {
  vorli::Scheduler* _scheduler;
  std::function<void(const StatusClick&)> _clicked;
  std::vector<vorli::ports::MenuRow> _rows;
}

- (instancetype)initWithScheduler:(vorli::Scheduler*)scheduler {
  self = [super init];
  _scheduler = scheduler;
  return self;
}

- (void)setClickHandler:(std::function<void(const StatusClick&)>)handler {
  _clicked = std::move(handler);
}

- (void)handleStatusClick:(id)sender {
  NSEvent* const event = NSApp.currentEvent;
  StatusClick click;
  if (event.type == NSEventTypeRightMouseUp) click.button = StatusClick::Button::right;
  if (event.modifierFlags & NSEventModifierFlagControl) click.control = StatusClick::Control::held;
  if (_clicked) _clicked(click);
}

- (NSMenu*)menuOf:(std::vector<vorli::ports::MenuRow>)rows {
  using Kind = vorli::ports::MenuRow::Kind;
  _rows = std::move(rows);
  NSMenu* const menu = [[NSMenu alloc] init];
  for (std::size_t index = 0; index < _rows.size(); ++index) {
    const auto& row = _rows[index];
    if (row.kind == Kind::separator) {
      [menu addItem:[NSMenuItem separatorItem]];
      continue;
    }
    NSMenuItem* const item = [[NSMenuItem alloc] initWithTitle:vorli::machost::stringOf(row.title)
                                                        action:@selector(chooseRow:)
                                                 keyEquivalent:vorli::machost::stringOf(row.keyEquivalent)];
    item.target = self;
    item.tag = static_cast<NSInteger>(index);
    [menu addItem:item];
  }
  return menu;
}

// The menu's own loop still runs, so the action waits for the main loop.
- (void)chooseRow:(NSMenuItem*)item {
  const auto index = static_cast<std::size_t>(item.tag);
  if (index >= _rows.size() || !_rows[index].action) return;
  _scheduler->post([action = _rows[index].action] { action(); });
}

@end

namespace vorli::ui {

namespace {

constexpr CGFloat variableLength = -1.0;

void draw(const ports::Stroke& stroke) {
  const auto& colour = stroke.colour;
  [[NSColor colorWithSRGBRed:colour.red green:colour.green blue:colour.blue alpha:colour.alpha] setStroke];
  NSBezierPath* const path = [NSBezierPath bezierPath];
  path.lineWidth = stroke.width;
  path.lineCapStyle = NSLineCapStyleRound;
  [path moveToPoint:NSPoint{stroke.fromX, stroke.fromY}];
  [path lineToPoint:NSPoint{stroke.toX, stroke.toY}];
  [path stroke];
}

// Drawn for each scale that a screen has. It is not a template, so it keeps its colours.
NSImage* imageOf(const ports::StatusPicture& picture) {
  const auto shared = std::make_shared<const ports::StatusPicture>(picture);
  return [NSImage imageWithSize:NSSize{picture.sidePoints, picture.sidePoints}
                        flipped:YES
                 drawingHandler:^BOOL(NSRect) {
                   for (const auto& stroke : shared->strokes) draw(stroke);
                   return YES;
                 }];
}

}  // namespace

StatusItem::StatusItem(Scheduler& scheduler)
    : item_(nil), target_([[VorliStatusTarget alloc] initWithScheduler:&scheduler]) {}

StatusItem::~StatusItem() {
  if (!item_) return;
  item_.button.target = nil;
  [NSStatusBar.systemStatusBar removeStatusItem:item_];
}

bool StatusItem::create() {
  if (!item_) item_ = [NSStatusBar.systemStatusBar statusItemWithLength:variableLength];
  NSStatusBarButton* const button = item_.button;
  if (!button) return false;
  button.target = target_;
  button.action = @selector(handleStatusClick:);
  [button sendActionOn:NSEventMaskLeftMouseUp | NSEventMaskRightMouseUp];
  button.accessibilityRole = NSAccessibilityButtonRole;
  return true;
}

bool StatusItem::hasButton() const {
  return item_.button != nil;
}

void StatusItem::setClickHandler(std::function<void(const ports::StatusClick&)> handler) {
  [target_ setClickHandler:std::move(handler)];
}

void StatusItem::setMenuProvider(std::function<std::vector<ports::MenuRow>()>) {}

// Sets the menu only for this press, because an item with a menu never sends a click.
void StatusItem::showMenu(std::vector<ports::MenuRow> rows) {
  if (!item_.button) return;
  item_.menu = [target_ menuOf:std::move(rows)];
  [item_.button performClick:nil];
  item_.menu = nil;
}

void StatusItem::setToolTip(const std::string& text) {
  item_.button.toolTip = machost::stringOf(text);
}

void StatusItem::setAccessibilityLabel(const std::string& text) {
  item_.button.accessibilityLabel = machost::stringOf(text);
}

void StatusItem::setAccessibilityValue(const std::string& text) {
  item_.button.accessibilityValue = machost::stringOf(text);
}

void StatusItem::setPicture(const ports::StatusPicture& picture) {
  if (shown_ == picture || !item_.button) return;
  shown_ = picture;
  item_.button.image = imageOf(picture);
}

bool StatusItem::hasDarkAppearance() const {
  return isSystemDark();
}

void StatusItem::setAppearanceHandler(std::function<void()> handler) {
  appearance_ = subscribeToSystemAppearance(std::move(handler));
}

std::optional<ClickAnchor> StatusItem::anchor() const {
  NSStatusBarButton* const button = item_.button;
  if (!button.window) return std::nullopt;
  const NSRect inWindow = [button convertRect:button.bounds toView:nil];
  const auto place = downwards([button.window convertRectToScreen:inWindow]);
  const QRect icon = QRectF(place.x, place.y, place.width, place.height).toRect();
  return ClickAnchor{icon.center(), icon};
}

}  // namespace vorli::ui
