// CAtlBaseModule: ATL's own notion of where the library's code and its resources are.
#pragma once

#include <atomic>

#include "platform/com.h"
#include "platform/module_path.h"

class CAtlBaseModule {
 public:
  CAtlBaseModule()
      : m_hInst(velandoc::GetModuleInstance()), m_hInstResource(velandoc::GetModuleInstance()) {}

  HINSTANCE GetModuleInstance() const { return m_hInst; }
  HINSTANCE GetResourceInstance() const { return m_hInstResource.load(); }
  /// Atomic. The one that was set before.
  HINSTANCE SetResourceInstance(HINSTANCE resources) { return m_hInstResource.exchange(resources); }

 private:
  const HINSTANCE m_hInst;
  std::atomic<HINSTANCE> m_hInstResource;
};

/// The library's only one.
CAtlBaseModule& AtlBaseModule();
