// An ErrorServices port that keeps what goes to the debugger, hands out prepared texts, and fails
// where told. What the script says nothing of is asked of the system.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/error_services.h"
#include "platform/text.h"

namespace velandoc::testing {

class ScriptedErrorServices final : public ErrorServices {
 public:
  ScriptedErrorServices() = default;
  ~ScriptedErrorServices() override;

  /// What the debugger was given.
  std::vector<std::string> lines;
  /// "FormatMessageW(flags, module, code, language)" and "GetModuleHandleW(name)", in order.
  std::vector<std::string> calls;
  /// Texts by code; nothing: the code has no text.
  std::map<DWORD, std::optional<WideString>> texts;
  /// Instead of the system's handles: the address of one of the keys.
  std::map<std::string, char> modules;
  HRESULT createResult = S_OK;
  /// There is no memory for what a debugger line is made of.
  bool lacksMemoryForTexts = false;
  bool lacksMemoryForLines = false;

  DWORD FormatMessageW(DWORD flags, LPCVOID source, DWORD code, DWORD language, LPWSTR buffer,
                       DWORD size, va_list* arguments) override;
  void LocalFree(void* memory) override;
  HMODULE GetModuleHandleW(LPCWSTR name) override;
  HRESULT CreateErrorInfo(ICreateErrorInfo** info) override;
  void OutputDebugStringW(LPCWSTR text) override;

 private:
  WideString m_own;
  int m_buffers = 0;
};

}  // namespace velandoc::testing
