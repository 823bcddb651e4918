#include "hosts/create_object.h"

#include "hosts/component_library.h"
#include "platform/owners.h"
#include "resources/prog_ids.h"

namespace velandoc {
namespace {

/// ProgIDs compare as registry keys do, without regard to ASCII case.
bool SameName(WideView a, WideView b) {
  const auto lower = [](OLECHAR unit) {
    return unit >= OLESTR('A') && unit <= OLESTR('Z') ? static_cast<OLECHAR>(unit + 32) : unit;
  };
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (lower(a[i]) != lower(b[i])) return false;
  }
  return true;
}

const CLSID* FindKnownClass(WideView progId) {
  for (const ComponentProgId& known : kComponentProgIds) {
    if (SameName(progId, known.progId)) return &known.clsid;
  }
  return nullptr;
}

HRESULT CreateFromOwnLibrary(REFCLSID clsid, REFIID iid, void** object) {
  // Loaded once and never let go, because its objects may be alive until the end.
  static const ComponentLibrary library;
  if (!library.Loaded()) return REGDB_E_CLASSNOTREG;
  ComPtr<IClassFactory> factory;
  const HRESULT result = library.DllGetClassObject(clsid, IID_IClassFactory, factory.ReceiveVoid());
  return FAILED(result) ? result : factory->CreateInstance(nullptr, iid, object);
}

}  // namespace

HRESULT FindClass(const WideString& progId, CLSID& clsid) {
  // The registry's functions end a name at its first NUL: such a name would find the class of its
  // first part.
  if (progId.find(OLESTR('\0')) != WideString::npos) return CO_E_CLASSSTRING;
  CLSID found = {};
  if (SUCCEEDED(CLSIDFromProgID(progId.c_str(), &found))) {
    clsid = found;
    return S_OK;
  }
  const CLSID* known = FindKnownClass(progId);
  if (known == nullptr) return CO_E_CLASSSTRING;
  clsid = *known;
  return S_OK;
}

HRESULT CreateObject(const WideString& progId, REFIID iid, void** object) {
  *object = nullptr;
  CLSID clsid = {};
  HRESULT result = FindClass(progId, clsid);
  if (FAILED(result)) return result;
  result = CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, iid, object);
  if (SUCCEEDED(result) || FindKnownClass(progId) == nullptr) return result;
  const HRESULT ownResult = CreateFromOwnLibrary(clsid, iid, object);
  return SUCCEEDED(ownResult) ? ownResult : result;
}

}  // namespace velandoc
