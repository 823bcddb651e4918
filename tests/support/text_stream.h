// A stream that an upload reads.
#pragma once

#include <string>

#include "platform/com.h"

namespace velandoc::testing {

/// A stream over a text that tells its end in either way; not counted.
class TextStream final : public IStream {
 public:
  explicit TextStream(std::string content, bool saysOkAtEnd = false)
      : m_content(std::move(content)), m_saysOkAtEnd(saysOkAtEnd) {
    size = m_content.size();
  }
  ULONGLONG size = 0;
  HRESULT queryResult = S_OK;
  HRESULT statResult = S_OK;
  ULONG references = 1;

  STDMETHODIMP QueryInterface(REFIID riid, void** object) override;
  STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
  STDMETHODIMP_(ULONG) Release() override { return --references; }
  STDMETHODIMP Read(void* buffer, ULONG wanted, ULONG* read) override;
  STDMETHODIMP Stat(STATSTG* stat, DWORD flag) override;
  STDMETHODIMP Seek(LARGE_INTEGER, DWORD, ULARGE_INTEGER*) override;
  STDMETHODIMP Write(const void*, ULONG, ULONG*) override { return E_NOTIMPL; }
  STDMETHODIMP SetSize(ULARGE_INTEGER) override { return E_NOTIMPL; }
  STDMETHODIMP CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override {
    return E_NOTIMPL;
  }
  STDMETHODIMP Commit(DWORD) override { return E_NOTIMPL; }
  STDMETHODIMP Revert() override { return E_NOTIMPL; }
  STDMETHODIMP LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
  STDMETHODIMP UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
  STDMETHODIMP Clone(IStream**) override { return E_NOTIMPL; }

 private:
  const std::string m_content;
  const bool m_saysOkAtEnd;
  std::size_t m_at = 0;
};

}  // namespace velandoc::testing
