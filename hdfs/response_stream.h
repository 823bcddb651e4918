// CHdfsIStreamOut: a read-only IStream over the body of a response whose request has been sent. It
// lets a host read a file without a local copy.
//
// Apartment-threaded, no lock. A stream owns its connection and has no link to the client that made
// it, which may go away first; it keeps the module loaded. No member makes an error object or
// touches a client's ConnectionError: the results are all there is.
#pragma once

#include <memory>

#include "connection/winhttp_connection.h"
#include "connection/wininet_connection.h"
#include "platform/atl/com_object.h"
#include "platform/mfc/module_state.h"
#include "platform/owners.h"

namespace velandoc {

/// At most `size` bytes of the body. False if the read failed; `read` is then what the platform
/// made of it.
bool ReadResponseBody(CWinInetConnection& connection, void* buffer, ULONG size, ULONG& read);
/// The same request once more, for the body from its first byte: S_OK, or the failure of the
/// connection's Resend, which takes no other status than 200.
HRESULT RewindResponse(CWinInetConnection& connection);

/// The same over WinHTTP. It asks first whether there is more: where there is not, the read is done
/// with 0 bytes.
bool ReadResponseBody(CWinHttpConnection& connection, void* buffer, ULONG size, ULONG& read);
/// The same over WinHTTP: S_OK for every answer, whatever its status, or the failure of OpenRequest
/// or Execute. Execute opens a request of its own, so the one opened here before it is overwritten
/// and stays open.
HRESULT RewindResponse(CWinHttpConnection& connection);

/// `Connection` is a class derived from one of the two, by its own name, and a final one over
/// WinHTTP: that connection has no virtual destructor.
template <class Connection>
class CHdfsIStreamOut : public IStream, public CComObjectRootEx<CComSingleThreadModel> {
 public:
  // Not ISequentialStream: a query for it has always failed.
  BEGIN_COM_MAP(CHdfsIStreamOut)
  COM_INTERFACE_ENTRY(IStream)
  END_COM_MAP()

  /// S_OK for exactly `size` bytes, S_FALSE for fewer, wherever in the body that happens: who wants
  /// all of it reads until 0 bytes come. E_FAIL if the read failed. `read` may be null and is
  /// otherwise stored in every case.
  STDMETHODIMP Read(void* buffer, ULONG size, ULONG* read) override {
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    ULONG count = 0;
    const bool isRead = ReadResponseBody(*m_connection, buffer, size, count);
    if (read != nullptr) *read = count;
    if (!isRead) return E_FAIL;
    return count == size ? S_OK : S_FALSE;
  }
  /// To the very start, by a new request, and nowhere else: any other move, and asking for the
  /// position, is STG_E_INVALIDFUNCTION. `position` is never written.
  STDMETHODIMP Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER*) override {
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    if (move.QuadPart != 0 || origin != STREAM_SEEK_SET) return STG_E_INVALIDFUNCTION;
    return RewindResponse(*m_connection);
  }
  STDMETHODIMP Write(const void*, ULONG, ULONG*) override { return E_NOTIMPL; }
  STDMETHODIMP SetSize(ULARGE_INTEGER) override { return E_NOTIMPL; }
  STDMETHODIMP CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override {
    return E_NOTIMPL;
  }
  STDMETHODIMP Commit(DWORD) override { return E_NOTIMPL; }
  STDMETHODIMP Revert() override { return E_NOTIMPL; }
  STDMETHODIMP LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
  STDMETHODIMP UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
  STDMETHODIMP Stat(STATSTG*, DWORD) override { return E_NOTIMPL; }
  STDMETHODIMP Clone(IStream**) override { return E_NOTIMPL; }

  /// Its request handle is open and stands at the start of the body. Over WinHTTP m_keepBody is
  /// set, so that a rewind leaves the body unread too.
  std::unique_ptr<Connection> m_connection;

 protected:
  ~CHdfsIStreamOut() = default;
};

/// A stream over `connection`, which is the stream's from here on: on failure it is deleted.
/// E_OUTOFMEMORY, or E_POINTER for a null `stream`.
template <class Connection>
HRESULT CreateResponseStream(std::unique_ptr<Connection> connection, IStream** stream) {
  CComObject<CHdfsIStreamOut<Connection>>* made = nullptr;
  const HRESULT result = CComObject<CHdfsIStreamOut<Connection>>::CreateInstance(&made);
  if (FAILED(result)) return result;
  const ComPtr<CComObject<CHdfsIStreamOut<Connection>>> object(made);
  object->m_connection = std::move(connection);
  return object->QueryInterface(IID_IStream, reinterpret_cast<void**>(stream));
}

}  // namespace velandoc
