#include "posix/Folders.h"

#include "posix/FileModes.h"

#include <sys/stat.h>

namespace vorli::posix {

bool isFolder(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

void makeFoldersAbove(const std::string& path) {
  for (auto slash = path.find('/', 1); slash != std::string::npos; slash = path.find('/', slash + 1))
    mkdir(path.substr(0, slash).c_str(), folderMode);
}

}  // namespace vorli::posix
