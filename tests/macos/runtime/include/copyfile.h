#pragma once

typedef struct vorli_copyfile_state* copyfile_state_t;
typedef unsigned copyfile_flags_t;

#define COPYFILE_METADATA 7u

extern "C" int fcopyfile(int from, int to, copyfile_state_t state, copyfile_flags_t flags);
