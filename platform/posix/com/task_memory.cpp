// Memory that one side of an interface allocates and the other frees, and the threads' counts of
// initialisations.
#include <cstdlib>

#include "platform/posix/com/activation.h"
#include "platform/posix/com/automation.h"

namespace {

thread_local ULONG initialisations = 0;

}  // namespace

STDAPI_(LPVOID) CoTaskMemAlloc(SIZE_T size) { return std::malloc(size == 0 ? 1 : size); }

STDAPI_(LPVOID) CoTaskMemRealloc(LPVOID memory, SIZE_T size) {
  if (memory == nullptr) return CoTaskMemAlloc(size);
  if (size == 0) {
    std::free(memory);
    return nullptr;
  }
  return std::realloc(memory, size);
}

STDAPI_(void) CoTaskMemFree(LPVOID memory) { std::free(memory); }

STDAPI CoInitializeEx(LPVOID reserved, DWORD) {
  if (reserved != nullptr) return E_INVALIDARG;
  return initialisations++ == 0 ? S_OK : S_FALSE;
}

STDAPI CoInitialize(LPVOID reserved) { return CoInitializeEx(reserved, COINIT_APARTMENTTHREADED); }

STDAPI_(void) CoUninitialize() {
  if (initialisations == 0) return;
  if (--initialisations == 0) SetErrorInfo(0, nullptr);
}

STDAPI OleRun(IUnknown* object) { return object == nullptr ? E_INVALIDARG : S_OK; }
