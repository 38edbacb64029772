#include "tests/macos/runtime/Dispatch.h"
#include "tests/macos/runtime/Foundation.h"
#include "tests/macos/runtime/Machine.h"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#undef kill

// Programs are really started, and their output is really read.

@interface NSFileHandle ()
+ (instancetype)handleOf:(int)descriptor;
@property(readonly) int descriptor;
- (void)close;
@end

@implementation NSFileHandle {
  int _descriptor;
}

+ (instancetype)handleOf:(int)descriptor {
  NSFileHandle* const handle = [[self alloc] init];
  handle->_descriptor = descriptor;
  return handle;
}
+ (NSFileHandle*)fileHandleWithNullDevice {
  return [self handleOf:open("/dev/null", O_RDWR | O_CLOEXEC)];
}
- (int)descriptor {
  return _descriptor;
}
- (nullable NSData*)readDataToEndOfFileAndReturnError:(NSError* __autoreleasing _Nullable* _Nullable)error {
  std::string all;
  std::array<char, 4096> piece;
  for (ssize_t got = 0; (got = read(_descriptor, piece.data(), piece.size())) > 0;)
    all.append(piece.data(), static_cast<std::size_t>(got));
  return [NSData dataWithText:std::move(all)];
}
- (void)close {
  if (_descriptor >= 0) ::close(_descriptor);
  _descriptor = -1;
}
- (void)dealloc {
  [self close];
}
@end

@interface NSPipe ()
@property(retain) NSFileHandle* fileHandleForReading;
@property(strong) NSFileHandle* fileHandleForWriting;
@end

@implementation NSPipe
+ (NSPipe*)pipe {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) return nil;
  NSPipe* const pipe = [[self alloc] init];
  pipe.fileHandleForReading = [NSFileHandle handleOf:ends[0]];
  pipe.fileHandleForWriting = [NSFileHandle handleOf:ends[1]];
  return pipe;
}
@end

@implementation NSTask {
  pid_t _child;
  int _status;
}

- (int)descriptorOf:(id)object {
  if ([object isKindOfClass:NSPipe.class])
    return static_cast<NSPipe*>(object).fileHandleForWriting.descriptor;
  return static_cast<NSFileHandle*>(object).descriptor;
}
- (int)spawnWith:(std::vector<char*>)arguments environment:(std::vector<char*>)variables {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, [self descriptorOf:self.standardInput], STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, [self descriptorOf:self.standardOutput], STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, [self descriptorOf:self.standardError], STDERR_FILENO);
  const int failure =
      posix_spawn(&_child, arguments[0], &actions, nullptr, arguments.data(), variables.data());
  posix_spawn_file_actions_destroy(&actions);
  return failure;
}
- (BOOL)launchAndReturnError:(NSError* __autoreleasing _Nullable* _Nullable)error {
  std::vector<std::string> texts{self.executableURL.path.UTF8String};
  for (NSString* each in self.arguments) texts.emplace_back(each.UTF8String);
  auto& machine = vorli::macfake::machine();
  auto& started = machine.startedTools.emplace_back();
  for (const std::string& each : texts) started += (started.empty() ? "" : " ") + each;
  const auto other = machine.toolsStandingFor.find(texts[0]);
  if (other != machine.toolsStandingFor.end()) texts[0] = other->second;
  std::vector<std::string> assignments;
  for (NSString* name in self.environment)
    assignments.push_back(std::string(name.UTF8String) + "=" + self.environment[name].UTF8String);
  std::vector<char*> arguments, variables;
  for (std::string& each : texts) arguments.push_back(each.data());
  for (std::string& each : assignments) variables.push_back(each.data());
  arguments.push_back(nullptr);
  variables.push_back(nullptr);
  if ([self spawnWith:arguments environment:variables] != 0) {
    if (error) *error = [NSError errorWithCode:4 text:@"The file doesn't exist."];
    return NO;
  }
  // The child has its own copies; the pipe would never end otherwise.
  for (id each in @[ self.standardOutput, self.standardError ])
    if ([each isKindOfClass:NSPipe.class]) [static_cast<NSPipe*>(each).fileHandleForWriting close];
  vorli::macfake::runOnThread([self] { [self waitForTheEnd]; });
  return YES;
}
- (void)waitForTheEnd {
  waitpid(_child, &_status, 0);
  void (^const handler)(NSTask*) = self.terminationHandler;
  self.terminationHandler = nil;
  if (handler) handler(self);
}
- (void)terminate {
  kill(_child, SIGTERM);
}
- (int)terminationStatus {
  return WIFSIGNALED(_status) ? WTERMSIG(_status) : WEXITSTATUS(_status);
}
- (NSTaskTerminationReason)terminationReason {
  return WIFSIGNALED(_status) ? NSTaskTerminationReasonUncaughtSignal : NSTaskTerminationReasonExit;
}
@end
