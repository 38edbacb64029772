#pragma once

#include <stdint.h>

#define N_STAB 0xe0
#define N_TYPE 0x0e
#define N_SECT 0xe

struct nlist_64 {
  union {
    uint32_t n_strx;
  } n_un;
  uint8_t n_type;
  uint8_t n_sect;
  uint16_t n_desc;
  uint64_t n_value;
};
