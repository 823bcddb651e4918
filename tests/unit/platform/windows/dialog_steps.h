// Drives a modal dialog from inside its own loop: steps, one after the other, each in a timer's
// message of the dialog's thread. When they are used up, or after ten seconds, the dialog ends
// whatever state it is in.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <exception>
#include <functional>
#include <vector>

#include "platform/window_types.h"

namespace velandoc::test {

class DialogSteps {
 public:
  using Step = std::function<void(HWND dialog)>;

  /// For the next dialog of this thread.
  explicit DialogSteps(std::vector<Step> steps) : m_steps(std::move(steps)) {
    s_current = this;
    m_timer = SetTimer(nullptr, 0, 10, &Tick);
  }
  ~DialogSteps() {
    KillTimer(nullptr, m_timer);
    s_current = nullptr;
    // What the watchdog posted and no dialog took.
    MSG message{};
    PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE);
    EXPECT_EQ(m_next, m_steps.size()) << "the dialog ended before the steps did";
  }
  DialogSteps(const DialogSteps&) = delete;
  DialogSteps& operator=(const DialogSteps&) = delete;

  /// This thread's visible dialog; null if there is none.
  static HWND FindDialog() {
    HWND found = nullptr;
    EnumThreadWindows(GetCurrentThreadId(), &IsDialog, reinterpret_cast<LPARAM>(&found));
    return found;
  }

 private:
  static BOOL CALLBACK IsDialog(HWND window, LPARAM found) {
    constexpr ATOM kDialogClass = 32770;
    if (GetClassWord(window, GCW_ATOM) != kDialogClass || !IsWindowVisible(window)) return TRUE;
    *reinterpret_cast<HWND*>(found) = window;
    return FALSE;
  }

  static void CALLBACK Tick(HWND, UINT, UINT_PTR, DWORD) {
    DialogSteps* steps = s_current;
    if (steps == nullptr || steps->m_busy) return;
    steps->m_busy = true;
    steps->Advance();
    steps->m_busy = false;
  }

  void Advance() {
    const HWND dialog = FindDialog();
    const bool late = std::chrono::steady_clock::now() - m_begin > std::chrono::seconds(10);
    if (late) ADD_FAILURE() << "the dialog did not end in time";
    if (late || (m_next == m_steps.size() && dialog != nullptr && ++m_idle > 20)) {
      if (!late) ADD_FAILURE() << "the dialog still stands behind its last step";
      PostQuitMessage(0);
      return;
    }
    if (dialog == nullptr || m_next == m_steps.size()) return;
    try {
      m_steps[m_next++](dialog);
    } catch (const std::exception& error) {
      // It must not leave through the system's code.
      ADD_FAILURE() << error.what();
    }
  }

  static inline DialogSteps* s_current = nullptr;
  const std::vector<Step> m_steps;
  const std::chrono::steady_clock::time_point m_begin = std::chrono::steady_clock::now();
  UINT_PTR m_timer = 0;
  std::size_t m_next = 0;
  int m_idle = 0;
  bool m_busy = false;
};

/// A key goes down where the focus is.
inline void PressKey(WPARAM key) { PostMessageW(GetFocus(), WM_KEYDOWN, key, 1); }

/// The Shift key is held for the scope, as far as this thread can see.
class HeldShift {
 public:
  HeldShift() { Set(0x80); }
  ~HeldShift() { Set(0); }
  HeldShift(const HeldShift&) = delete;
  HeldShift& operator=(const HeldShift&) = delete;

 private:
  static void Set(BYTE state) {
    BYTE keys[256] = {};
    GetKeyboardState(keys);
    keys[VK_SHIFT] = state;
    SetKeyboardState(keys);
  }
};

}  // namespace velandoc::test
