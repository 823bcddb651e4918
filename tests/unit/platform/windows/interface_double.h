// Interfaces with more operations than a test has use for: an object that answers E_NOTIMPL to all
// but those that the test sets, and a scope in which one operation of the system's own objects is
// replaced.
//
// Both know the compiler's tables: a pointer to a virtual function of a class with one base is its
// offset in the table and one, and an operation may be called with any arguments since the caller
// takes them off the stack.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>

#include "platform/com.h"

namespace velandoc::test {

/// The place of an operation in its interface's table.
template <class Method>
std::size_t SlotOf(Method method) {
  std::uintptr_t offset = 0;
  static_assert(sizeof(method) >= sizeof(offset));
  std::memcpy(&offset, &method, sizeof(offset));
  return (offset - 1) / sizeof(void*);
}

/// An object of the test's own; derived classes add what its operations need. It outlives who
/// holds it, and fails the test if a reference is left.
template <class Interface>
class InterfaceDouble {
 public:
  InterfaceDouble() {
    m_table.fill(reinterpret_cast<void*>(&Refuse));
    // IUnknown's own, first in every table.
    m_table[0] = reinterpret_cast<void*>(&Query);
    m_table[1] = reinterpret_cast<void*>(&Add);
    m_table[2] = reinterpret_cast<void*>(&Drop);
  }
  InterfaceDouble(const InterfaceDouble&) = delete;
  InterfaceDouble& operator=(const InterfaceDouble&) = delete;

  Interface* Get() { return reinterpret_cast<Interface*>(&m_object); }

 protected:
  ~InterfaceDouble() { EXPECT_EQ(m_references, 0U) << "references are left"; }

  /// `answer` takes the object as its first argument, and OwnerOf finds this class by it.
  template <class Method, class Answer>
  void Set(Method method, Answer* answer) {
    m_table.at(SlotOf(method)) = reinterpret_cast<void*>(answer);
  }
  static InterfaceDouble& OwnerOf(Interface* object) {
    return *reinterpret_cast<Object*>(object)->owner;
  }

 private:
  struct Object {
    void** table;
    InterfaceDouble* owner;
  };

  static HRESULT Refuse() { return E_NOTIMPL; }
  static HRESULT Query(Interface* object, REFIID riid, void** found) {
    const bool known = IsEqualIID(riid, __uuidof(Interface)) || IsEqualIID(riid, IID_IUnknown) ||
                       IsEqualIID(riid, IID_IDispatch);
    *found = known ? object : nullptr;
    if (known) ++OwnerOf(object).m_references;
    return known ? S_OK : E_NOINTERFACE;
  }
  static ULONG Add(Interface* object) { return ++OwnerOf(object).m_references; }
  static ULONG Drop(Interface* object) { return --OwnerOf(object).m_references; }

  std::array<void*, 200> m_table{};
  Object m_object{m_table.data(), this};
  ULONG m_references = 0;
};

/// Replaces one operation in all objects that share `object`'s table.
template <class Interface>
class ReplacedOperation {
 public:
  template <class Method, class Answer>
  ReplacedOperation(Interface* object, Method method, Answer* answer)
      : m_slot(*reinterpret_cast<void***>(object) + SlotOf(method)), m_original(*m_slot) {
    Write(reinterpret_cast<void*>(answer));
  }
  ~ReplacedOperation() { Write(m_original); }
  ReplacedOperation(const ReplacedOperation&) = delete;
  ReplacedOperation& operator=(const ReplacedOperation&) = delete;

  /// The system's own one.
  template <class Operation>
  Operation* Original() const {
    return reinterpret_cast<Operation*>(m_original);
  }

 private:
  void Write(void* operation) {
    DWORD protection = 0;
    VirtualProtect(m_slot, sizeof(void*), PAGE_READWRITE, &protection);
    *m_slot = operation;
    VirtualProtect(m_slot, sizeof(void*), protection, &protection);
  }

  void** const m_slot;
  void* const m_original;
};

}  // namespace velandoc::test
