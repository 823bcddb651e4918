// An ErrorServices port that keeps what goes to the debugger, hands out prepared texts, and fails
// where told. What the script says nothing of is asked of the system.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "platform/error_services.h"
#include "platform/text.h"
#include "tests/support/variant_text.h"

namespace velandoc::testing {

class ScriptedErrorServices final : public ErrorServices {
 public:
  ScriptedErrorServices() = default;
  ~ScriptedErrorServices() override { EXPECT_EQ(m_buffers, 0) << "texts were not freed"; }

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
                       DWORD size, va_list* arguments) override {
    std::string module = "null";
    for (const auto& [name, place] : modules) {
      if (source == &place) module = name;
    }
    char call[100];
    std::snprintf(call, sizeof call, "FormatMessageW(0x%x, %s, 0x%x, 0x%x)",
                  static_cast<unsigned>(flags), module.c_str(), static_cast<unsigned>(code),
                  static_cast<unsigned>(language));
    calls.push_back(call);
    EXPECT_EQ(size, 0U);
    EXPECT_EQ(arguments, nullptr);
    if (lacksMemoryForTexts) throw std::bad_alloc();
    LPWSTR& allocated = *reinterpret_cast<LPWSTR*>(buffer);
    const auto known = texts.find(code);
    if (known == texts.end()) {
      const DWORD length = SystemPort<ErrorServices>().FormatMessageW(flags, source, code, language,
                                                                      buffer, size, arguments);
      if (allocated != nullptr) ++m_buffers;
      return length;
    }
    allocated = nullptr;
    if (!known->second) return 0;
    ++m_buffers;
    m_own = *known->second;
    allocated = m_own.data();
    return static_cast<DWORD>(m_own.size());
  }
  void LocalFree(void* memory) override {
    if (memory == nullptr) return;
    --m_buffers;
    if (memory != m_own.data()) SystemPort<ErrorServices>().LocalFree(memory);
  }
  HMODULE GetModuleHandleW(LPCWSTR name) override {
    calls.push_back("GetModuleHandleW(" + DescribeText(name) + ")");
    const auto known = modules.find(DescribeText(name));
    if (known == modules.end()) return SystemPort<ErrorServices>().GetModuleHandleW(name);
    return reinterpret_cast<HMODULE>(&known->second);
  }
  HRESULT CreateErrorInfo(ICreateErrorInfo** info) override {
    return FAILED(createResult) ? createResult : SystemPort<ErrorServices>().CreateErrorInfo(info);
  }
  void OutputDebugStringW(LPCWSTR text) override {
    if (lacksMemoryForLines) throw std::bad_alloc();
    lines.push_back(DescribeText(text));
  }

 private:
  WideString m_own;
  int m_buffers = 0;
};

}  // namespace velandoc::testing
