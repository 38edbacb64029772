#pragma once

#include_next <stdio.h>

#define RENAME_SWAP 2u
#define RENAME_EXCL 4u

extern "C" {
int renamex_np(const char* from, const char* to, unsigned flags);
int renameatx_np(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags);
}
