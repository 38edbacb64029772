#include "tests/macos/runtime/Objects.h"

#include "tests/macos/runtime/Blocks.h"
#include "tests/macos/runtime/Classes.h"
#include "tests/macos/runtime/Ownership.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>
#include <set>
#include <unordered_map>
#include <vector>

// The functions that the compiler calls to count references.

namespace vorli::objc {

namespace {

// Header in front of each instance.
struct alignas(16) Header {
  std::atomic<int> references = 1;
  std::atomic<bool> isKept = false;
  std::atomic<bool> isDying = false;
  std::atomic<bool> hasWeak = false;
};

struct Census {
  std::mutex lock;
  std::map<std::string, long> counts;
};

Census& census() {
  static Census* const all = new Census;
  return *all;
}

struct WeakTable {
  std::recursive_mutex lock;
  std::unordered_map<id, std::set<id*>> places;
};

WeakTable& weakTable() {
  static WeakTable* const table = new WeakTable;
  return *table;
}

// Released when the thread ends, at the latest.
struct Pool {
  ~Pool() { drain(0); }
  void drain(std::size_t size) {
    while (objects.size() > size) {
      const id object = objects.back();
      objects.pop_back();
      objc_release(object);
    }
  }

  std::vector<id> objects;
};

Pool& pool() {
  static thread_local Pool own;
  return own;
}

Header& headerOf(id object) {
  return *(reinterpret_cast<Header*>(object) - 1);
}

// Constant strings, classes and protocols are part of the program's file.
bool isPartOfProgram(id object) {
  static const Class constantText = classNamed("VorliConstantText");
  const Class type = object->isa;
  return !type || type == constantText || (type->record->flags & isMetaclass) != 0;
}

bool isCounted(id object) {
  return !isPartOfProgram(object) && !headerOf(object).isKept && !headerOf(object).isDying;
}

void send(id object, const char* name) {
  const SEL selector = selectorOf(name);
  reinterpret_cast<void (*)(id, SEL)>(codeFor(classOf(object), selector))(object, selector);
}

id ask(id object, const char* name) {
  const SEL selector = selectorOf(name);
  return reinterpret_cast<id (*)(id, SEL)>(codeFor(classOf(object), selector))(object, selector);
}

void callForEachClass(id object, Class type, SEL selector) {
  if (!type) return;
  callForEachClass(object, type->super, selector);
  if (const IMP code = ownCodeFor(type, selector))
    reinterpret_cast<void (*)(id, SEL)>(code)(object, selector);
}

void forgetWeakReferences(id object) {
  const std::lock_guard guard(weakTable().lock);
  const auto places = weakTable().places.extract(object);
  if (places.empty()) return;
  for (id* const place : places.mapped()) *place = nullptr;
}

void setProperty(id self, std::ptrdiff_t offset, id value, bool copies) {
  id& place = *reinterpret_cast<id*>(reinterpret_cast<std::byte*>(self) + offset);
  const id kept = !value           ? nullptr
                  : isBlock(value) ? copyBlock(value)
                  : copies         ? ask(value, "copy")
                                   : objc_retain(value);
  const id old = place;
  place = kept;
  objc_release(old);
}

}  // namespace

Class classOf(id object) {
  static const Class root = classNamed("NSObject");
  return isBlock(object) ? root : object->isa;
}

id allocate(Class type) {
  void* const memory = std::calloc(1, sizeof(Header) + type->record->instanceSize);
  const id object = reinterpret_cast<id>(new (memory) Header + 1);
  object->isa = type;
  noteBirth(type->record->name);
  callForEachClass(object, type, selectorOf(".cxx_construct"));
  return object;
}

void destroy(id object) {
  const SEL destruct = selectorOf(".cxx_destruct");
  for (Class type = object->isa; type; type = type->super)
    if (const IMP code = ownCodeFor(type, destruct))
      reinterpret_cast<void (*)(id, SEL)>(code)(object, destruct);
  if (headerOf(object).hasWeak) forgetWeakReferences(object);
  noteDeath(object->isa->record->name);
  std::free(&headerOf(object));
}

std::map<std::string, long> living() {
  const std::lock_guard guard(census().lock);
  return census().counts;
}

void keepForEver(id object) {
  if (!headerOf(object).isKept.exchange(true)) noteDeath(object->isa->record->name);
}

long referencesTo(id object) {
  return headerOf(object).references;
}

void noteBirth(const char* type) {
  const std::lock_guard guard(census().lock);
  ++census().counts[type];
}

void noteDeath(const char* type) {
  const std::lock_guard guard(census().lock);
  if (--census().counts[type] == 0) census().counts.erase(type);
}

}  // namespace vorli::objc

using namespace vorli::objc;

