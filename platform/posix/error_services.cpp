// The ErrorServices port on Linux.
#include "platform/error_services.h"

#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/ascii_case.h"
#include "platform/posix/com/system_messages.h"
#include "platform/posix/debug_channel.h"
#include "platform/posix/internet_messages.h"
#include "platform/posix/last_error.h"

namespace velandoc {
namespace {

constexpr DWORD kServedFlags = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS;
constexpr DWORD kFacilityMask = 0xFFFF0000;
constexpr DWORD kWin32Facility = 0x80070000;

// What the two handles point at: addresses that are nobody else's.
constexpr char kWinInetModule = 0;
constexpr char kWinHttpModule = 0;

HMODULE HandleOf(const char& module) { return const_cast<char*>(&module); }

/// The system knows the internet codes too, plain and as HRESULTs, so that a code tells a user
/// something wherever it turns up.
std::u16string_view SystemText(DWORD code) {
  const std::u16string_view text = SystemMessage(code);
  if (!text.empty()) return text;
  return InternetMessage((code & kFacilityMask) == kWin32Facility ? code & ~kFacilityMask : code);
}

std::u16string_view ModuleText(LPCVOID module, DWORD code) {
  if (module == &kWinInetModule) return InternetMessage(code, InternetModule::kWinInet);
  if (module == &kWinHttpModule) return InternetMessage(code, InternetModule::kWinHttp);
  return {};
}

class PosixErrorServices final : public ErrorServices {
 public:
  DWORD FormatMessageW(DWORD flags, LPCVOID source, DWORD code, DWORD, LPWSTR buffer, DWORD,
                       va_list*) override {
    if ((flags & kServedFlags) != kServedFlags || buffer == nullptr) {
      FailWith(ERROR_INVALID_PARAMETER);
      return 0;
    }
    LPWSTR& allocated = *reinterpret_cast<LPWSTR*>(buffer);
    allocated = nullptr;
    std::u16string_view text;
    if ((flags & FORMAT_MESSAGE_FROM_HMODULE) != 0) text = ModuleText(source, code);
    if (text.empty() && (flags & FORMAT_MESSAGE_FROM_SYSTEM) != 0) text = SystemText(code);
    if (text.empty()) {
      FailWith(ERROR_MR_MID_NOT_FOUND);
      return 0;
    }
    constexpr std::u16string_view kLineEnd = u"\r\n";
    const std::size_t length = text.size() + kLineEnd.size();
    allocated = static_cast<LPWSTR>(std::calloc(length + 1, sizeof(WCHAR)));
    if (allocated == nullptr) {
      FailWith(ERROR_NOT_ENOUGH_MEMORY);
      return 0;
    }
    text.copy(allocated, text.size());
    kLineEnd.copy(allocated + text.size(), kLineEnd.size());
    return static_cast<DWORD>(length);
  }

  void LocalFree(void* memory) override { std::free(memory); }

  HMODULE GetModuleHandleW(LPCWSTR name) override {
    if (name != nullptr) {
      if (EqualsIgnoringAsciiCase(WideView(name), OLESTR("wininet.dll"))) {
        return HandleOf(kWinInetModule);
      }
      if (EqualsIgnoringAsciiCase(WideView(name), OLESTR("winhttp.dll"))) {
        return HandleOf(kWinHttpModule);
      }
    }
    FailWith(ERROR_MOD_NOT_FOUND);
    return nullptr;
  }

  HRESULT CreateErrorInfo(ICreateErrorInfo** info) override { return ::CreateErrorInfo(info); }

  void OutputDebugStringW(LPCWSTR text) override { WriteToDebugChannel(text); }
};

}  // namespace

template <>
ErrorServices& SystemPort<ErrorServices>() {
  static PosixErrorServices port;
  return port;
}

}  // namespace velandoc
