#pragma once

// The status of a file with the fields that it has on a Mac.

#include <stdint.h>
#include_next <sys/stat.h>

struct vorli_stat : stat {
  timespec st_birthtimespec;
  uint32_t st_flags;
};

extern "C" {
int vorli_lstat(const char* path, struct vorli_stat* status);
int vorli_stat(const char* path, struct vorli_stat* status);
int vorli_fstat(int file, struct vorli_stat* status);
int vorli_fstatat(int folder, const char* path, struct vorli_stat* status, int flags);
}

#define st_atimespec st_atim
#define st_mtimespec st_mtim
#define stat vorli_stat
#define lstat vorli_lstat
#define fstat vorli_fstat
#define fstatat vorli_fstatat