extern "C" {

void* _objc_empty_cache = nullptr;

id objc_retain(id object) {
  if (!object) return object;
  if (isBlock(object)) return retainBlock(object);
  if (isCounted(object)) ++headerOf(object).references;
  return object;
}

void objc_release(id object) {
  if (!object) return;
  if (isBlock(object)) return releaseBlock(object);
  if (!isCounted(object)) return;
  const int left = --headerOf(object).references;
  if (left < 0) breakOff("released too often", object->isa->record->name);
  if (left > 0) return;
  headerOf(object).isDying = true;
  send(object, "dealloc");
}

id objc_autorelease(id object) {
  if (object) pool().objects.push_back(object);
  return object;
}

void* objc_autoreleasePoolPush() {
  return reinterpret_cast<void*>(pool().objects.size() + 1);
}

void objc_autoreleasePoolPop(void* token) {
  pool().drain(reinterpret_cast<std::size_t>(token) - 1);
}

id objc_autoreleaseReturnValue(id object) {
  return objc_autorelease(object);
}
id objc_retainAutoreleasedReturnValue(id object) {
  return objc_retain(object);
}
id objc_claimAutoreleasedReturnValue(id object) {
  return objc_retain(object);
}
id objc_unsafeClaimAutoreleasedReturnValue(id object) {
  return object;
}
id objc_retainAutorelease(id object) {
  return objc_autorelease(objc_retain(object));
}
id objc_retainAutoreleaseReturnValue(id object) {
  return objc_retainAutorelease(object);
}
id objc_retainBlock(id block) {
  return block ? copyBlock(block) : block;
}

void objc_storeStrong(id* place, id object) {
  objc_retain(object);
  const id old = *place;
  *place = object;
  objc_release(old);
}

id objc_storeWeak(id* place, id object) {
  const std::lock_guard guard(weakTable().lock);
  if (*place) {
    if (const auto old = weakTable().places.find(*place); old != weakTable().places.end())
      old->second.erase(place);
  }
  *place = object;
  if (object && !isBlock(object) && isCounted(object)) {
    weakTable().places[object].insert(place);
    headerOf(object).hasWeak = true;
  }
  return object;
}

id objc_initWeak(id* place, id object) {
  *place = nullptr;
  return objc_storeWeak(place, object);
}

void objc_destroyWeak(id* place) {
  objc_storeWeak(place, nullptr);
}

id objc_loadWeakRetained(id* place) {
  const std::lock_guard guard(weakTable().lock);
  const id object = *place;
  if (!object || (!isBlock(object) && !isPartOfProgram(object) && headerOf(object).isDying)) return nullptr;
  return objc_retain(object);
}

id objc_loadWeak(id* place) {
  return objc_autorelease(objc_loadWeakRetained(place));
}

void objc_copyWeak(id* to, id* from) {
  const id object = objc_loadWeakRetained(from);
  objc_initWeak(to, object);
  objc_release(object);
}

void objc_moveWeak(id* to, id* from) {
  objc_copyWeak(to, from);
  objc_destroyWeak(from);
}

id objc_alloc(id type) {
  return type ? ask(type, "alloc") : nullptr;
}
id objc_alloc_init(id type) {
  const id object = objc_alloc(type);
  return object ? ask(object, "init") : nullptr;
}
id objc_opt_new(id type) {
  return objc_alloc_init(type);
}
id objc_opt_self(id object) {
  return object;
}
Class objc_opt_class(id object) {
  return object ? reinterpret_cast<Class>(ask(object, "class")) : nullptr;
}

void objc_setProperty_nonatomic(id self, SEL, id value, std::ptrdiff_t offset) {
  setProperty(self, offset, value, false);
}
void objc_setProperty_atomic(id self, SEL, id value, std::ptrdiff_t offset) {
  setProperty(self, offset, value, false);
}
void objc_setProperty_nonatomic_copy(id self, SEL, id value, std::ptrdiff_t offset) {
  setProperty(self, offset, value, true);
}
void objc_setProperty_atomic_copy(id self, SEL, id value, std::ptrdiff_t offset) {
  setProperty(self, offset, value, true);
}
id objc_getProperty(id self, SEL, std::ptrdiff_t offset, BOOL) {
  return objc_retainAutorelease(*reinterpret_cast<id*>(reinterpret_cast<std::byte*>(self) + offset));
}
void objc_copyStruct(void* to, const void* from, std::ptrdiff_t size, BOOL, BOOL) {
  std::memcpy(to, from, static_cast<std::size_t>(size));
}

void objc_enumerationMutation(id collection) {
  breakOff("changed while it was enumerated", classOf(collection)->record->name);
}
}

// The compiler asks for this function where a block or method of the language may be passed by an exception
// of C++; nothing here throws one of its own.
__asm__(
    ".globl __objc_personality_v0\n.type __objc_personality_v0,@function\n"
    "__objc_personality_v0: jmp __gxx_personality_v0@PLT\n");
