#pragma once

#import <CoreAudio/AudioHardwareTapping.h>
#import <CoreAudio/CATapDescription.h>
#import <CoreAudio/CoreAudio.h>
#include <string>
#include <vector>

namespace vorli::macfake {

/// The sound system: its objects, its calls in order, and the call that fails.
struct Sound {
  std::vector<std::string> calls;
  std::vector<std::string> open;  // that nobody has destroyed yet
  NSDictionary* device = nil;     // the last one's description
  /// The call that fails, by its name in `calls`, and its error.
  std::string failing;
  OSStatus error = 0;
  bool createsNothing = false;  // the failing call returns success and no object

  std::vector<std::vector<float>> buffers;  // of one call of the procedure, made while the program sleeps
  bool hasDefaultDevice = true;
  UInt32 isRunning = 0;
  AudioDeviceIOBlock procedure = nil;

  /// Calls the procedure once with `buffers`, as the sound system's thread does.
  void play();
};

Sound& sound();

}  // namespace vorli::macfake
