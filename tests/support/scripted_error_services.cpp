#include "tests/support/scripted_error_services.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <new>

#include "tests/support/variant_text.h"

namespace velandoc::testing {

ScriptedErrorServices::~ScriptedErrorServices() {
  EXPECT_EQ(m_buffers, 0) << "texts were not freed";
}

DWORD ScriptedErrorServices::FormatMessageW(DWORD flags, LPCVOID source, DWORD code, DWORD language,
                                            LPWSTR buffer, DWORD size, va_list* arguments) {
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

void ScriptedErrorServices::LocalFree(void* memory) {
  if (memory == nullptr) return;
  --m_buffers;
  if (memory != m_own.data()) SystemPort<ErrorServices>().LocalFree(memory);
}

HMODULE ScriptedErrorServices::GetModuleHandleW(LPCWSTR name) {
  calls.push_back("GetModuleHandleW(" + DescribeText(name) + ")");
  const auto known = modules.find(DescribeText(name));
  if (known == modules.end()) return SystemPort<ErrorServices>().GetModuleHandleW(name);
  return reinterpret_cast<HMODULE>(&known->second);
}

HRESULT ScriptedErrorServices::CreateErrorInfo(ICreateErrorInfo** info) {
  return FAILED(createResult) ? createResult : SystemPort<ErrorServices>().CreateErrorInfo(info);
}

void ScriptedErrorServices::OutputDebugStringW(LPCWSTR text) {
  if (lacksMemoryForLines) throw std::bad_alloc();
  lines.push_back(DescribeText(text));
}

}  // namespace velandoc::testing
