// CRegObject, the registrar: applies registry scripts to the registry, or takes back what they
// made.
//
// It writes through the Registry port. A failed operation ends the script at once; what was written
// before it stays.
#pragma once

#include <map>
#include <string_view>

#include "platform/atl/registry_script.h"

/// What a module may add its replacements to.
class IRegistrarBase {
 public:
  /// `item` takes the place of %key%; the key's case does not matter, and of two items for a key
  /// the first counts. E_INVALIDARG for a null argument, E_OUTOFMEMORY.
  virtual HRESULT AddReplacement(LPCOLESTR key, LPCOLESTR item) = 0;

 protected:
  ~IRegistrarBase() = default;
};

class CRegObject final : public IRegistrarBase {
 public:
  /// With `perUser`, scripts rooted at HKCR are applied under HKCU\Software\Classes.
  explicit CRegObject(bool perUser = false) : m_perUser(perUser) {}

  HRESULT AddReplacement(LPCOLESTR key, LPCOLESTR item) override;

  /// S_OK; DISP_E_EXCEPTION for a script that can't be read or names an unknown replacement
  /// (nothing is written then); the registry's error as HRESULT_FROM_WIN32; E_OUTOFMEMORY.
  HRESULT StringRegister(LPCOLESTR script) { return Apply(script, true); }
  /// As StringRegister. A key that is not there is no failure.
  HRESULT StringUnregister(LPCOLESTR script) { return Apply(script, false); }
  /// As StringRegister, with the script in resource REGISTRY `id` of the component's own module
  /// (ASCII); HRESULT_FROM_WIN32(ERROR_RESOURCE_TYPE_NOT_FOUND) if there is no such resource.
  HRESULT ResourceRegister(WORD id) { return ApplyResource(id, true); }
  HRESULT ResourceUnregister(WORD id) { return ApplyResource(id, false); }

 private:
  HRESULT Apply(velandoc::WideView script, bool doRegister);
  HRESULT ApplyResource(WORD id, bool doRegister);

  bool m_perUser;
  std::map<velandoc::WideString, velandoc::WideString> m_replacements;
};

/// `text` as it stands in a script's quotes, where a quote is written twice.
velandoc::WideString AtlEscapeQuotes(velandoc::WideView text);
