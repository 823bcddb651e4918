#include "platform/posix/http/port_calls.h"

#include <algorithm>

#include "platform/posix/http/endpoint.h"

namespace velandoc::http {

std::string HeaderText(LPCWSTR text, DWORD length) {
  if (text == nullptr) return {};
  return AnsiBytes(length == static_cast<DWORD>(-1) ? WideView(text) : WideView(text, length));
}

std::string AcceptHeader(const LPCWSTR* acceptTypes) {
  std::string value;
  if (acceptTypes == nullptr) return value;
  for (; *acceptTypes != nullptr; ++acceptTypes) {
    if (!value.empty()) value += ", ";
    value += AnsiBytes(*acceptTypes);
  }
  return value;
}

std::string VerbText(LPCWSTR verb) {
  return verb != nullptr && *verb != u'\0' ? AnsiBytes(verb) : "GET";
}

bool IsToken(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char character) {
    return character > ' ' && character < 0x7F && character != ':';
  });
}

HINTERNET OpenConnect(HINTERNET sessionHandle, LPCWSTR serverName, INTERNET_PORT port) {
  return MakeHandle([&]() -> HINTERNET {
    auto session = HandleTable::Get<Session>(sessionHandle);
    if (session == nullptr) return nullptr;
    if (serverName == nullptr || *serverName == u'\0') return NoHandle(ERROR_INVALID_PARAMETER);
    auto connect = std::make_shared<Connect>();
    connect->session = std::move(session);
    connect->host = Utf8(serverName);
    connect->port = port;
    return HandleTable::Open(std::move(connect), sessionHandle);
  });
}

}  // namespace velandoc::http
