// CConnectionError: what an HDFS client learned about its latest failure, for its host to read.
//
// Made by a client, never by a class factory. Apartment-threaded, the count not interlocked. A host
// may keep one: the client makes a new one for the next request and leaves this one alone.
#pragma once

#include "platform/atl/com_object.h"
#include "platform/dispatch_impl.h"
#include "platform/text.h"
#include "velandoc_idl.h"

namespace velandoc {

class CConnectionError
    : public IDispatchImpl<IConnectionError, &IID_IConnectionError, &LIBID_VelandocLib, 1, 0>,
      public CComObjectRootEx<CComSingleThreadModel> {
 public:
  BEGIN_COM_MAP(CConnectionError)
  COM_INTERFACE_ENTRY(IConnectionError)
  COM_INTERFACE_ENTRY(IDispatch)
  END_COM_MAP()

  /// The status of the answer, 0 if there was none. E_POINTER for null.
  STDMETHODIMP get_HttpCode(LONG* HttpCode) override;
  /// A new BSTR: what went wrong in words, or the server's own text; empty after a success.
  /// E_POINTER for null; E_OUTOFMEMORY with null stored.
  STDMETHODIMP get_Message(BSTR* Message) override;

  // Hosts only read; the client writes.
  WideString m_message;
  LONG m_httpCode = 0;

 protected:
  ~CConnectionError() = default;
};

/// Describes a failed read of a body in `errorObject`: the words for `code`, which is a plain
/// system error and is taken as if it were an HRESULT, or row 103 of the string table when it is 0.
/// The status stays, and the thread's error object is left alone. Does nothing for null and for an
/// object that is no CConnectionError. Raises `_com_error` with E_OUTOFMEMORY.
void SetConnectionErrorText(IConnectionError* errorObject, LONG code);

}  // namespace velandoc
