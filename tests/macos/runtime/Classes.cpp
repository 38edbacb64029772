#include "tests/macos/runtime/Classes.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

// The linker gives the bounds of a section under these names.
#define VORLI_SECTION(name, Type)                                               \
  extern "C" __attribute__((weak, visibility("hidden"))) Type __start_##name[]; \
  extern "C" __attribute__((weak, visibility("hidden"))) Type __stop_##name[]

VORLI_SECTION(objc_classlist, Class);
VORLI_SECTION(objc_catlist, vorli::objc::Category*);
VORLI_SECTION(objc_selrefs, SEL);

namespace vorli::objc {

namespace {

struct Tables {
  std::recursive_mutex lock;
  std::unordered_map<std::string, SEL> selectors;
  std::unordered_map<std::string, Class> classes;
  std::set<Class> ready;
  std::map<Class, std::vector<MethodList*>> categories;
  std::map<std::pair<Class, SEL>, IMP> found;
};

// Never destroyed: objects may be released while the program ends.
Tables& tables() {
  static Tables* const all = new Tables;
  return *all;
}

void internNames(MethodList* methods) {
  if (!methods) return;
  for (Method& method : *methods) method.name = selectorOf(reinterpret_cast<const char*>(method.name));
}

// The compiler does not know the size of a superclass that another file implements.
void moveBehindSuperclass(ClassRecord& record, const ClassRecord& super) {
  if (record.instanceStart >= super.instanceSize) return;
  constexpr std::uint32_t alignment = 8;
  const std::uint32_t distance =
      (super.instanceSize - record.instanceStart + alignment - 1) / alignment * alignment;
  if (record.ivars) {
    for (const Ivar& ivar : *record.ivars)
      if (ivar.offset) *ivar.offset += static_cast<std::int32_t>(distance);
  }
  record.instanceStart += distance;
  record.instanceSize += distance;
}

void prepare(Class type) {
  if (!type || !tables().ready.insert(type).second) return;
  prepare(type->super);
  if (type->super) moveBehindSuperclass(*type->record, *type->super->record);
  internNames(type->record->methods);
  internNames(type->isa->record->methods);
  tables().classes[type->record->name] = type;
}

void addCategory(const Category& category) {
  internNames(category.methods);
  internNames(category.classMethods);
  if (category.methods) tables().categories[category.extended].push_back(category.methods);
  if (category.classMethods) tables().categories[category.extended->isa].push_back(category.classMethods);
}

// Runs before all other code of the program that is called at its start.
[[gnu::constructor(101)]] void loadClasses() {
  for (SEL* each = __start_objc_selrefs; each < __stop_objc_selrefs; ++each)
    *each = selectorOf(reinterpret_cast<const char*>(*each));
  for (Class* each = __start_objc_classlist; each < __stop_objc_classlist; ++each) prepare(*each);
  for (Category** each = __start_objc_catlist; each < __stop_objc_catlist; ++each) addCategory(**each);
}

IMP codeIn(MethodList* methods, SEL selector) {
  if (!methods) return nullptr;
  for (const Method& method : *methods)
    if (method.name == selector) return method.code;
  return nullptr;
}

IMP search(Class type, SEL selector) {
  for (; type; type = type->super) {
    if (const auto added = tables().categories.find(type); added != tables().categories.end()) {
      for (MethodList* const methods : added->second)
        if (const IMP code = codeIn(methods, selector)) return code;
    }
    if (const IMP code = ownCodeFor(type, selector)) return code;
  }
  return nullptr;
}

bool names(const ProtocolList* list, const char* name) {
  if (!list) return false;
  for (std::uintptr_t index = 0; index < list->count; ++index) {
    const ProtocolRecord& entry = *list->entries[index];
    if (std::strcmp(entry.name, name) == 0 || names(entry.protocols, name)) return true;
  }
  return false;
}

}  // namespace

SEL selectorOf(const char* name) {
  const std::lock_guard guard(tables().lock);
  SEL& selector = tables().selectors[name];
  if (!selector) selector = reinterpret_cast<SEL>(strdup(name));
  return selector;
}

Class classNamed(const char* name) {
  const std::lock_guard guard(tables().lock);
  const auto found = tables().classes.find(name);
  return found == tables().classes.end() ? nullptr : found->second;
}

IMP codeFor(Class type, SEL selector) {
  const std::lock_guard guard(tables().lock);
  IMP& code = tables().found[{type, selector}];
  if (!code) code = search(type, selector);
  return code;
}

IMP ownCodeFor(Class type, SEL selector) {
  return codeIn(type->record->methods, selector);
}

bool isKind(Class type, Class other) {
  for (; type; type = type->super)
    if (type == other) return true;
  return false;
}

bool conforms(Class type, const ProtocolRecord& protocol) {
  for (; type; type = type->super)
    if (names(type->record->protocols, protocol.name)) return true;
  return false;
}

void breakOff(const char* what, const char* which) {
  std::fprintf(stderr, "%s: %s\n", what, which);
  std::abort();
}

}  // namespace vorli::objc
