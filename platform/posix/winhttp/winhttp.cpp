// The WinHttp port on Linux: arguments checked, handles looked up, results stored. What happens on
// the wire is the request's.
#include "platform/winhttp.h"

#include <cstring>

#include "platform/posix/http/port_calls.h"
#include "platform/posix/http/query_info.h"
#include "platform/posix/winhttp/request.h"

namespace velandoc {
namespace {

using namespace http;
using winhttp::Request;

constexpr DWORD kAccessTypeDefaultProxy = 0;

/// WinHTTP has one number where WinINet tells a reset from an end.
DWORD WinHttpNumber(DWORD error) {
  return error == ERROR_INTERNET_CONNECTION_RESET ? ERROR_WINHTTP_CONNECTION_ERROR : error;
}

template <class Operation>
BOOL OnRequest(HINTERNET handle, Operation operation) {
  return WithRequest<Request>(handle,
                              [&](Request& request) { return WinHttpNumber(operation(request)); });
}

class CurlWinHttp final : public WinHttp {
 public:
  HINTERNET WinHttpOpen(LPCWSTR agent, DWORD accessType, LPCWSTR, LPCWSTR, DWORD flags) override {
    const bool usesProxies =
        accessType == WINHTTP_ACCESS_TYPE_AUTOMATIC_PROXY || accessType == kAccessTypeDefaultProxy;
    // Nobody names a proxy of his own, and nothing is asynchronous.
    if ((!usesProxies && accessType != WINHTTP_ACCESS_TYPE_NO_PROXY) || flags != 0) {
      return NoHandle(ERROR_INVALID_PARAMETER);
    }
    return MakeHandle([&] {
      auto session = std::make_shared<Session>();
      session->usesProxies = usesProxies;
      if (agent != nullptr) session->agent = AnsiBytes(agent);
      return HandleTable::Open(std::move(session), nullptr);
    });
  }

  HINTERNET WinHttpConnect(HINTERNET sessionHandle, LPCWSTR serverName, INTERNET_PORT port,
                           DWORD) override {
    return OpenConnect(sessionHandle, serverName, port);
  }

  HINTERNET WinHttpOpenRequest(HINTERNET connectHandle, LPCWSTR verb, LPCWSTR objectName,
                               LPCWSTR version, LPCWSTR referrer, LPCWSTR* acceptTypes,
                               DWORD flags) override {
    return OpenRequest<Request>(connectHandle, verb, objectName, version, referrer, acceptTypes,
                                flags);
  }

  BOOL WinHttpSetOption(HINTERNET handle, DWORD option, LPVOID buffer, DWORD size) override {
    return OnRequest(handle, [&](Request& request) {
      DWORD value = 0;
      if (buffer == nullptr || size != sizeof(value)) return DWORD{ERROR_INVALID_PARAMETER};
      std::memcpy(&value, buffer, sizeof(value));
      return request.SetOption(option, value);
    });
  }

  BOOL WinHttpQueryOption(HINTERNET handle, DWORD option, LPVOID buffer, DWORD* size) override {
    return OnRequest(handle, [&](Request& request) {
      if (option != WINHTTP_OPTION_URL) return DWORD{ERROR_WINHTTP_INVALID_OPTION};
      return GiveUrl(request, buffer, size);
    });
  }

  BOOL WinHttpSetCredentials(HINTERNET handle, DWORD target, DWORD scheme, LPCWSTR userName,
                             LPCWSTR password, LPVOID) override {
    return OnRequest(handle, [&](Request& request) {
      return request.SetCredentials(target, scheme, userName, password);
    });
  }

  BOOL WinHttpSendRequest(HINTERNET handle, LPCWSTR headers, DWORD headersLength, LPVOID optional,
                          DWORD optionalLength, DWORD totalLength, DWORD_PTR) override {
    return OnRequest(handle, [&](Request& request) {
      if (optional == nullptr && optionalLength != 0) return DWORD{ERROR_INVALID_PARAMETER};
      return request.Send(HeaderText(headers, headersLength),
                          std::string_view(static_cast<const char*>(optional), optionalLength),
                          totalLength);
    });
  }

  BOOL WinHttpWriteData(HINTERNET handle, LPCVOID buffer, DWORD size, DWORD* written) override {
    if (written != nullptr) *written = 0;
    return OnRequest(handle, [&](Request& request) {
      if (buffer == nullptr && size != 0) return DWORD{ERROR_INVALID_PARAMETER};
      const DWORD error = request.Write(static_cast<const char*>(buffer), size);
      if (error == ERROR_SUCCESS && written != nullptr) *written = size;
      return error;
    });
  }

  BOOL WinHttpReceiveResponse(HINTERNET handle, LPVOID) override {
    return OnRequest(handle, [](Request& request) { return request.Receive(); });
  }

  BOOL WinHttpQueryHeaders(HINTERNET handle, DWORD infoLevel, LPCWSTR name, LPVOID buffer,
                           DWORD* size, DWORD* index) override {
    return OnRequest(handle, [&](Request& request) {
      if (request.Answer() == nullptr) return ERROR_WINHTTP_INCORRECT_HANDLE_STATE;
      return QueryInfo(request, infoLevel, name, buffer, size, index);
    });
  }

  BOOL WinHttpQueryDataAvailable(HINTERNET handle, DWORD* available) override {
    if (available != nullptr) *available = 0;
    return OnRequest(handle, [&](Request& request) {
      std::size_t count = 0;
      const DWORD error = request.Available(&count);
      if (available != nullptr) *available = static_cast<DWORD>(count);
      return error;
    });
  }

  BOOL WinHttpReadData(HINTERNET handle, LPVOID buffer, DWORD size, DWORD* read) override {
    if (read != nullptr) *read = 0;
    return OnRequest(handle, [&](Request& request) {
      if (read == nullptr || (buffer == nullptr && size != 0)) {
        return DWORD{ERROR_INVALID_PARAMETER};
      }
      std::size_t count = 0;
      const DWORD error = request.Read(static_cast<char*>(buffer), size, &count);
      *read = static_cast<DWORD>(count);
      return error;
    });
  }

  BOOL WinHttpCloseHandle(HINTERNET handle) override {
    return HandleTable::Close(handle) ? TRUE : FailWith(ERROR_INVALID_HANDLE);
  }

  DWORD GetLastError() override { return ThreadLastError(); }
};

}  // namespace

template <>
WinHttp& SystemPort<WinHttp>() {
  static CurlWinHttp port;
  return port;
}

}  // namespace velandoc
