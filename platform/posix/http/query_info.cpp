#include "platform/posix/http/query_info.h"

#include <charconv>
#include <cstring>
#include <optional>

namespace velandoc::http {
namespace {

constexpr DWORD kFlagRequestHeaders = 0x80000000;
constexpr DWORD kFlagSystemTime = 0x40000000;
constexpr DWORD kFlagNumber = 0x20000000;
constexpr DWORD kNumberMask = 0x0000FFFF;

DWORD StoreText(std::string_view bytes, LPVOID buffer, DWORD* size) {
  const WideString text = FromAnsiBytes(bytes);
  const std::size_t length = text.size() * sizeof(WCHAR);
  const std::size_t needed = length + sizeof(WCHAR);
  if (buffer == nullptr || *size < needed) {
    *size = static_cast<DWORD>(needed);
    return ERROR_INSUFFICIENT_BUFFER;
  }
  std::memcpy(buffer, text.c_str(), needed);
  *size = static_cast<DWORD>(length);
  return ERROR_SUCCESS;
}

DWORD StoreNumber(std::string_view text, LPVOID buffer, DWORD* size) {
  DWORD number = 0;
  const char* end = text.data() + text.size();
  if (std::from_chars(text.data(), end, number).ec != std::errc()) {
    return ERROR_HTTP_INVALID_QUERY_REQUEST;
  }
  const bool fits = buffer != nullptr && *size >= sizeof(number);
  *size = sizeof(number);
  if (!fits) return ERROR_INSUFFICIENT_BUFFER;
  std::memcpy(buffer, &number, sizeof(number));
  return ERROR_SUCCESS;
}

/// All lines as the peer wrote them; `end` stands behind each, and once more behind the last.
std::string RawHeaders(std::string first, const HeaderBlock& headers, std::string_view end) {
  std::string text = std::move(first);
  text += end;
  for (const HeaderLine& line : headers.Lines()) {
    text.append(line.name).append(": ").append(line.value).append(end);
  }
  // Behind a NUL-separated list the terminator is the last line's end.
  if (end.front() != '\0') text += end;
  return text;
}

}  // namespace

DWORD GiveUrl(const HttpRequest& request, LPVOID buffer, DWORD* size) {
  return size != nullptr ? StoreText(request.Url(), buffer, size) : ERROR_INVALID_PARAMETER;
}

DWORD QueryInfo(const HttpRequest& request, DWORD infoLevel, LPCWSTR name, LPVOID buffer,
                DWORD* size, DWORD* index) {
  if (size == nullptr) return ERROR_INVALID_PARAMETER;
  if ((infoLevel & kFlagSystemTime) != 0) return ERROR_HTTP_INVALID_QUERY_REQUEST;
  const DWORD query = infoLevel & kNumberMask;
  const bool ofRequest = (infoLevel & kFlagRequestHeaders) != 0;
  const ResponseHead* answer = request.Answer();
  if (query == HTTP_QUERY_REQUEST_METHOD) return StoreText(request.Verb(), buffer, size);
  if (!ofRequest && answer == nullptr) return ERROR_HTTP_HEADER_NOT_FOUND;
  const HeaderBlock& headers = ofRequest ? request.Headers() : answer->headers;

  std::optional<std::string> value;
  bool isHeader = false;
  switch (query) {
    case HTTP_QUERY_RAW_HEADERS:
    case HTTP_QUERY_RAW_HEADERS_CRLF:
      value = RawHeaders(
          ofRequest ? request.Verb() + " " + request.Target() + " HTTP/1.1" : answer->statusLine,
          headers, query == HTTP_QUERY_RAW_HEADERS ? std::string_view("\0", 1) : "\r\n");
      break;
    case HTTP_QUERY_VERSION:
      value = ofRequest ? "HTTP/1.1" : answer->version;
      break;
    case HTTP_QUERY_STATUS_CODE:
      if (!ofRequest) value = answer->statusCode;
      break;
    case HTTP_QUERY_STATUS_TEXT:
      if (!ofRequest) value = answer->reason;
      break;
    default: {
      isHeader = true;
      const std::string custom =
          query == kNamedHeader && name != nullptr ? AnsiBytes(name) : std::string();
      const char* header = query == kNamedHeader ? custom.c_str() : HeaderNameOf(query);
      if (header == nullptr) return ERROR_HTTP_INVALID_QUERY_REQUEST;
      const std::string* found = headers.Find(header, index != nullptr ? *index : 0);
      if (found != nullptr) value = *found;
      break;
    }
  }
  if (!value) return ERROR_HTTP_HEADER_NOT_FOUND;
  const DWORD error = (infoLevel & kFlagNumber) != 0 ? StoreNumber(*value, buffer, size)
                                                     : StoreText(*value, buffer, size);
  if (error == ERROR_SUCCESS && isHeader && index != nullptr) ++*index;
  return error;
}

}  // namespace velandoc::http
