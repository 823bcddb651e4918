#include "hdfs/encode_url_part.h"

#include "platform/code_page.h"

namespace velandoc {
namespace {

constexpr std::size_t kOutputPerUnit = 8;

bool PassesUnescaped(OLECHAR unit) {
  return (unit >= '0' && unit <= '9') || (unit >= 'A' && unit <= 'Z') ||
         (unit >= 'a' && unit <= 'z') || unit == '.' || unit == '/' || unit == ':';
}

void AppendEscape(OLECHAR unit, WideString& encoded) {
  constexpr WideView digits = OLESTR("0123456789abcdef");
  encoded += '%';
  if (unit >= 16) encoded += digits[unit / 16U];
  encoded += digits[unit % 16U];
}

void AppendUtf8AsAnsi(OLECHAR unit, WideString& encoded) {
  constexpr int capacity = 7;
  char bytes[capacity];
  OLECHAR characters[capacity];
  CodePage& codePage = CurrentPort<CodePage>();
  const int byteCount =
      codePage.WideCharToMultiByte(CP_UTF8, 0, &unit, 1, bytes, capacity, nullptr, nullptr);
  if (byteCount <= 0) return;
  const int count = codePage.MultiByteToWideChar(CP_ACP, 0, bytes, byteCount, characters, capacity);
  if (count > 0) encoded.append(characters, static_cast<std::size_t>(count));
}

}  // namespace

WideString EncodeUrlPart(WideView text, bool keepNonAscii) {
  WideString encoded;
  encoded.reserve(text.size() * kOutputPerUnit);
  for (const OLECHAR unit : text) {
    if (PassesUnescaped(unit)) {
      encoded += unit;
    } else if (unit < 128) {
      AppendEscape(unit, encoded);
    } else if (keepNonAscii) {
      encoded += unit;
    } else {
      AppendUtf8AsAnsi(unit, encoded);
    }
  }
  return encoded;
}

}  // namespace velandoc
