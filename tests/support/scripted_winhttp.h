// A WinHttp port that plays a script and writes down each call. Nothing goes to a network.
//
// Handles are counted: closing one twice, using a closed one, and leaving a request open at the end
// are failures of the test. Sessions and connections may stay open. An operation on a request that
// was not sent, or whose answer was not received, fails as the platform's does. Every successful
// operation spoils the last error.
#pragma once

#include <deque>
#include <map>
#include <string>
#include <vector>

#include "platform/text.h"
#include "platform/winhttp.h"

namespace velandoc::testing {

/// What one send leads to.
struct HttpAnswer {
  DWORD sendError = 0;                   // not 0: the send fails with this error
  DWORD receiveError = 0;                // not 0: the head does not come
  WideString status = OLESTR("200");     // as the platform hands it out; empty: not to be had
  std::vector<std::string> chunks = {};  // each is one read, at most the size asked for
  DWORD availableError = 0;  // not 0: asking for more behind the last chunk fails with it
  DWORD readError = 0;      // not 0: more is told behind the last chunk, and its read fails with it
  bool endsInRead = false;  // more is told behind the last chunk, and nothing is read
  std::map<DWORD, WideString> headers = {};
};

class ScriptedWinHttp : public WinHttp {
 public:
  static constexpr DWORD kSpoiledError = 0xDEAD;
  /// The error of operations that the script makes fail without an error of their own.
  static constexpr DWORD kScriptedError = 12029;

  ScriptedWinHttp() = default;
  ~ScriptedWinHttp() override;

  /// One line for each call, in order, such as "WinHttpConnect(1, h, 80, 0)". Handles are numbered
  /// from 1.
  std::vector<std::string> calls;
  /// The lines that begin with `name`.
  std::vector<std::string> CallsOf(const std::string& name) const;

  /// Played in order; a send without an answer left is a failure of the test and of the send.
  std::deque<HttpAnswer> answers;
  /// Names of operations that fail from now on.
  std::vector<std::string> failing;
  /// How many writes succeed before all that follow fail; below 0: all.
  int goodWrites = -1;
  /// What WinHttpWriteData was given.
  std::string written;
  /// How many requests the test expects to be left open.
  int expectedLeaks = 0;

  int OpenRequests() const { return OpenHandles(Kind::kRequest); }
  int OpenConnections() const { return OpenHandles(Kind::kConnection); }
  int OpenSessions() const { return OpenHandles(Kind::kSession); }

  HINTERNET WinHttpOpen(LPCWSTR agent, DWORD accessType, LPCWSTR proxy, LPCWSTR proxyBypass,
                        DWORD flags) override;
  HINTERNET WinHttpConnect(HINTERNET session, LPCWSTR serverName, INTERNET_PORT port,
                           DWORD reserved) override;
  HINTERNET WinHttpOpenRequest(HINTERNET connect, LPCWSTR verb, LPCWSTR objectName, LPCWSTR version,
                               LPCWSTR referrer, LPCWSTR* acceptTypes, DWORD flags) override;
  BOOL WinHttpSetOption(HINTERNET handle, DWORD option, LPVOID buffer, DWORD size) override;
  BOOL WinHttpSetCredentials(HINTERNET request, DWORD target, DWORD scheme, LPCWSTR userName,
                             LPCWSTR password, LPVOID parameters) override;
  BOOL WinHttpSendRequest(HINTERNET request, LPCWSTR headers, DWORD headersLength, LPVOID optional,
                          DWORD optionalLength, DWORD totalLength, DWORD_PTR context) override;
  BOOL WinHttpWriteData(HINTERNET request, LPCVOID buffer, DWORD size, DWORD* written) override;
  BOOL WinHttpReceiveResponse(HINTERNET request, LPVOID reserved) override;
  BOOL WinHttpQueryHeaders(HINTERNET request, DWORD infoLevel, LPCWSTR name, LPVOID buffer,
                           DWORD* size, DWORD* index) override;
  BOOL WinHttpQueryDataAvailable(HINTERNET request, DWORD* available) override;
  BOOL WinHttpReadData(HINTERNET request, LPVOID buffer, DWORD size, DWORD* read) override;
  BOOL WinHttpCloseHandle(HINTERNET handle) override;
  DWORD GetLastError() override;

 private:
  enum class Kind { kSession, kConnection, kRequest };
  struct Handle {
    Kind kind;
    bool open = true;
    bool received = false;
    HttpAnswer answer = {};
    std::size_t chunk = 0;
  };

  int OpenHandles(Kind kind) const;
  bool Fails(const std::string& name);
  BOOL Done(BOOL success, DWORD error = kScriptedError);
  HINTERNET NewHandle(Kind kind);
  static int NumberOf(HINTERNET handle);
  /// A failure of the test, and null, if the handle is not open or of another kind.
  Handle* Find(HINTERNET handle, Kind kind, const char* operation);

  std::deque<Handle> m_handles;  // number 1 is at index 0
  DWORD m_lastError = kSpoiledError;
};

}  // namespace velandoc::testing
