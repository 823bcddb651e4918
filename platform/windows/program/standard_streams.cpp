#include "platform/standard_streams.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <iostream>

#include "platform/windows/program/wide_text.h"

namespace velandoc {
namespace {

constexpr DWORD kEscapes = 0x0004;  // ENABLE_VIRTUAL_TERMINAL_PROCESSING

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

std::optional<std::string> ReadConsoleLine(HANDLE console) {
  std::wstring line;
  while (line.empty() || line.back() != L'\n') {
    std::array<wchar_t, 256> buffer;
    DWORD read = 0;
    if (!ReadConsoleW(console, buffer.data(), buffer.size(), &read, nullptr) || read == 0) {
      return std::nullopt;
    }
    line.append(buffer.data(), read);
  }
  return NarrowedText(line);
}

}  // namespace

void PrepareStandardStreams() {}

bool WriteOutput(std::string_view text) { return Write(text, STD_OUTPUT_HANDLE, stdout); }

bool FlushOutput() { return std::fflush(stdout) == 0 && std::ferror(stdout) == 0; }

bool WriteBytes(std::string_view bytes) {
  constexpr std::size_t kLargest = std::size_t{1} << 20;
  if (!FlushOutput()) return false;
  HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
  while (!bytes.empty()) {
    DWORD written = 0;
    const auto size = static_cast<DWORD>(std::min(bytes.size(), kLargest));
    if (!::WriteFile(output, bytes.data(), size, &written, nullptr)) return false;
    bytes.remove_prefix(written);
  }
  return true;
}

std::ptrdiff_t ReadBytes(char* buffer, std::size_t size) {
  constexpr std::size_t kLargest = std::size_t{1} << 20;
  DWORD count = 0;
  const auto wanted = static_cast<DWORD>(std::min(size, kLargest));
  if (::ReadFile(GetStdHandle(STD_INPUT_HANDLE), buffer, wanted, &count, nullptr)) return count;
  // The other end of a pipe is closed: that is how it ends.
  return ::GetLastError() == ERROR_BROKEN_PIPE ? 0 : -1;
}

void WriteTalk(std::string_view text) {
  std::fflush(stdout);
  if (Write(text, STD_ERROR_HANDLE, stderr)) std::fflush(stderr);
}

bool IsTalkTerminal() {
  HANDLE handle = GetStdHandle(STD_ERROR_HANDLE);
  DWORD mode = 0;
  // A console of today erases lines once it is told to; an older one refuses that.
  return GetConsoleMode(handle, &mode) != 0 && SetConsoleMode(handle, mode | kEscapes) != 0;
}

std::size_t TalkColumns() {
  constexpr std::size_t kUsual = 80;
  CONSOLE_SCREEN_BUFFER_INFO info{};
  const bool known =
      GetConsoleScreenBufferInfo(GetStdHandle(STD_ERROR_HANDLE), &info) != 0 && info.dwSize.X > 1;
  return known ? static_cast<std::size_t>(info.dwSize.X) : kUsual;
}

std::optional<std::string> ReadInputLine() {
  HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
  DWORD mode = 0;
  std::optional<std::string> line;
  if (GetConsoleMode(input, &mode)) {
    line = ReadConsoleLine(input);
  } else {
    std::string text;
    if (std::getline(std::cin, text)) line = std::move(text);
  }
  while (line && !line->empty() && (line->back() == '\n' || line->back() == '\r')) line->pop_back();
  return line;
}

}  // namespace velandoc
