#include "hdfs/error_texts.h"

#include <array>
#include <cstdio>
#include <cstring>

#include "platform/error_services.h"

namespace velandoc {
namespace {

// Results of FACILITY_ITF that stand for Basic's error numbers; the first stands for none.
constexpr DWORD kFirstBasicResult = 0x80040200;
constexpr DWORD kLastBasicResult = 0x8004FFFF;

constexpr DWORD kFormatFlags = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS;
constexpr DWORD kLanguage = MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT);

/// A text in a buffer of the system's.
class FormattedMessage {
 public:
  FormattedMessage(DWORD source, HMODULE module, DWORD code) {
    // Nothing is left to tell the caller by the result: without a text the pointer stays null.
    CurrentPort<ErrorServices>().FormatMessageW(kFormatFlags | source, module, code, kLanguage,
                                                reinterpret_cast<LPWSTR>(&m_text), 0, nullptr);
  }
  ~FormattedMessage() { CurrentPort<ErrorServices>().LocalFree(m_text); }
  FormattedMessage(const FormattedMessage&) = delete;
  FormattedMessage& operator=(const FormattedMessage&) = delete;

  /// Null for none.
  LPCWSTR Get() const { return m_text; }

 private:
  LPWSTR m_text = nullptr;
};

WideString NumberOf(DWORD result) {
  std::array<char, 32> text{};
  if (result > kFirstBasicResult && result <= kLastBasicResult) {
    std::snprintf(text.data(), text.size(), "IDispatch error #%d",
                  static_cast<int>(result - kFirstBasicResult));
  } else {
    std::snprintf(text.data(), text.size(), "Unknown error 0x%0lX",
                  static_cast<unsigned long>(result));
  }
  return WideString(text.data(), text.data() + std::strlen(text.data()));
}

}  // namespace

WideString ErrorMessage(HRESULT hr) {
  const auto code = static_cast<DWORD>(hr);
  const FormattedMessage message(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, code);
  if (message.Get() == nullptr) return NumberOf(code);
  WideString text = message.Get();
  if (text.size() >= 2 && text.back() == '\n') {
    text.pop_back();
    if (text.back() == '\r') text.pop_back();
  }
  return text;
}

WideString GetModuleErrorText(DWORD code, HMODULE module) {
  const FormattedMessage message(FORMAT_MESSAGE_FROM_HMODULE, module, code);
  return message.Get() != nullptr ? WideString(message.Get()) : WideString();
}

}  // namespace velandoc
