// Starting GTK inside a program that may or may not use it.
#pragma once

#include <string>

#include "platform/posix/dialog/gtk_headers.h"

namespace velandoc {

/// Makes GTK ready on this thread, if the program has not. False with the reason in words if there
/// is no display, if the process uses another generation of GTK (one process can't hold two), or if
/// dialogs or a main loop are another thread's: GTK and WebKit know one thread a process.
///
/// The process's locale stays as it is.
bool StartGtk(std::string& reason);

/// Keeps GTK's main context for this thread to the end of the scope, whether the program runs a
/// main loop of its own or not.
class MainContextScope {
 public:
  MainContextScope() : m_held(g_main_context_acquire(nullptr) != FALSE) {}
  ~MainContextScope() {
    if (m_held) g_main_context_release(nullptr);
  }
  MainContextScope(const MainContextScope&) = delete;
  MainContextScope& operator=(const MainContextScope&) = delete;

  /// False if another thread has it.
  bool IsHeld() const { return m_held; }

 private:
  const bool m_held;
};

}  // namespace velandoc
