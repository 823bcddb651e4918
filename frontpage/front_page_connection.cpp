#include "frontpage/front_page_connection.h"

#include <algorithm>
#include <limits>
#include <memory>

#include "frontpage/form_body.h"
#include "platform/code_page.h"
#include "platform/out_of_memory.h"

namespace velandoc {
namespace {

// A single line feed between the two lines and none behind: that is what servers have always been
// sent.
constexpr LPCWSTR kHeaders = OLESTR(
    "Content-Type: application/x-vermeer-urlencoded\n"
    "X-Vermeer-Content-Type: application/x-vermeer-urlencoded");

constexpr std::size_t kBytesPerUnit = 4;

// The platform counts in int; text beyond that does not convert.
constexpr std::size_t kLargest = std::numeric_limits<int>::max();

}  // namespace

// The verb is never asked for: GetVerb is overridden.
CFrontPageConnection::CFrontPageConnection(LPCWSTR url)
    : CWinInetConnection(url, OLESTR("GET"), true) {}

CFrontPageConnection::~CFrontPageConnection() = default;

WideString CFrontPageConnection::GetVerb() {
  return m_handler != nullptr ? WideString(OLESTR("POST")) : WideString();
}

WideString CFrontPageConnection::GetUrlPath() {
  return m_handler != nullptr ? m_handler->GetPath() : WideString();
}

void CFrontPageConnection::ProcessResponse() {
  if (m_handler != nullptr) m_handler->HandleResponse(*this);
}

BOOL CFrontPageConnection::SendRequest() {
  if (m_handler == nullptr) return FALSE;
  return RaiseOutOfMemory([&] {
    const WideString body = BuildRequestBody(*m_handler);
    const std::size_t length = std::min(body.size(), kLargest);
    const std::size_t capacity = std::min(kBytesPerUnit * length, kLargest);
    const auto bytes = std::make_unique_for_overwrite<char[]>(capacity + 1);
    const int count = std::max(0, CurrentPort<CodePage>().WideCharToMultiByte(
                                      CP_UTF8, 0, body.data(), static_cast<int>(length),
                                      bytes.get(), static_cast<int>(capacity), nullptr, nullptr));
    bytes[static_cast<std::size_t>(count)] = 0;
    constexpr DWORD nullEnded = static_cast<DWORD>(-1);
    return CurrentPort<WinInet>().HttpSendRequestW(m_hRequest, kHeaders, nullEnded, bytes.get(),
                                                   static_cast<DWORD>(count));
  });
}

void CFrontPageConnection::NextHandler(CFrontPageHandler& handler) {
  if (m_hRequest != nullptr) CurrentPort<WinInet>().InternetCloseHandle(m_hRequest);
  m_hRequest = nullptr;
  m_handler = &handler;
}

bool RunRequest(CFrontPageConnection& connection) {
  if (FAILED(connection.Open(nullptr, nullptr))) return false;
  if (FAILED(connection.SendWithRetry())) return false;
  if (!connection.ReadResponse()) return false;
  connection.ProcessResponse();
  return true;
}

}  // namespace velandoc
