#include "macos/daemon/Tool.h"

#include "contract/ExitCode.h"
#include "daemon/SystemError.h"
#include "macos/Text.h"

#import <Foundation/Foundation.h>
#include <dispatch/dispatch.h>
#include <memory>

namespace vorli::machost {

namespace {

NSTask* toolTask(const std::string& path, const std::vector<std::string>& arguments, NSPipe* output) {
  NSMutableArray<NSString*>* const strings = [[NSMutableArray alloc] init];
  for (const auto& argument : arguments) [strings addObject:stringOf(argument)];
  NSTask* const task = [[NSTask alloc] init];
  task.executableURL = [NSURL fileURLWithPath:stringOf(path)];
  task.arguments = strings;
  task.environment = @{@"LC_ALL" : @"C", @"PATH" : @"/usr/bin:/bin:/usr/sbin:/sbin"};
  task.standardInput = NSFileHandle.fileHandleWithNullDevice;
  task.standardOutput = output;
  task.standardError = output;
  return task;
}

std::string textOfData(NSData* data) {
  return data.length == 0 ? std::string() : std::string(static_cast<const char*>(data.bytes), data.length);
}

}  // namespace

// The output is read while the tool runs: a full pipe would stop it.
std::expected<ToolResult, daemon::SystemError> runTool(const std::string& path,
                                                       const std::vector<std::string>& arguments,
                                                       double seconds) {
  @autoreleasepool {
    NSPipe* const pipe = [NSPipe pipe];
    NSTask* const task = toolTask(path, arguments, pipe);
    const auto unfinished = dispatch_group_create();
    dispatch_group_enter(unfinished);
    task.terminationHandler = ^(NSTask*) {
      dispatch_group_leave(unfinished);
    };
    NSError* error = nil;
    if (![task launchAndReturnError:&error]) {
      dispatch_group_leave(unfinished);
      return std::unexpected(daemon::SystemError{ENOEXEC, textOf(error)});
    }
    const auto output = std::make_shared<std::string>();
    dispatch_group_async(unfinished, dispatch_get_global_queue(QOS_CLASS_USER_INITIATED, 0), ^{
      *output = textOfData([pipe.fileHandleForReading readDataToEndOfFileAndReturnError:nil]);
    });
    const auto limit = static_cast<std::int64_t>(seconds * static_cast<double>(NSEC_PER_SEC));
    if (dispatch_group_wait(unfinished, dispatch_time(DISPATCH_TIME_NOW, limit)) != 0) {
      [task terminate];
      return std::unexpected(daemon::systemError(ETIMEDOUT));
    }
    if (task.terminationReason != NSTaskTerminationReasonExit) {
      return std::unexpected(daemon::SystemError{
          helper::exit_code::internalError, "ended by signal " + std::to_string(task.terminationStatus)});
    }
    return ToolResult{task.terminationStatus, *output};
  }
}

}  // namespace vorli::machost
