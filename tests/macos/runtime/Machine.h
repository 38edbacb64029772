#pragma once

#import <Foundation/Foundation.h>
#include <map>
#include <string>
#include <vector>

namespace vorli::macfake {

/// The system's answers about itself, its bundles, files and the user's defaults.
struct Machine {
  NSUInteger processorCount = 8;
  NSUInteger activeProcessorCount = 6;
  unsigned long long physicalMemory = 17'179'869'184;
  NSProcessInfoThermalState thermalState = NSProcessInfoThermalStateNominal;
  bool isLowPower = false;
  NSOperatingSystemVersion version{14, 5, 0};

  NSMutableDictionary* bundles = [[NSMutableDictionary alloc] init];  // by path
  NSBundle* mainBundle = nil;
  bool canLoadBundles = true;
  bool decodingThrows = false;                      // by an object in an archive
  std::map<std::string, std::string> displayNames;  // of files, by path; these exist

  NSMutableDictionary* defaults = [[NSMutableDictionary alloc] init];
  int synchronizations = 0;

  std::vector<double> sleeps;

  std::vector<std::string> startedTools;                // each with its arguments, after a blank each
  std::map<std::string, std::string> toolsStandingFor;  // programs that are started instead, by path

  /// Nil: the system has no information.
  NSString* powerSource = nil;
  bool hasPowerSources = true;
};

Machine& machine();

}  // namespace vorli::macfake
