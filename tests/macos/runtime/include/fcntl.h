#pragma once

#include_next <fcntl.h>
#include <sys/stat.h>

#define O_EVTONLY O_PATH
