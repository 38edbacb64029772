#pragma once

// The registers of an interrupted thread, by the names that they have on a Mac with an Intel processor.

#define ucontext_t vorli_own_ucontext
#include_next <sys/ucontext.h>
#undef ucontext_t

struct vorli_thread_state {
  unsigned long __rip;
  unsigned long __rsp;
};

struct vorli_machine_context {
  vorli_thread_state __ss;
};

struct vorli_ucontext {
  vorli_machine_context* uc_mcontext;
};
typedef vorli_ucontext ucontext_t;
