#include "macos/sound/AudioOutputTap.h"

#import <CoreAudio/AudioHardwareTapping.h>
#import <CoreAudio/CATapDescription.h>
#import <CoreAudio/CoreAudio.h>
#import <Foundation/Foundation.h>
#include <algorithm>
#include <array>
#include <memory>
#include <mutex>
#include <utility>

namespace vorli::machost {

namespace {

using ports::AudioTapFailure;
using Step = AudioTapFailure::Step;

constexpr std::size_t buffersAtOnce = 8;

template <typename Value>
OSStatus readProperty(AudioObjectID object, AudioObjectPropertySelector selector,
                      AudioObjectPropertyScope scope, Value& value) {
  const AudioObjectPropertyAddress address{selector, scope, kAudioObjectPropertyElementMain};
  UInt32 size = sizeof value;
  return AudioObjectGetPropertyData(object, &address, 0, nullptr, &size, &value);
}

/// Passes sound on until it is closed. The sound system's thread takes the lock once for each list of
/// buffers, and nothing here allocates memory.
class Listener {
 public:
  explicit Listener(ports::AudioOutputTap::InputBlock input) : input_(std::move(input)) {}

  void take(const AudioBufferList& list) {
    const std::lock_guard lock(mutex_);
    if (!isOpen_) return;
    std::span<const AudioBuffer> rest(list.mBuffers, list.mNumberBuffers);
    while (!rest.empty()) {
      std::array<ports::AudioBuffer, buffersAtOnce> buffers;
      const auto count = std::min(rest.size(), buffers.size());
      for (std::size_t i = 0; i < count; ++i) buffers[i] = {rest[i].mData, rest[i].mDataByteSize};
      input_(std::span(buffers).first(count));
      rest = rest.subspan(count);
    }
  }

  void close() {
    const std::lock_guard lock(mutex_);
    isOpen_ = false;
  }

 private:
  std::mutex mutex_;
  bool isOpen_ = true;
  ports::AudioOutputTap::InputBlock input_;
};

class API_AVAILABLE(macos(14.2)) Tap {
 public:
  ~Tap() {
    if (object_ != kAudioObjectUnknown) AudioHardwareDestroyProcessTap(object_);
  }

  OSStatus create() {
    CATapDescription* const description = [[CATapDescription alloc] initStereoMixdownOfProcesses:@[]];
    [description setName:@"Vorli audio probe"];
    [description setPrivate:YES];
    [description setMuteBehavior:CATapUnmuted];
    return AudioHardwareCreateProcessTap(description, &object_);
  }

  bool exists() const { return object_ != kAudioObjectUnknown; }

  /// Returns the tap's identifier; nil when it cannot be read, and `status` is then the reason.
  NSString* identifier(OSStatus& status) const {
    CFStringRef text = nullptr;
    status = readProperty(object_, kAudioTapPropertyUID, kAudioObjectPropertyScopeGlobal, text);
    return status == noErr ? (__bridge_transfer NSString*)text : nil;
  }

 private:
  AudioObjectID object_ = kAudioObjectUnknown;
};

class AggregateDevice {
 public:
  ~AggregateDevice() {
    if (object_ != kAudioObjectUnknown) AudioHardwareDestroyAggregateDevice(object_);
  }

  OSStatus create(NSString* tapIdentifier) {
    NSDictionary* const tap = @{@kAudioSubTapUIDKey : tapIdentifier, @kAudioSubTapDriftCompensationKey : @0};
    NSString* const identifier =
        [@"com.kv.vorli.audio-probe." stringByAppendingString:NSUUID.UUID.UUIDString];
    NSDictionary* const description = @{
      @kAudioAggregateDeviceUIDKey : identifier,
      @kAudioAggregateDeviceNameKey : @"Vorli Audio Probe",
      @kAudioAggregateDeviceIsPrivateKey : @1,
      @kAudioAggregateDeviceIsStackedKey : @0,
      @kAudioAggregateDeviceTapAutoStartKey : @1,
      @kAudioAggregateDeviceTapListKey : @[ tap ],
    };
    return AudioHardwareCreateAggregateDevice((__bridge CFDictionaryRef)description, &object_);
  }

  AudioObjectID object() const { return object_; }

 private:
  AudioObjectID object_ = kAudioObjectUnknown;
};

class InputProcedure {
 public:
  InputProcedure(AudioObjectID device, std::shared_ptr<Listener> listener)
      : device_(device), listener_(std::move(listener)) {}
  ~InputProcedure() {
    listener_->close();
    if (procedure_) AudioDeviceDestroyIOProcID(device_, procedure_);
  }

  OSStatus create() {
    const auto listener = listener_;
    return AudioDeviceCreateIOProcIDWithBlock(
        &procedure_, device_, nil,
        ^(const AudioTimeStamp*, const AudioBufferList* input, const AudioTimeStamp*, AudioBufferList*,
          const AudioTimeStamp*) {
          listener->take(*input);
        });
  }

  bool exists() const { return procedure_ != nullptr; }
  OSStatus start() { return AudioDeviceStart(device_, procedure_); }
  void stop() { AudioDeviceStop(device_, procedure_); }

 private:
  const AudioObjectID device_;
  const std::shared_ptr<Listener> listener_;
  AudioDeviceIOProcID procedure_ = nullptr;
};

std::unexpected<AudioTapFailure> failure(Step step, OSStatus status) {
  return std::unexpected(AudioTapFailure{step, status});
}

// The order of the variables matters: the procedure is destroyed first, then the device, then the tap.
API_AVAILABLE(macos(14.2))
std::expected<void, AudioTapFailure> listenThroughTap(double windowSeconds,
                                                      std::shared_ptr<Listener> listener) {
  Tap tap;
  OSStatus status = tap.create();
  if (status != noErr || !tap.exists()) return failure(Step::createTap, status);
  NSString* const tapIdentifier = tap.identifier(status);
  if (!tapIdentifier) return failure(Step::readTapIdentifier, status);

  AggregateDevice device;
  status = device.create(tapIdentifier);
  if (status != noErr || device.object() == kAudioObjectUnknown) return failure(Step::createDevice, status);

  InputProcedure procedure(device.object(), std::move(listener));
  status = procedure.create();
  if (status != noErr || !procedure.exists()) return failure(Step::createInputProcedure, status);
  status = procedure.start();
  if (status != noErr) return failure(Step::start, status);
  [NSThread sleepForTimeInterval:windowSeconds];
  procedure.stop();
  return {};
}

}  // namespace

bool AudioOutputTap::canListen() {
  if (@available(macOS 14.2, *)) return true;
  return false;
}

std::expected<void, AudioTapFailure> AudioOutputTap::listen(double windowSeconds, InputBlock input) {
  if (@available(macOS 14.2, *))
    return listenThroughTap(windowSeconds, std::make_shared<Listener>(std::move(input)));
  return failure(Step::createTap, kAudioHardwareUnsupportedOperationError);
}

std::optional<bool> AudioOutputTap::isOutputRunning() {
  AudioObjectID device = kAudioObjectUnknown;
  if (readProperty(kAudioObjectSystemObject, kAudioHardwarePropertyDefaultOutputDevice,
                   kAudioObjectPropertyScopeGlobal, device) != noErr ||
      device == kAudioObjectUnknown)
    return std::nullopt;
  UInt32 isRunning = 0;
  if (readProperty(device, kAudioDevicePropertyDeviceIsRunningSomewhere, kAudioObjectPropertyScopeOutput,
                   isRunning) != noErr)
    return std::nullopt;
  return isRunning != 0;
}

}  // namespace vorli::machost
