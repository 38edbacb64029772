#include "tests/macos/runtime/Sound.h"

#include "tests/macos/runtime/Foundation.h"
#include "tests/macos/runtime/State.h"

#include <cstddef>
#include <cstdlib>
#include <memory>

namespace vorli::macfake {

static State<Sound> soundState;

Sound& sound() {
  return *soundState;
}

void Sound::play() {
  if (!procedure) return;
  const std::size_t size = offsetof(AudioBufferList, mBuffers) + (buffers.size() + 1) * sizeof(AudioBuffer);
  const std::unique_ptr<void, void (*)(void*)> memory(std::calloc(1, size), std::free);
  auto* const list = static_cast<AudioBufferList*>(memory.get());
  list->mNumberBuffers = static_cast<UInt32>(buffers.size());
  AudioBuffer* const first = list->mBuffers;
  for (std::size_t index = 0; index < buffers.size(); ++index) {
    auto& samples = buffers[index];
    first[index] = {1, static_cast<UInt32>(samples.size() * sizeof(float)), samples.data()};
  }
  const AudioTimeStamp time{};
  procedure(&time, list, &time, nullptr, &time);
}

namespace {

constexpr AudioObjectID tapObject = 77;
constexpr AudioObjectID deviceObject = 88;
constexpr AudioObjectID outputObject = 99;

bool fails(const char* call) {
  sound().calls.emplace_back(call);
  return sound().failing == call;
}

OSStatus create(const char* call, const char* what, AudioObjectID number, AudioObjectID* object) {
  if (fails(call)) return sound().createsNothing ? noErr : sound().error;
  sound().open.emplace_back(what);
  *object = number;
  return noErr;
}

OSStatus destroy(const char* call, const char* what) {
  sound().calls.emplace_back(call);
  std::erase(sound().open, what);
  return noErr;
}

}  // namespace
}  // namespace vorli::macfake

using namespace vorli::macfake;

@interface CATapDescription ()
- (const std::string&)facts;
@end

@implementation CATapDescription {
  std::string _facts;
}

- (instancetype)initStereoMixdownOfProcesses:(NSArray<NSNumber*>*)processes {
  self = [super init];
  _facts = "stereo mix of " + std::to_string(processes.count);
  return self;
}
- (void)setName:(NSString*)name {
  _facts += std::string(", ") + name.UTF8String;
}
- (void)setPrivate:(BOOL)isPrivate {
  _facts += isPrivate ? ", private" : ", public";
}
- (void)setMuteBehavior:(CATapMuteBehavior)behavior {
  _facts += ", mute " + std::to_string(behavior);
}
- (const std::string&)facts {
  return _facts;
}
@end

OSStatus AudioHardwareCreateProcessTap(CATapDescription* description, AudioObjectID* tap) {
  sound().calls.push_back([description facts]);
  return create("create tap", "tap", tapObject, tap);
}

OSStatus AudioHardwareDestroyProcessTap(AudioObjectID tap) {
  return destroy(tap == tapObject ? "destroy tap" : "destroy unknown tap", "tap");
}

OSStatus AudioHardwareCreateAggregateDevice(CFDictionaryRef description, AudioObjectID* device) {
  sound().device = (__bridge NSDictionary*)description;
  return create("create device", "device", deviceObject, device);
}

OSStatus AudioHardwareDestroyAggregateDevice(AudioObjectID device) {
  return destroy(device == deviceObject ? "destroy device" : "destroy unknown device", "device");
}

namespace {

OSStatus standForProcedure(AudioObjectID, const AudioTimeStamp*, const AudioBufferList*,
                           const AudioTimeStamp*, AudioBufferList*, const AudioTimeStamp*, void*) {
  return noErr;
}

}  // namespace

OSStatus AudioDeviceCreateIOProcIDWithBlock(AudioDeviceIOProcID* procedure, AudioObjectID, dispatch_queue_t,
                                            AudioDeviceIOBlock block) {
  if (fails("create procedure")) return sound().createsNothing ? noErr : sound().error;
  sound().open.emplace_back("procedure");
  sound().procedure = block;
  *procedure = standForProcedure;
  return noErr;
}

OSStatus AudioDeviceDestroyIOProcID(AudioObjectID, AudioDeviceIOProcID) {
  sound().play();  // one last time, on the system's own thread
  sound().procedure = nil;
  return destroy("destroy procedure", "procedure");
}

OSStatus AudioDeviceStart(AudioObjectID, AudioDeviceIOProcID) {
  if (fails("start")) return sound().error;
  sound().play();
  return noErr;
}

OSStatus AudioDeviceStop(AudioObjectID, AudioDeviceIOProcID) {
  sound().calls.emplace_back("stop");
  return noErr;
}

OSStatus AudioObjectGetPropertyData(AudioObjectID object, const AudioObjectPropertyAddress* address, UInt32,
                                    const void*, UInt32* size, void* data) {
  constexpr OSStatus unknown = 'who?';
  if (object == tapObject && address->mSelector == kAudioTapPropertyUID &&
      address->mScope == kAudioObjectPropertyScopeGlobal && *size == sizeof(CFStringRef)) {
    if (fails("read tap")) return sound().error;
    *static_cast<const void**>(data) = (__bridge_retained const void*)string("TAP-UID");
    return noErr;
  }
  if (object == kAudioObjectSystemObject && address->mSelector == kAudioHardwarePropertyDefaultOutputDevice &&
      address->mScope == kAudioObjectPropertyScopeGlobal) {
    if (fails("read output")) return sound().error;
    *static_cast<AudioObjectID*>(data) = sound().hasDefaultDevice ? outputObject : kAudioObjectUnknown;
    return noErr;
  }
  if (object == outputObject && address->mSelector == kAudioDevicePropertyDeviceIsRunningSomewhere &&
      address->mScope == kAudioObjectPropertyScopeOutput) {
    if (fails("read running")) return sound().error;
    *static_cast<UInt32*>(data) = sound().isRunning;
    return noErr;
  }
  return unknown;
}
