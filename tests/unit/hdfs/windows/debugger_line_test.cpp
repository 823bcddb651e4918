// The debugger line as a debugger gets it: the system hands it over as an exception, which a
// handler of this process sees first.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "hdfs/automation_funnel.h"

namespace velandoc {
namespace {

constexpr DWORD kNarrowText = 0x40010006;  // DBG_PRINTEXCEPTION_C
constexpr DWORD kWideText = 0x4001000A;    // DBG_PRINTEXCEPTION_WIDE_C

std::vector<std::string>* s_texts = nullptr;

LONG CALLBACK Catch(EXCEPTION_POINTERS* pointers) {
  const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
  if (record.ExceptionCode != kNarrowText && record.ExceptionCode != kWideText) {
    return EXCEPTION_CONTINUE_SEARCH;
  }
  // Length with the terminator, and the text.
  const auto length = static_cast<std::size_t>(record.ExceptionInformation[0]) - 1;
  if (record.ExceptionCode == kNarrowText) {
    s_texts->emplace_back(reinterpret_cast<const char*>(record.ExceptionInformation[1]), length);
  } else {
    const auto* text = reinterpret_cast<const wchar_t*>(record.ExceptionInformation[1]);
    s_texts->emplace_back(text, text + length);
  }
  return EXCEPTION_CONTINUE_EXECUTION;
}

TEST(DebuggerLine, ADebuggerGetsOneTextForAFailedMethod) {
  std::vector<std::string> texts;
  s_texts = &texts;
  void* const handler = AddVectoredExceptionHandler(1, &Catch);
  const HRESULT result = AutomationFunnel("CHdfsClient::Upload",
                                          []() -> FunnelResult { throw _com_error(E_POINTER); });
  AutomationFunnel("CHdfsClient::Upload", []() -> FunnelResult { return E_FAIL; });
  RemoveVectoredExceptionHandler(handler);
  s_texts = nullptr;
  EXPECT_EQ(result, E_POINTER);
  EXPECT_THAT(texts, ::testing::ElementsAre(::testing::StartsWith(
                         "Exception in automation method [CHdfsClient::Upload]: ")));
}

}  // namespace
}  // namespace velandoc
