#include "platform/posix/path_text.h"

#include "platform/code_page.h"

namespace velandoc {

std::string PathToUtf8(WideView text) {
  CodePage& codePage = SystemPort<CodePage>();
  const int size = static_cast<int>(text.size());
  const int count =
      codePage.WideCharToMultiByte(CP_UTF8, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
  std::string bytes(static_cast<std::size_t>(count), '\0');
  codePage.WideCharToMultiByte(CP_UTF8, 0, text.data(), size, bytes.data(), count, nullptr,
                               nullptr);
  return bytes;
}

WideString PathFromUtf8(const std::string& bytes) {
  CodePage& codePage = SystemPort<CodePage>();
  const int size = static_cast<int>(bytes.size());
  const int count = codePage.MultiByteToWideChar(CP_UTF8, 0, bytes.data(), size, nullptr, 0);
  WideString text(static_cast<std::size_t>(count), u'\0');
  codePage.MultiByteToWideChar(CP_UTF8, 0, bytes.data(), size, text.data(), count);
  return text;
}

}  // namespace velandoc
