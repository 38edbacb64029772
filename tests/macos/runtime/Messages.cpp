#include "tests/macos/runtime/Classes.h"
#include "tests/macos/runtime/Objects.h"

// Sends a message: finds the method's code and jumps there with all arguments unchanged.

using namespace vorli::objc;

namespace {

const char* nameOf(SEL selector) {
  return reinterpret_cast<const char*>(selector);
}

}  // namespace

extern "C" {

[[gnu::used]] IMP vorli_code_for_receiver(id receiver, SEL selector) {
  const IMP code = codeFor(classOf(receiver), selector);
  if (!code) breakOff(classOf(receiver)->record->name, nameOf(selector));
  return code;
}

struct Super {
  id receiver;
  Class type;  // whose superclass is meant
};

[[gnu::used]] IMP vorli_code_for_super(const Super* call, SEL selector) {
  const IMP code = codeFor(call->type->super, selector);
  if (!code) breakOff(call->type->record->name, nameOf(selector));
  return code;
}
}

// Every register that can hold an argument is kept across the search.
#define VORLI_KEEP                                                                     \
  "push %rbp\n mov %rsp,%rbp\n sub $192,%rsp\n"                                        \
  "mov %rdi,-8(%rbp)\n mov %rsi,-16(%rbp)\n mov %rdx,-24(%rbp)\n mov %rcx,-32(%rbp)\n" \
  "mov %r8,-40(%rbp)\n mov %r9,-48(%rbp)\n mov %rax,-56(%rbp)\n"                       \
  "movups %xmm0,-80(%rbp)\n movups %xmm1,-96(%rbp)\n movups %xmm2,-112(%rbp)\n"        \
  "movups %xmm3,-128(%rbp)\n movups %xmm4,-144(%rbp)\n movups %xmm5,-160(%rbp)\n"      \
  "movups %xmm6,-176(%rbp)\n movups %xmm7,-192(%rbp)\n"
#define VORLI_RESTORE                                                                  \
  "mov %rax,%r11\n"                                                                    \
  "mov -8(%rbp),%rdi\n mov -16(%rbp),%rsi\n mov -24(%rbp),%rdx\n mov -32(%rbp),%rcx\n" \
  "mov -40(%rbp),%r8\n mov -48(%rbp),%r9\n mov -56(%rbp),%rax\n"                       \
  "movups -80(%rbp),%xmm0\n movups -96(%rbp),%xmm1\n movups -112(%rbp),%xmm2\n"        \
  "movups -128(%rbp),%xmm3\n movups -144(%rbp),%xmm4\n movups -160(%rbp),%xmm5\n"      \
  "movups -176(%rbp),%xmm6\n movups -192(%rbp),%xmm7\n leave\n"

// A message to nil returns zero in every register that can hold a result.
__asm__(
    ".text\n"
    ".globl objc_msgSend\n.type objc_msgSend,@function\n"
    "objc_msgSend:\n"
    "test %rdi,%rdi\n jz 1f\n" VORLI_KEEP "call vorli_code_for_receiver\n" VORLI_RESTORE
    "jmp *%r11\n"
    "1: xor %eax,%eax\n xor %edx,%edx\n pxor %xmm0,%xmm0\n pxor %xmm1,%xmm1\n ret\n"
    ".size objc_msgSend,.-objc_msgSend\n");

// The first argument is the place for the result; the compiler clears it itself when the receiver is nil.
__asm__(
    ".globl objc_msgSend_stret\n.type objc_msgSend_stret,@function\n"
    "objc_msgSend_stret:\n"
    "test %rsi,%rsi\n jz 1f\n" VORLI_KEEP
    "mov %rsi,%rdi\n mov %rdx,%rsi\n call vorli_code_for_receiver\n" VORLI_RESTORE
    "jmp *%r11\n"
    "1: mov %rdi,%rax\n ret\n"
    ".size objc_msgSend_stret,.-objc_msgSend_stret\n");

__asm__(
    ".globl objc_msgSendSuper2\n.type objc_msgSendSuper2,@function\n"
    "objc_msgSendSuper2:\n" VORLI_KEEP "call vorli_code_for_super\n" VORLI_RESTORE
    "mov (%rdi),%rdi\n jmp *%r11\n"
    ".size objc_msgSendSuper2,.-objc_msgSendSuper2\n");
