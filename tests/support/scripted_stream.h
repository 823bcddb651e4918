// A stream of bytes for who uploads it, with a say over what it tells of itself.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <utility>

#include "platform/com.h"

namespace velandoc::testing {

/// A local object: counts nothing and dies with its scope. All but Read and Stat is E_NOTIMPL.
class ScriptedStream final : public IStream {
 public:
  explicit ScriptedStream(std::string bytes) : m_bytes(std::move(bytes)) {}

  std::optional<std::uint64_t> toldSize;  // by Stat; what is there otherwise
  HRESULT statResult = S_OK;              // a failure leaves the structure alone
  DWORD statFlag = 99;                    // of the latest Stat
  std::size_t failAfter = SIZE_MAX;       // bytes; the reads behind them fail and give nothing
  int reads = 0;
  ULONG largestRead = 0;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override {
    *object = nullptr;
    return E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }

  HRESULT STDMETHODCALLTYPE Read(void* buffer, ULONG size, ULONG* read) override {
    ++reads;
    largestRead = std::max(largestRead, size);
    *read = 0;
    if (m_position >= failAfter) return E_FAIL;
    const std::size_t end = std::min(m_bytes.size(), failAfter);
    const std::size_t count = std::min<std::size_t>(size, end - m_position);
    std::memcpy(buffer, m_bytes.data() + m_position, count);
    m_position += count;
    *read = static_cast<ULONG>(count);
    return count == size ? S_OK : S_FALSE;
  }
  HRESULT STDMETHODCALLTYPE Stat(STATSTG* info, DWORD flag) override {
    statFlag = flag;
    if (SUCCEEDED(statResult)) info->cbSize.QuadPart = toldSize.value_or(m_bytes.size());
    return statResult;
  }
  HRESULT STDMETHODCALLTYPE Write(const void*, ULONG, ULONG*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER, DWORD, ULARGE_INTEGER*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*,
                                   ULARGE_INTEGER*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE Commit(DWORD) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Revert() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE Clone(IStream**) override { return E_NOTIMPL; }

 private:
  std::string m_bytes;
  std::size_t m_position = 0;
};

}  // namespace velandoc::testing
