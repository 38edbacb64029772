#pragma once

#include "ports/StartupFiles.h"

#include <string>

namespace vorli {

/// Frees `path`, the longer name of an item that is about to be put away, if an earlier file of the item
/// still has it: that file gets a number. Nothing is deleted, and the path stays in use only on a failure.
/// Called on a worker.
void makeRoom(ports::StartupFiles& files, const std::string& path);

}  // namespace vorli
