// The texts of error codes, where the system has none of its own.
#include "platform/error_services.h"

#include <gtest/gtest.h>

#include "platform/posix/internet_messages.h"
#include "platform/posix/last_error.h"
#include "tests/support/variant_text.h"

namespace velandoc {
namespace {

constexpr DWORD kAllocated = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS;

ErrorServices& Services() { return SystemPort<ErrorServices>(); }

/// The text without its line end; "none" and a last error.
std::string Format(DWORD source, HMODULE module, DWORD code) {
  LPWSTR text = nullptr;
  const DWORD length = Services().FormatMessageW(kAllocated | source, module, code, 0x400,
                                                 reinterpret_cast<LPWSTR>(&text), 0, nullptr);
  if (text == nullptr) {
    EXPECT_EQ(length, 0U);
    return "none " + std::to_string(ThreadLastError());
  }
  const std::string words = testing::DescribeText(text);
  EXPECT_EQ(WideView(text).size(), length);
  Services().LocalFree(text);
  const std::string lineEnd = "\\u000D\\u000A";
  EXPECT_TRUE(words.size() > lineEnd.size() &&
              words.compare(words.size() - lineEnd.size(), lineEnd.size(), lineEnd) == 0)
      << words;
  return words.substr(0, words.size() - lineEnd.size());
}

std::string FromSystem(DWORD code) { return Format(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, code); }

TEST(PosixErrorServices, ResultsAndSystemErrorsHaveTexts) {
  EXPECT_EQ(FromSystem(0x80004003), "Invalid pointer");
  EXPECT_EQ(FromSystem(5), "Access is denied.");
  EXPECT_EQ(FromSystem(0x80070005), "Access is denied.");
  EXPECT_EQ(FromSystem(0x8007000E), "Not enough memory.");
  EXPECT_EQ(FromSystem(0), "The operation ended well.");
  EXPECT_EQ(FromSystem(0x80040201), "none 317");
  EXPECT_EQ(FromSystem(0x80070000), "none 317");
}

TEST(PosixErrorServices, TheSystemKnowsTheInternetCodesToo) {
  EXPECT_EQ(FromSystem(12007), "No computer with the server's name was found.");
  EXPECT_EQ(FromSystem(0x80072EE7), "No computer with the server's name was found.");
  EXPECT_EQ(FromSystem(12031), "The server reset the connection.");
  EXPECT_EQ(FromSystem(12175),
            "The encrypted connection failed: the server or its certificate is not safe.");
}

TEST(PosixErrorServices, EachLibraryHasItsOwnTexts) {
  const HMODULE wininet = Services().GetModuleHandleW(OLESTR("wininet.dll"));
  const HMODULE winhttp = Services().GetModuleHandleW(OLESTR("WinHTTP.dll"));
  ASSERT_NE(wininet, nullptr);
  ASSERT_NE(winhttp, nullptr);
  EXPECT_NE(wininet, winhttp);
  constexpr DWORD kFrom = FORMAT_MESSAGE_FROM_HMODULE;
  EXPECT_EQ(Format(kFrom, wininet, 12029), "No connection to the server could be made.");
  EXPECT_EQ(Format(kFrom, winhttp, 12029), "No connection to the server could be made.");
  EXPECT_EQ(Format(kFrom, wininet, 12031), "The server reset the connection.");
  EXPECT_EQ(Format(kFrom, winhttp, 12031), "none 317");
  EXPECT_EQ(Format(kFrom, wininet, 12175), "The content of the answer could not be decoded.");
  EXPECT_EQ(Format(kFrom, winhttp, 12175),
            "The encrypted connection failed: the server or its certificate is not safe.");
  EXPECT_EQ(Format(kFrom, wininet, 5), "none 317") << "system errors are not a library's";
  EXPECT_EQ(Format(kFrom, nullptr, 12029), "none 317");
}

TEST(PosixErrorServices, EveryErrorThatTheNetworkReportsHasAText) {
  for (const DWORD code :
       {12001U, 12002U, 12004U, 12005U, 12006U, 12007U, 12009U, 12014U, 12017U, 12018U,
        12019U, 12029U, 12030U, 12031U, 12032U, 12037U, 12038U, 12039U, 12040U, 12043U,
        12044U, 12045U, 12150U, 12152U, 12154U, 12156U, 12157U, 12169U}) {
    EXPECT_FALSE(InternetMessage(code, InternetModule::kWinInet).empty()) << code;
  }
  for (const DWORD code :
       {12001U, 12002U, 12004U, 12005U, 12006U, 12007U, 12009U, 12015U, 12017U, 12018U,
        12019U, 12029U, 12030U, 12032U, 12037U, 12038U, 12044U, 12045U, 12057U, 12100U,
        12150U, 12152U, 12156U, 12157U, 12169U, 12170U, 12175U, 12179U, 12182U}) {
    EXPECT_FALSE(InternetMessage(code, InternetModule::kWinHttp).empty()) << code;
  }
}

TEST(PosixErrorServices, OtherModulesAndOtherFlagsAreRefused) {
  EXPECT_EQ(Services().GetModuleHandleW(OLESTR("kernel32.dll")), nullptr);
  EXPECT_EQ(ThreadLastError(), ERROR_MOD_NOT_FOUND);
  EXPECT_EQ(Services().GetModuleHandleW(nullptr), nullptr);
  OLECHAR buffer[80];
  EXPECT_EQ(Services().FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                      nullptr, 5, 0x400, buffer, 80, nullptr),
            0U);
  EXPECT_EQ(ThreadLastError(), ERROR_INVALID_PARAMETER);
}

}  // namespace
}  // namespace velandoc
