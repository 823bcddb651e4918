// The DOM with faults: while a FaultDom stands, documents come from a class object of its own that
// hands out the real ones behind wrappers, and the N-th operation on any of them fails without
// reaching the real one.
#pragma once

#include <string>
#include <vector>

#include "platform/msxml.h"
#include "platform/owners.h"

namespace velandoc::testing {

/// COM for the calling thread, for the length of a scope.
class ComScope {
 public:
  ComScope();
  ~ComScope();
  ComScope(const ComScope&) = delete;
  ComScope& operator=(const ComScope&) = delete;
};

/// Counts making a document, asking it for IXMLDOMDocument2, and every operation of documents,
/// nodes, lists and maps that the component uses. The operations that it does not use answer
/// E_NOTIMPL. One at a time, within a ComScope.
class FaultDom {
 public:
  /// `failAt` counts from 1; 0 never fails.
  FaultDom(int failAt, HRESULT error);
  /// A wrapper that is still held is a failure of the test.
  ~FaultDom();
  FaultDom(const FaultDom&) = delete;
  FaultDom& operator=(const FaultDom&) = delete;

  int Count() const { return static_cast<int>(operations.size()); }

  /// The operations by name, in order.
  std::vector<std::string> operations;
  /// The names of the nodes whose last reference was released, in order.
  std::vector<std::string> released;
  /// loadXML answers S_FALSE and VARIANT_FALSE.
  bool refuseText = false;

  // For the wrappers.
  bool Fails(const char* operation);
  HRESULT Error() const { return m_error; }
  IClassFactory* RealClass() const { return m_realClass.Get(); }
  int alive = 0;

 private:
  int m_failAt;
  HRESULT m_error;
  ComPtr<IClassFactory> m_realClass;
  DWORD m_cookie = 0;
};

}  // namespace velandoc::testing
