#pragma once

#include <cstdint>
#include <objc/objc.h>

// The records that the compiler writes for each class, category and protocol.

namespace vorli::objc {

struct Method {
  SEL name;
  const char* types;
  IMP code;
};

template <typename Entry>
struct List {
  std::uint32_t entrySize;  // the lowest two bits are flags
  std::uint32_t count;

  Entry* begin() { return reinterpret_cast<Entry*>(this + 1); }
  Entry* end() { return begin() + count; }
};
using MethodList = List<Method>;

struct Ivar {
  std::int32_t* offset;
  const char* name;
  const char* type;
  std::uint32_t alignment;
  std::uint32_t size;
};
using IvarList = List<Ivar>;

struct ProtocolList;

struct ProtocolRecord {
  void* isa;
  const char* name;
  ProtocolList* protocols;
};

struct ProtocolList {
  std::uintptr_t count;
  ProtocolRecord* entries[];
};

struct ClassRecord {
  std::uint32_t flags;
  std::uint32_t instanceStart;
  std::uint32_t instanceSize;
  const std::uint8_t* ivarLayout;
  const char* name;
  MethodList* methods;
  ProtocolList* protocols;
  IvarList* ivars;
  const std::uint8_t* weakIvarLayout;
  void* properties;
};

constexpr std::uint32_t isMetaclass = 1;

struct Category {
  const char* name;
  Class extended;
  MethodList* methods;
  MethodList* classMethods;
};

}  // namespace vorli::objc

struct objc_class {
  Class isa;
  Class super;
  void* cache;
  void* table;
  vorli::objc::ClassRecord* record;
};
