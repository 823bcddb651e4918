// CDynLinkLibrary: a library with resources of its own that works inside this one, and the list of
// them that a module state keeps.
//
// velandoc has none. The list is walked where languages are chosen (CVelandocApp), so an extension
// that is linked in one day is translated like the rest.
#pragma once

#include "platform/com.h"

/// Stands in the list of the library's module state from its construction to its destruction.
class CDynLinkLibrary {
 public:
  /// Its resources are the module's own at first.
  explicit CDynLinkLibrary(HINSTANCE module);
  CDynLinkLibrary(const CDynLinkLibrary&) = delete;
  CDynLinkLibrary& operator=(const CDynLinkLibrary&) = delete;
  ~CDynLinkLibrary();

  HINSTANCE m_hModule;
  /// Of the module or of a satellite. Changed under the lock of the list.
  HINSTANCE m_hResource;
};

/// The lock of the lists of all module states. A thread may take it again while it has it.
inline constexpr int CRIT_DYNLINKLIST = 0;
void AfxLockGlobals(int lock);
void AfxUnlockGlobals(int lock);
