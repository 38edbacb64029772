#include "tests/macos/runtime/Dispatch.h"

#include "tests/macos/runtime/Classes.h"
#include "tests/macos/runtime/Foundation.h"
#include "tests/macos/runtime/State.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <dispatch/dispatch.h>
#include <mutex>
#include <thread>
#include <time.h>
#include <utility>
#include <vector>

struct dispatch_source_type_s {
  int kind;
};
const dispatch_source_type_s _dispatch_source_type_timer{1};

@interface VorliQueue : NSObject <OS_dispatch_queue>
@end
@implementation VorliQueue
@end

@interface VorliGroup : NSObject <OS_dispatch_group> {
 @public
  int pending;
}
@end
@implementation VorliGroup
@end

@interface VorliSource : NSObject <OS_dispatch_source> {
 @public
  dispatch_block_t handler;
  std::uint64_t due;
  bool isResumed;
}
@end
@implementation VorliSource
- (void)dealloc {
  // The system aborts here as well: a source that was never resumed must not be released.
  if (!isResumed) vorli::objc::breakOff("released before it was resumed", "dispatch source");
}
@end

namespace vorli::macfake {

namespace {

struct Dispatch {
  std::deque<dispatch_block_t> main;
  std::vector<VorliSource*> sources;  // resumed and not cancelled
  std::vector<std::thread> threads;
  std::uint64_t now = 1000 * NSEC_PER_SEC;
  bool waitsRunOut = false;
  bool loopShouldStop = false;
};

// One lock and one condition for everything: speed does not matter here.
std::mutex lock;
std::condition_variable changed;
State<Dispatch> queues;

VorliQueue* mainQueue() {
  static VorliQueue* const queue = shared([[VorliQueue alloc] init]);
  return queue;
}

VorliQueue* globalQueue() {
  static VorliQueue* const queue = shared([[VorliQueue alloc] init]);
  return queue;
}

VorliGroup* asGroup(dispatch_group_t group) {
  return static_cast<VorliGroup*>(group);
}

VorliSource* asSource(dispatch_source_t source) {
  return static_cast<VorliSource*>(source);
}

bool runNextOfMainQueue() {
  dispatch_block_t block = nil;
  {
    const std::lock_guard guard(lock);
    if (queues->main.empty()) return false;
    block = queues->main.front();
    queues->main.pop_front();
  }
  @autoreleasepool {
    block();
  }
  return true;
}

VorliSource* nextTimer() {
  const std::lock_guard guard(lock);
  const auto next = std::min_element(queues->sources.begin(), queues->sources.end(),
                                     [](VorliSource* a, VorliSource* b) { return a->due < b->due; });
  return next == queues->sources.end() || (*next)->due == DISPATCH_TIME_FOREVER ? nil : *next;
}

// Each timer here has one shot.
void fire(VorliSource* source) {
  queues->now = std::max(queues->now, source->due);
  source->due = DISPATCH_TIME_FOREVER;
  @autoreleasepool {
    const dispatch_block_t handler = source->handler;
    handler();
  }
}

}  // namespace

void runMainQueue() {
  while (runNextOfMainQueue()) {
  }
}

void advanceTime(double seconds) {
  const auto target = queues->now + static_cast<std::uint64_t>(seconds * static_cast<double>(NSEC_PER_SEC));
  runMainQueue();
  while (VorliSource* const timer = nextTimer()) {
    if (timer->due > target) break;
    fire(timer);
    runMainQueue();
  }
  queues->now = target;
}

std::size_t activeTimers() {
  const std::lock_guard guard(lock);
  return queues->sources.size();
}

void runOnThread(std::function<void()> work) {
  const std::lock_guard guard(lock);
  queues->threads.emplace_back([work = std::move(work)]() mutable {
    @autoreleasepool {
      work();
      work = nullptr;
    }
  });
}

void joinThreads() {
  for (;;) {
    std::vector<std::thread> threads;
    {
      const std::lock_guard guard(lock);
      threads.swap(queues->threads);
    }
    if (threads.empty()) return;
    for (std::thread& each : threads) each.join();
  }
}

void letWaitsRunOut() {
  const std::lock_guard guard(lock);
  queues->waitsRunOut = true;
}

}  // namespace vorli::macfake

using namespace vorli::macfake;

dispatch_time_t dispatch_time(dispatch_time_t, int64_t nanoseconds) {
  return queues->now + static_cast<std::uint64_t>(nanoseconds);
}

uint64_t clock_gettime_nsec_np(clockid_t) {
  return queues->now;
}

dispatch_queue_t dispatch_get_main_queue() {
  return mainQueue();
}

dispatch_queue_t dispatch_get_global_queue(intptr_t, uintptr_t) {
  return globalQueue();
}

void dispatch_async(dispatch_queue_t queue, dispatch_block_t block) {
  if (queue != mainQueue()) return runOnThread([block] { block(); });
  const std::lock_guard guard(lock);
  queues->main.push_back(block);
  changed.notify_all();
}

dispatch_group_t dispatch_group_create() {
  return [[VorliGroup alloc] init];
}

void dispatch_group_enter(dispatch_group_t group) {
  const std::lock_guard guard(lock);
  ++asGroup(group)->pending;
}

void dispatch_group_leave(dispatch_group_t group) {
  const std::lock_guard guard(lock);
  if (--asGroup(group)->pending < 0) vorli::objc::breakOff("left more often than entered", "dispatch group");
  changed.notify_all();
}

intptr_t dispatch_group_wait(dispatch_group_t group, dispatch_time_t limit) {
  std::unique_lock guard(lock);
  VorliGroup* const waited = asGroup(group);
  if (waited->pending > 0 && (limit == DISPATCH_TIME_NOW || queues->waitsRunOut)) return 49;
  changed.wait(guard, [waited] { return waited->pending == 0; });
  return 0;
}

void dispatch_group_async(dispatch_group_t group, dispatch_queue_t queue, dispatch_block_t block) {
  dispatch_group_enter(group);
  dispatch_async(queue, ^{
    block();
    dispatch_group_leave(group);
  });
}

dispatch_source_t dispatch_source_create(dispatch_source_type_t, uintptr_t, uintptr_t, dispatch_queue_t) {
  return [[VorliSource alloc] init];
}

void dispatch_source_set_event_handler(dispatch_source_t source, dispatch_block_t handler) {
  asSource(source)->handler = handler;
}

void dispatch_source_set_timer(dispatch_source_t source, dispatch_time_t start, uint64_t, uint64_t) {
  asSource(source)->due = start;
}

// A cancelled source releases its handler.
void dispatch_source_cancel(dispatch_source_t source) {
  const std::lock_guard guard(lock);
  std::erase(queues->sources, asSource(source));
  asSource(source)->handler = nil;
}

void dispatch_resume(dispatch_source_t source) {
  const std::lock_guard guard(lock);
  asSource(source)->isResumed = true;
  queues->sources.push_back(asSource(source));
}

CFRunLoopRef CFRunLoopGetMain() {
  return nullptr;
}

void CFRunLoopStop(CFRunLoopRef) {
  const std::lock_guard guard(lock);
  queues->loopShouldStop = true;
}

// Time jumps to the next timer when there is nothing else to do.
void CFRunLoopRun() {
  for (;;) {
    runMainQueue();
    if (std::exchange(queues->loopShouldStop, false)) return;
    VorliSource* const timer = nextTimer();
    if (!timer) vorli::objc::breakOff("would wait for ever", "main loop");
    fire(timer);
  }
}
