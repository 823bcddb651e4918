#include "platform/standard_streams.h"

#include <windows.h>

#include <cstdio>

#include "platform/windows/program/wide_text.h"

namespace velandoc {
namespace {

/// A console takes UTF-16 and shows it whatever its code page; pipes and files take the bytes.
bool Write(std::string_view text, DWORD handleName, FILE* stream) {
  HANDLE handle = GetStdHandle(handleName);
  DWORD mode = 0;
  if (!GetConsoleMode(handle, &mode)) {
    return std::fwrite(text.data(), 1, text.size(), stream) == text.size();
  }
  const std::wstring wide = WidenedText(text);
  DWORD written = 0;
  return WriteConsoleW(handle, wide.data(), static_cast<DWORD>(wide.size()), &written, nullptr) !=
         0;
}

}  // namespace

void PrepareStandardStreams() {}

bool WriteOutput(std::string_view text) { return Write(text, STD_OUTPUT_HANDLE, stdout); }

bool FlushOutput() { return std::fflush(stdout) == 0 && std::ferror(stdout) == 0; }

void WriteTalk(std::string_view text) {
  std::fflush(stdout);
  if (Write(text, STD_ERROR_HANDLE, stderr)) std::fflush(stderr);
}

}  // namespace velandoc
