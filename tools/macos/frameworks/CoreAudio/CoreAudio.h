#pragma once

// Audio objects, aggregate devices and taps of what other programs play.

#import <Foundation/Foundation.h>

typedef UInt32 AudioObjectID;
typedef UInt32 AudioObjectPropertySelector;
typedef UInt32 AudioObjectPropertyScope;
typedef UInt32 AudioObjectPropertyElement;

struct AudioObjectPropertyAddress {
  AudioObjectPropertySelector mSelector;
  AudioObjectPropertyScope mScope;
  AudioObjectPropertyElement mElement;
};
typedef struct AudioObjectPropertyAddress AudioObjectPropertyAddress;

struct AudioBuffer {
  UInt32 mNumberChannels;
  UInt32 mDataByteSize;
  void* mData;
};
typedef struct AudioBuffer AudioBuffer;

struct AudioBufferList {
  UInt32 mNumberBuffers;
  AudioBuffer mBuffers[1];  // in truth as many as the field above says
};
typedef struct AudioBufferList AudioBufferList;

struct SMPTETime {
  SInt16 mSubframes;
  SInt16 mSubframeDivisor;
  UInt32 mCounter;
  UInt32 mType;
  UInt32 mFlags;
  SInt16 mHours;
  SInt16 mMinutes;
  SInt16 mSeconds;
  SInt16 mFrames;
};
typedef struct SMPTETime SMPTETime;

struct AudioTimeStamp {
  Float64 mSampleTime;
  UInt64 mHostTime;
  Float64 mRateScalar;
  UInt64 mWordClockTime;
  SMPTETime mSMPTETime;
  UInt32 mFlags;
  UInt32 mReserved;
};
typedef struct AudioTimeStamp AudioTimeStamp;

enum : AudioObjectID { kAudioObjectUnknown = 0, kAudioObjectSystemObject = 1 };
enum : OSStatus { kAudioHardwareUnsupportedOperationError = 'unop' };
enum : AudioObjectPropertySelector {
  kAudioHardwarePropertyDefaultOutputDevice = 'dOut',
  kAudioDevicePropertyDeviceIsRunningSomewhere = 'gone',
  kAudioTapPropertyUID = 'tuid',
};
enum : AudioObjectPropertyScope {
  kAudioObjectPropertyScopeGlobal = 'glob',
  kAudioObjectPropertyScopeOutput = 'outp',
};
enum : AudioObjectPropertyElement { kAudioObjectPropertyElementMain = 0 };

#define kAudioAggregateDeviceUIDKey "uid"
#define kAudioAggregateDeviceNameKey "name"
#define kAudioAggregateDeviceIsPrivateKey "private"
#define kAudioAggregateDeviceIsStackedKey "stacked"
#define kAudioAggregateDeviceTapAutoStartKey "tapautostart"
#define kAudioAggregateDeviceTapListKey "taps"
#define kAudioSubTapUIDKey "uid"
#define kAudioSubTapDriftCompensationKey "drift"

typedef OSStatus (*AudioDeviceIOProc)(AudioObjectID device, const AudioTimeStamp* now,
                                      const AudioBufferList* input, const AudioTimeStamp* inputTime,
                                      AudioBufferList* output, const AudioTimeStamp* outputTime,
                                      void* clientData);
typedef AudioDeviceIOProc AudioDeviceIOProcID;
typedef void (^AudioDeviceIOBlock)(const AudioTimeStamp* now, const AudioBufferList* input,
                                   const AudioTimeStamp* inputTime, AudioBufferList* output,
                                   const AudioTimeStamp* outputTime);

CF_EXPORT OSStatus AudioObjectGetPropertyData(AudioObjectID object, const AudioObjectPropertyAddress* address,
                                              UInt32 qualifierSize, const void* qualifier, UInt32* size,
                                              void* data);
CF_EXPORT OSStatus AudioHardwareCreateAggregateDevice(CFDictionaryRef description, AudioObjectID* device);
CF_EXPORT OSStatus AudioHardwareDestroyAggregateDevice(AudioObjectID device);
CF_EXPORT OSStatus AudioDeviceCreateIOProcIDWithBlock(AudioDeviceIOProcID* procedure, AudioObjectID device,
                                                      dispatch_queue_t queue, AudioDeviceIOBlock block);
CF_EXPORT OSStatus AudioDeviceDestroyIOProcID(AudioObjectID device, AudioDeviceIOProcID procedure);
CF_EXPORT OSStatus AudioDeviceStart(AudioObjectID device, AudioDeviceIOProcID procedure);
CF_EXPORT OSStatus AudioDeviceStop(AudioObjectID device, AudioDeviceIOProcID procedure);
