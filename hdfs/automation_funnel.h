// The funnel: the outer shape of most methods of the HDFS clients. It turns every exception of a
// method's body into an HRESULT, writes one line to the debugger, and passes on the error object
// that came with the exception.
//
//   STDMETHODIMP CHdfsClient::Download(...) {
//     return AutomationFunnel("CHdfsClient::Download", [&]() -> FunnelResult {
//       if (...) return E_INVALIDARG;
//       ...
//       return S_OK;
//     });
//   }
//
// It stands in this folder because only its classes have it. The other automation methods of the
// component enter the module state and catch nothing; the unevenness is settled, and scripts know
// it.
#pragma once

#include <memory>
#include <type_traits>

#include "platform/com.h"

namespace velandoc {

/// How a body ends without an exception.
struct FunnelResult {
  /// Plain: the method's result, whatever it is, and no debugger line. Not explicit: a body returns
  /// HRESULTs.
  FunnelResult(HRESULT result) : hr(result) {}

  HRESULT hr;
  bool writesFailure = false;
};

/// For the few bodies whose failed result is treated like a caught exception: a negative `hr`
/// writes the debugger line before the method returns it.
inline FunnelResult WriteIfFailed(HRESULT hr) {
  FunnelResult result(hr);
  result.writesFailure = true;
  return result;
}

using FunnelBody = FunnelResult (*)(void* body);

/// The funnel without the body's type.
HRESULT RunAutomationFunnel(const char* method, FunnelBody call, void* body);

/// Runs `body` in the module state of this library, with the thread's error object cleared first.
/// `method` is "Class::method", ASCII, as developers know it from the debugger.
///
/// What each exception gives, as the result, the line's text and the thread's error object:
/// - COleException*: its m_sc; the system's text; none.
/// - CException*: E_FAIL; its own text, or else the system's; none.
/// - _com_error: its Error(); its Description(), or else the system's text; the one that came with
///   it.
/// - anything else: E_FAIL; the system's text; none.
///
/// The line is "Exception in automation method [Class::method]: text". An exception that carries a
/// success code ends the method with that code and without a line. The error object that a
/// _com_error brought keeps the reference that was taken to hand it on.
///
/// One exception leaves the method: `_com_error` with E_OUTOFMEMORY, when there is no memory for
/// the line.
template <class Body>
HRESULT AutomationFunnel(const char* method, Body&& body) {
  using Callable = std::remove_reference_t<Body>;
  return RunAutomationFunnel(
      method, [](void* callable) -> FunnelResult { return (*static_cast<Callable*>(callable))(); },
      const_cast<void*>(static_cast<const void*>(std::addressof(body))));
}

}  // namespace velandoc
