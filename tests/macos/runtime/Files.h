#pragma once

#include <map>
#include <set>
#include <string>
#include <sys/types.h>
#include <vector>

namespace vorli::macfake {

/// The files are real ones of this system. This is the state that only a Mac has.
struct Files {
  std::map<ino_t, unsigned> flags;
  bool keepsFlags = true;  // of a copy
  bool canSwap = true;     // the file system knows how to swap two names, and to rename without replacing
  /// Files and folders that look as if root owned them and nobody else could change them.
  std::set<ino_t> trusted;
  /// Lists of access, by file: true for each entry that grants something.
  std::map<ino_t, std::vector<bool>> lists;
  bool canReadLists = true;
  /// Runs once, right after the next rename.
  void (*afterRename)() = nullptr;
};

Files& files();

/// Signals that the code under test has sent: "number to pid".
struct Signals {
  std::vector<std::string> sent;
  int failure = 0;  // errno of the next one
};

Signals& signals();

}  // namespace vorli::macfake
