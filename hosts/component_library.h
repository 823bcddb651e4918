// The component's library that belongs to this program, and its exports.
#pragma once

#include <string>

#include "platform/com.h"

namespace velandoc {

/// Loaded on construction, for the rest of the process.
class ComponentLibrary {
 public:
  /// Loads ComponentLibraryPath(). On failure Loaded() is false and Problem() tells why, as the
  /// system words it.
  ComponentLibrary();

  bool Loaded() const { return m_library != nullptr; }
  const std::string& Path() const { return m_path; }
  const std::string& Problem() const { return m_problem; }

  /// The exports of the same names. E_NOTIMPL if the library is not loaded or lacks the export.
  HRESULT DllRegisterServer() const;
  HRESULT DllUnregisterServer() const;
  HRESULT DllInstall(BOOL install, LPCWSTR commandLine) const;
  HRESULT DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) const;

 private:
  template <class Function, class... Arguments>
  HRESULT Call(const char* name, Arguments... arguments) const;

  std::string m_path;
  std::string m_problem;
  void* m_library = nullptr;
};

}  // namespace velandoc
