// The WinInet port on Linux: arguments checked, handles looked up, results stored. What happens on
// the wire is the request's.
#include "platform/wininet.h"

#include <cstring>
#include <new>

#include "platform/posix/http/port_calls.h"
#include "platform/posix/http/query_info.h"
#include "platform/posix/wininet/error_dialog.h"
#include "platform/posix/wininet/request.h"

namespace velandoc {
namespace {

using namespace http;
using namespace wininet;

class CurlWinInet final : public WinInet {
 public:
  HINTERNET InternetOpenW(LPCWSTR agent, DWORD accessType, LPCWSTR, LPCWSTR, DWORD) override {
    // Nobody names a proxy of his own; the user's are in the environment.
    if (accessType != INTERNET_OPEN_TYPE_PRECONFIG) return NoHandle(ERROR_INVALID_PARAMETER);
    return MakeHandle([&] {
      auto session = std::make_shared<Session>();
      if (agent != nullptr) session->agent = AnsiBytes(agent);
      return HandleTable::Open(std::move(session), nullptr);
    });
  }

  HINTERNET InternetConnectW(HINTERNET sessionHandle, LPCWSTR serverName, INTERNET_PORT port,
                             LPCWSTR, LPCWSTR, DWORD service, DWORD, DWORD_PTR) override {
    // Of another service no server is known.
    return OpenConnect(sessionHandle, service == INTERNET_SERVICE_HTTP ? serverName : nullptr,
                       port);
  }

  HINTERNET HttpOpenRequestW(HINTERNET connectHandle, LPCWSTR verb, LPCWSTR objectName,
                             LPCWSTR version, LPCWSTR referrer, LPCWSTR* acceptTypes, DWORD flags,
                             DWORD_PTR) override {
    return OpenRequest<Request>(connectHandle, verb, objectName, version, referrer, acceptTypes,
                                flags);
  }

  BOOL HttpSendRequestW(HINTERNET handle, LPCWSTR headers, DWORD headersLength, LPVOID optional,
                        DWORD optionalLength) override {
    return WithRequest<Request>(handle, [&](Request& request) {
      if (optional == nullptr && optionalLength != 0) return ERROR_INVALID_PARAMETER;
      return request.Send(HeaderText(headers, headersLength),
                          std::string_view(static_cast<const char*>(optional), optionalLength));
    });
  }

  BOOL HttpSendRequestExW(HINTERNET handle, INTERNET_BUFFERSW* buffersIn, INTERNET_BUFFERSW*, DWORD,
                          DWORD_PTR) override {
    return WithRequest<Request>(handle, [&](Request& request) {
      if (buffersIn == nullptr) return request.BeginBody({}, 0);
      if (buffersIn->dwStructSize != sizeof(*buffersIn)) return ERROR_INVALID_PARAMETER;
      return request.BeginBody(HeaderText(buffersIn->lpcszHeader, buffersIn->dwHeadersLength),
                               buffersIn->dwBufferTotal);
    });
  }

  BOOL InternetWriteFile(HINTERNET handle, LPCVOID buffer, DWORD size, DWORD* written) override {
    if (written != nullptr) *written = 0;
    return WithRequest<Request>(handle, [&](Request& request) {
      if (written == nullptr || (buffer == nullptr && size != 0)) return ERROR_INVALID_PARAMETER;
      const DWORD error = request.WriteBody(static_cast<const char*>(buffer), size);
      if (error == ERROR_SUCCESS) *written = size;
      return error;
    });
  }

  BOOL HttpEndRequestW(HINTERNET handle, INTERNET_BUFFERSW*, DWORD, DWORD_PTR) override {
    return WithRequest<Request>(handle, [](Request& request) { return request.EndBody(); });
  }

  BOOL InternetReadFile(HINTERNET handle, LPVOID buffer, DWORD size, DWORD* read) override {
    if (read != nullptr) *read = 0;
    return WithRequest<Request>(handle, [&](Request& request) {
      if (read == nullptr || (buffer == nullptr && size != 0)) return ERROR_INVALID_PARAMETER;
      std::size_t count = 0;
      const DWORD error = request.Read(static_cast<char*>(buffer), size, &count);
      *read = static_cast<DWORD>(count);
      return error;
    });
  }

  BOOL HttpQueryInfoW(HINTERNET handle, DWORD infoLevel, LPVOID buffer, DWORD* size,
                      DWORD* index) override {
    return WithRequest<Request>(handle, [&](Request& request) {
      // The buffer that is to hold the value brings the name.
      return QueryInfo(request, infoLevel, static_cast<LPCWSTR>(buffer), buffer, size, index);
    });
  }

  DWORD InternetErrorDlg(HWND, HINTERNET handle, DWORD error, DWORD flags, LPVOID*) override {
    try {
      const auto request = HandleTable::Get<Request>(handle);
      return request != nullptr ? AskAboutError(*request, error, flags) : ERROR_INVALID_HANDLE;
    } catch (const std::bad_alloc&) {
      return ERROR_NOT_ENOUGH_MEMORY;
    }
  }

  BOOL InternetQueryOptionW(HINTERNET handle, DWORD option, LPVOID buffer, DWORD* size) override {
    return WithRequest<Request>(handle, [&](Request& request) {
      if (option == INTERNET_OPTION_URL) return GiveUrl(request, buffer, size);
      if (option != INTERNET_OPTION_SECURITY_FLAGS) return ERROR_INTERNET_INVALID_OPTION;
      if (size == nullptr) return ERROR_INVALID_PARAMETER;
      const bool fits = buffer != nullptr && *size >= sizeof(DWORD);
      *size = sizeof(DWORD);
      if (!fits) return ERROR_INSUFFICIENT_BUFFER;
      const DWORD securityFlags = request.SecurityFlags();
      std::memcpy(buffer, &securityFlags, sizeof(securityFlags));
      return ERROR_SUCCESS;
    });
  }

  BOOL InternetSetOptionW(HINTERNET handle, DWORD option, LPVOID buffer, DWORD size) override {
    return WithRequest<Request>(handle, [&](Request& request) {
      if (option != INTERNET_OPTION_SECURITY_FLAGS) return ERROR_INTERNET_INVALID_OPTION;
      if (buffer == nullptr || size != sizeof(DWORD)) return ERROR_INVALID_PARAMETER;
      DWORD securityFlags = 0;
      std::memcpy(&securityFlags, buffer, sizeof(securityFlags));
      request.SetSecurityFlags(securityFlags);
      return ERROR_SUCCESS;
    });
  }

  BOOL InternetCloseHandle(HINTERNET handle) override {
    return HandleTable::Close(handle) ? TRUE : FailWith(ERROR_INVALID_HANDLE);
  }

  HWND GetActiveWindow() override { return nullptr; }
  DWORD GetLastError() override { return ThreadLastError(); }
};

}  // namespace

template <>
WinInet& SystemPort<WinInet>() {
  static CurlWinInet port;
  return port;
}

}  // namespace velandoc
