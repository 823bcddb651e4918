// What the operations of the ports over libcurl have in common: handles looked up, arguments turned
// into bytes, results stored for GetLastError, and no exception past a port.
#pragma once

#include <memory>
#include <new>
#include <string>
#include <string_view>

#include "platform/posix/http/handles.h"
#include "platform/posix/last_error.h"
#include "platform/text.h"

namespace velandoc::http {

inline HINTERNET NoHandle(DWORD error) {
  FailWith(error);
  return nullptr;
}

/// An operation that gives a handle: what `operation` returns, null with ERROR_NOT_ENOUGH_MEMORY if
/// it finds none.
template <class Operation>
HINTERNET MakeHandle(Operation operation) {
  try {
    return operation();
  } catch (const std::bad_alloc&) {
    return NoHandle(ERROR_NOT_ENOUGH_MEMORY);
  }
}

/// An operation on a request of this kind: `operation` gets it and returns ERROR_SUCCESS or the
/// reason.
template <class Request, class Operation>
BOOL WithRequest(HINTERNET handle, Operation operation) {
  try {
    const std::shared_ptr<Request> request = HandleTable::Get<Request>(handle);
    if (request == nullptr) return FALSE;
    const DWORD error = operation(*request);
    return error == ERROR_SUCCESS ? TRUE : FailWith(error);
  } catch (const std::bad_alloc&) {
    return FailWith(ERROR_NOT_ENOUGH_MEMORY);
  }
}

/// A block of header lines; `length` in characters, -1 (also as DWORD) for a null-ended text.
std::string HeaderText(LPCWSTR text, DWORD length);

/// The value of Accept for a null-ended list; empty for null.
std::string AcceptHeader(const LPCWSTR* acceptTypes);

/// The verb as bytes, "GET" for none.
std::string VerbText(LPCWSTR verb);

/// Whether a verb is one word that can stand in a request line.
bool IsToken(std::string_view text);

/// A connect handle of the session. ERROR_INVALID_PARAMETER for null and for an empty name.
HINTERNET OpenConnect(HINTERNET sessionHandle, LPCWSTR serverName, INTERNET_PORT port);

/// A request handle of this kind. ERROR_INVALID_PARAMETER for a verb that is no single word.
template <class Request>
HINTERNET OpenRequest(HINTERNET connectHandle, LPCWSTR verb, LPCWSTR objectName, LPCWSTR version,
                      LPCWSTR referrer, const LPCWSTR* acceptTypes, DWORD flags) {
  return MakeHandle([&]() -> HINTERNET {
    auto connect = HandleTable::Get<Connect>(connectHandle);
    if (connect == nullptr) return nullptr;
    std::string verbText = VerbText(verb);
    // Always HTTP/1.1, and never a referrer.
    if (version != nullptr || referrer != nullptr || !IsToken(verbText)) {
      return NoHandle(ERROR_INVALID_PARAMETER);
    }
    return HandleTable::Open(
        std::make_shared<Request>(std::move(connect), std::move(verbText),
                                  objectName != nullptr ? WideView(objectName) : WideView(),
                                  AcceptHeader(acceptTypes), flags),
        connectHandle);
  });
}

}  // namespace velandoc::http
