#include "platform/posix/com/class_registry.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <new>
#include <vector>

#include "platform/posix/com/activation.h"
#include "platform/posix/com/case_folding.h"
#include "platform/posix/com/registry.h"
#include "resources/prog_ids.h"

namespace velandoc {
namespace {

/// Closes its key.
class OpenKey {
 public:
  OpenKey() = default;
  OpenKey(const OpenKey&) = delete;
  OpenKey& operator=(const OpenKey&) = delete;
  ~OpenKey() {
    if (m_key != nullptr) RegCloseKey(m_key);
  }
  HKEY Get() const { return m_key; }
  HKEY* Receive() { return &m_key; }

 private:
  HKEY m_key = nullptr;
};

HRESULT ResultOf(LONG error) {
  switch (static_cast<DWORD>(error)) {
    case ERROR_SUCCESS:
      return S_OK;
    case ERROR_FILE_NOT_FOUND:
    case ERROR_KEY_DELETED:
      return REGDB_E_KEYMISSING;
    case ERROR_NOT_ENOUGH_MEMORY:
      return E_OUTOFMEMORY;
    default:
      return REGDB_E_READREGDB;
  }
}

WideString TextOfGuid(REFGUID guid) {
  OLECHAR text[39];
  StringFromGUID2(guid, text, static_cast<int>(std::size(text)));
  return text;
}

const ComponentProgId* FindComponentProgId(WideView progId) {
  for (const ComponentProgId& entry : kComponentProgIds) {
    if (EqualsIgnoringCase(entry.progId, progId)) return &entry;
  }
  return nullptr;
}

const ComponentProgId* FindComponentClass(REFCLSID clsid) {
  for (const ComponentProgId& entry : kComponentProgIds) {
    if (entry.clsid == clsid) return &entry;
  }
  return nullptr;
}

HRESULT ReadClassOf(const WideString& progId, CLSID& clsid) {
  WideString text;
  const HRESULT result = ReadClassesText(progId + OLESTR("\\CLSID"), text);
  if (FAILED(result)) return result;
  return IIDFromString(text.c_str(), &clsid) == S_OK ? S_OK : CO_E_CLASSSTRING;
}

HRESULT FindClass(const WideString& progId, CLSID& clsid) {
  HRESULT result = ReadClassOf(progId, clsid);
  if (result != REGDB_E_KEYMISSING) return result;
  WideString current;
  result = ReadClassesText(progId + OLESTR("\\CurVer"), current);
  if (SUCCEEDED(result)) return ReadClassOf(current, clsid);
  if (result != REGDB_E_KEYMISSING) return result;
  const ComponentProgId* const own = FindComponentProgId(progId);
  if (own == nullptr) return REGDB_E_KEYMISSING;
  clsid = own->clsid;
  return S_OK;
}

HRESULT FindProgId(REFCLSID clsid, WideString& progId) {
  const HRESULT result =
      ReadClassesText(OLESTR("CLSID\\") + TextOfGuid(clsid) + OLESTR("\\ProgID"), progId);
  if (result != REGDB_E_KEYMISSING) return result;
  const ComponentProgId* const own = FindComponentClass(clsid);
  if (own == nullptr) return REGDB_E_CLASSNOTREG;
  progId = own->progId;
  return S_OK;
}

}  // namespace

HRESULT ReadClassesText(const WideString& key, WideString& text) {
  OpenKey opened;
  HRESULT result =
      ResultOf(RegOpenKeyExW(HKEY_CLASSES_ROOT, key.c_str(), 0, KEY_READ, opened.Receive()));
  if (FAILED(result)) return result;
  DWORD type = REG_NONE;
  DWORD size = 0;
  result = ResultOf(RegQueryValueExW(opened.Get(), nullptr, nullptr, &type, nullptr, &size));
  if (FAILED(result)) return result;
  if (type != REG_SZ && type != REG_EXPAND_SZ) return REGDB_E_INVALIDVALUE;
  std::vector<BYTE> data(size);
  result = ResultOf(RegQueryValueExW(opened.Get(), nullptr, nullptr, nullptr, data.data(), &size));
  if (FAILED(result)) return result;
  text.assign(size / sizeof(OLECHAR), OLECHAR{0});
  if (!text.empty()) std::memcpy(text.data(), data.data(), text.size() * sizeof(OLECHAR));
  text.resize(std::min(text.find(OLECHAR{0}), text.size()));
  return S_OK;
}

HRESULT FindRegisteredServer(REFCLSID clsid, WideString& path) {
  return ReadClassesText(OLESTR("CLSID\\") + TextOfGuid(clsid) + OLESTR("\\InprocServer32"), path);
}

bool IsComponentClass(REFCLSID clsid) { return FindComponentClass(clsid) != nullptr; }

}  // namespace velandoc

STDAPI CLSIDFromProgID(LPCOLESTR progId, CLSID* clsid) try {
  if (progId == nullptr || clsid == nullptr) return E_INVALIDARG;
  *clsid = GUID_NULL;
  const velandoc::WideString name(progId);
  // A name with a level in it would be looked for somewhere else than among the names.
  if (name.empty() || name.find(OLECHAR{'\\'}) != name.npos) return CO_E_CLASSSTRING;
  const HRESULT result = velandoc::FindClass(name, *clsid);
  return result == REGDB_E_KEYMISSING ? CO_E_CLASSSTRING : result;
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

STDAPI ProgIDFromCLSID(REFCLSID clsid, LPOLESTR* progId) try {
  if (progId == nullptr) return E_INVALIDARG;
  *progId = nullptr;
  velandoc::WideString text;
  if (const HRESULT result = velandoc::FindProgId(clsid, text); FAILED(result)) return result;
  const std::size_t size = (text.size() + 1) * sizeof(OLECHAR);
  *progId = static_cast<LPOLESTR>(CoTaskMemAlloc(size));
  if (*progId == nullptr) return E_OUTOFMEMORY;
  std::memcpy(*progId, text.c_str(), size);
  return S_OK;
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}
