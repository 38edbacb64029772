#include "tests/macos/runtime/Blocks.h"

#include "tests/macos/runtime/Objects.h"
#include "tests/macos/runtime/Ownership.h"

#include <cstdlib>
#include <cstring>

// Blocks and the variables that they share, as the compiler lays them out.

extern "C" {
void* _NSConcreteStackBlock[32];
void* _NSConcreteMallocBlock[32];
void* _NSConcreteGlobalBlock[32];
}

namespace vorli::objc {

namespace {

constexpr int isOnHeap = 1 << 24;
constexpr int hasHelpers = 1 << 25;
constexpr int isGlobal = 1 << 28;
constexpr int ownersMask = 0xfffe;
constexpr int oneOwner = 2;

constexpr int fieldMask = 0x7f;
constexpr int fieldIsObject = 3;
constexpr int fieldIsBlock = 7;
constexpr int fieldIsVariable = 8;
constexpr int fieldIsWeak = 16;
constexpr int fieldInVariable = 128;

struct Descriptor {
  unsigned long reserved;
  unsigned long size;
  void (*copy)(void* to, const void* from);
  void (*dispose)(const void* block);
};

struct Block {
  void* isa;
  int flags;
  int reserved;
  void (*invoke)();
  Descriptor* descriptor;
};

struct Variable {
  void* isa;
  Variable* current;  // itself, or its copy on the heap
  int flags;
  unsigned size;
  void (*keep)(Variable* to, Variable* from);
  void (*destroy)(Variable* variable);
};

constexpr const char* blockName = "block";
constexpr const char* variableName = "variable of a block";

int addOwners(int& flags, int count) {
  return __atomic_add_fetch(&flags, count, __ATOMIC_SEQ_CST) & ownersMask;
}

Block* asBlock(const void* block) {
  return static_cast<Block*>(const_cast<void*>(block));
}

Variable* moveToHeap(Variable* variable) {
  if (variable->current->flags & isOnHeap) {
    addOwners(variable->current->flags, oneOwner);
    return variable->current;
  }
  auto* const moved = static_cast<Variable*>(std::malloc(variable->size));
  std::memcpy(moved, variable, variable->size);
  // Two owners: the block and the function whose variable it is.
  moved->flags = (variable->flags & ~ownersMask) | isOnHeap | 2 * oneOwner;
  moved->current = moved;
  variable->current = moved;
  noteBirth(variableName);
  if (variable->flags & hasHelpers) moved->keep(moved, variable);
  return moved;
}

void release(Variable* variable) {
  Variable* const current = variable->current;
  if (!(current->flags & isOnHeap) || addOwners(current->flags, -oneOwner) != 0) return;
  if (current->flags & hasHelpers) current->destroy(current);
  noteDeath(variableName);
  std::free(current);
}

}  // namespace

bool isBlock(id object) {
  const void* const type = object->isa;
  return type == _NSConcreteStackBlock || type == _NSConcreteMallocBlock || type == _NSConcreteGlobalBlock;
}

id copyBlock(id object) {
  Block* const block = asBlock(object);
  if (block->flags & isGlobal) return object;
  if (block->flags & isOnHeap) {
    addOwners(block->flags, oneOwner);
    return object;
  }
  auto* const moved = static_cast<Block*>(std::malloc(block->descriptor->size));
  std::memcpy(moved, block, block->descriptor->size);
  moved->flags = (moved->flags & ~ownersMask) | isOnHeap | oneOwner;
  moved->isa = _NSConcreteMallocBlock;
  noteBirth(blockName);
  if (moved->flags & hasHelpers) moved->descriptor->copy(moved, block);
  return reinterpret_cast<id>(moved);
}

id retainBlock(id object) {
  Block* const block = asBlock(object);
  if (block->flags & isOnHeap) addOwners(block->flags, oneOwner);
  return object;
}

void releaseBlock(id object) {
  Block* const block = asBlock(object);
  if ((block->flags & isGlobal) || !(block->flags & isOnHeap)) return;
  if (addOwners(block->flags, -oneOwner) != 0) return;
  if (block->flags & hasHelpers) block->descriptor->dispose(block);
  noteDeath(blockName);
  std::free(block);
}

}  // namespace vorli::objc

using namespace vorli::objc;

extern "C" {

void* _Block_copy(const void* block) {
  return block ? copyBlock(reinterpret_cast<id>(const_cast<void*>(block))) : nullptr;
}

void _Block_release(const void* block) {
  if (block) releaseBlock(reinterpret_cast<id>(const_cast<void*>(block)));
}

void _Block_object_assign(void* place, const void* value, const int field) {
  void*& kept = *static_cast<void**>(place);
  void* const object = const_cast<void*>(value);
  const int kind = field & fieldMask;
  if (kind == fieldIsVariable || kind == (fieldIsVariable | fieldIsWeak)) {
    kept = moveToHeap(static_cast<Variable*>(object));
  } else if (field & fieldInVariable || !object) {
    kept = object;  // moved, or nothing to keep
  } else if (kind == fieldIsBlock) {
    kept = copyBlock(static_cast<id>(object));
  } else {
    kept = kind == fieldIsObject ? objc_retain(static_cast<id>(object)) : object;
  }
}

void _Block_object_dispose(const void* value, const int field) {
  void* const object = const_cast<void*>(value);
  const int kind = field & fieldMask;
  if (kind == fieldIsVariable || kind == (fieldIsVariable | fieldIsWeak))
    return release(static_cast<Variable*>(object));
  if (field & fieldInVariable || !object) return;
  if (kind == fieldIsBlock) releaseBlock(static_cast<id>(object));
  if (kind == fieldIsObject) objc_release(static_cast<id>(object));
}
}
