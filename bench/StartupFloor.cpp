#include "bench/StartupFloor.h"

#include "posix/FileDescriptor.h"

#include <array>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <unistd.h>

namespace vorli::bench {

StartupFloor::StartupFloor(const std::vector<std::string>& folders) {
  std::error_code missing;
  for (const auto& folder : folders) {
    if (!std::filesystem::is_directory(folder, missing)) continue;
    folders_.push_back(folder);
    for (const auto& entry : std::filesystem::directory_iterator(folder))
      if (entry.is_directory()) folders_.push_back(entry.path().string());
  }
}

std::size_t StartupFloor::pass() const {
  std::size_t files = 0;
  for (const auto& folder : folders_) {
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(opendir(folder.c_str()), closedir);
    while (const dirent* entry = entries ? readdir(entries.get()) : nullptr) {
      if (entry->d_type != DT_REG) continue;
      const posix::FileDescriptor file(openat(dirfd(entries.get()), entry->d_name, O_RDONLY | O_CLOEXEC));
      if (!file) continue;
      std::array<char, 4096> text;
      while (read(file.get(), text.data(), text.size()) > 0) continue;
      ++files;
    }
  }
  return files;
}

}  // namespace vorli::bench
