#pragma once

// Describes the sound that a tap listens to.

#include <CoreAudio/CoreAudio.h>

NS_ASSUME_NONNULL_BEGIN

typedef NS_ENUM(NSInteger, CATapMuteBehavior) {
  CATapUnmuted = 0,
};

@interface CATapDescription : NSObject
- (instancetype)initStereoMixdownOfProcesses:(NSArray<NSNumber*>*)processes;
- (void)setName:(NSString*)name;
- (void)setPrivate:(BOOL)isPrivate;
- (void)setMuteBehavior:(CATapMuteBehavior)behavior;
@end

NS_ASSUME_NONNULL_END
