#include "platform/posix/dialog/gtk_start.h"

#include <dlfcn.h>

#include <atomic>
#include <thread>

namespace velandoc {
namespace {

bool IsLoaded(const char* library) {
  void* const handle = dlopen(library, RTLD_LAZY | RTLD_NOLOAD);
  if (handle == nullptr) return false;
  dlclose(handle);
  return true;
}

/// The thread of the first dialog, to which WebKit is bound from then on.
std::atomic<std::thread::id> s_dialogThread;

bool IsForeignThread() {
  const std::thread::id bound = s_dialogThread;
  return bound != std::thread::id() && bound != std::this_thread::get_id();
}

}  // namespace

bool StartGtk(std::string& reason) {
  for (const char* other : {"libgtk-4.so.1", "libgtk-x11-2.0.so.0"}) {
    if (!IsLoaded(other)) continue;
    reason = std::string("the process already uses another GTK than 3, ") + other;
    return false;
  }
  if (IsForeignThread()) {
    reason = "the dialogs of this process belong to another thread";
    return false;
  }
  if (gdk_display_get_default() == nullptr) {
    // Must precede the first start, whether that succeeds or not.
    static std::atomic_flag localeKept;
    if (!localeKept.test_and_set()) gtk_disable_setlocale();
    if (gtk_init_check(nullptr, nullptr) == FALSE) {
      reason = "there is no display: neither WAYLAND_DISPLAY nor DISPLAY leads to one";
      return false;
    }
  }
  s_dialogThread = std::this_thread::get_id();
  return true;
}

}  // namespace velandoc
