#include "macos/startup/SystemTool.h"

#include "macos/Text.h"

#include <dispatch/dispatch.h>
#include <memory>

namespace vorli::machost {

namespace {

constexpr std::int64_t limitNanoseconds = 10 * static_cast<std::int64_t>(NSEC_PER_SEC);

NSArray<NSString*>* stringsOf(const std::vector<std::string>& texts) {
  NSMutableArray<NSString*>* const strings = [[NSMutableArray alloc] init];
  for (const auto& text : texts) [strings addObject:stringOf(text)];
  return strings;
}

NSDictionary<NSString*, NSString*>* environmentInPlainLocale() {
  NSMutableDictionary<NSString*, NSString*>* const environment =
      [NSMutableDictionary dictionaryWithDictionary:NSProcessInfo.processInfo.environment];
  environment[@"LC_ALL"] = @"C";
  return environment;
}

std::string bytesOf(NSData* data) {
  return data.length == 0 ? std::string() : std::string(static_cast<const char*>(data.bytes), data.length);
}

NSTask* taskFor(const std::string& path, const std::vector<std::string>& arguments, NSPipe* output) {
  NSTask* const task = [[NSTask alloc] init];
  task.executableURL = [NSURL fileURLWithPath:stringOf(path)];
  task.arguments = stringsOf(arguments);
  task.environment = environmentInPlainLocale();
  task.standardInput = NSFileHandle.fileHandleWithNullDevice;
  task.standardOutput = output;
  task.standardError = NSFileHandle.fileHandleWithNullDevice;
  return task;
}

}  // namespace

// The output is read while the tool runs: a full pipe would stop it.
std::optional<std::string> runTool(const std::string& path, const std::vector<std::string>& arguments) {
  @autoreleasepool {
    NSPipe* const pipe = [NSPipe pipe];
    NSTask* const task = taskFor(path, arguments, pipe);
    const auto unfinished = dispatch_group_create();
    dispatch_group_enter(unfinished);
    task.terminationHandler = ^(NSTask*) {
      dispatch_group_leave(unfinished);
    };
    if (![task launchAndReturnError:nil]) {
      dispatch_group_leave(unfinished);
      return std::nullopt;
    }
    const auto output = std::make_shared<std::string>();
    dispatch_group_async(unfinished, dispatch_get_global_queue(QOS_CLASS_USER_INITIATED, 0), ^{
      *output = bytesOf([pipe.fileHandleForReading readDataToEndOfFileAndReturnError:nil]);
    });
    if (dispatch_group_wait(unfinished, dispatch_time(DISPATCH_TIME_NOW, limitNanoseconds)) != 0) {
      [task terminate];
      return std::nullopt;
    }
    if (task.terminationReason != NSTaskTerminationReasonExit) return std::nullopt;
    return *output;
  }
}

}  // namespace vorli::machost
