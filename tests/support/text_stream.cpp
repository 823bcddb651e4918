#include "tests/support/text_stream.h"

#include <gtest/gtest.h>

namespace velandoc::testing {

STDMETHODIMP TextStream::QueryInterface(REFIID riid, void** object) {
  *object = nullptr;
  if (FAILED(queryResult)) return queryResult;
  if (!IsEqualIID(riid, IID_IUnknown) && !IsEqualIID(riid, IID_IStream)) return E_NOINTERFACE;
  *object = this;
  AddRef();
  return S_OK;
}

STDMETHODIMP TextStream::Read(void* buffer, ULONG wanted, ULONG* read) {
  EXPECT_EQ(wanted, 8192U);
  const std::size_t count = m_content.copy(static_cast<char*>(buffer), wanted, m_at);
  m_at += count;
  *read = static_cast<ULONG>(count);
  return count == wanted || m_saysOkAtEnd ? S_OK : S_FALSE;
}

STDMETHODIMP TextStream::Stat(STATSTG* stat, DWORD flag) {
  EXPECT_EQ(flag, DWORD{STATFLAG_NONAME});
  if (SUCCEEDED(statResult)) stat->cbSize.QuadPart = size;
  return statResult;
}

STDMETHODIMP TextStream::Seek(LARGE_INTEGER, DWORD, ULARGE_INTEGER*) {
  ADD_FAILURE() << "the position is the caller's";
  return E_NOTIMPL;
}

}  // namespace velandoc::testing
