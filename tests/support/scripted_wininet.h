// A WinInet port that plays a script and writes down each call. Nothing goes to a network.
//
// Handles are counted: closing one twice, closing a parent before its child, using a closed one,
// and leaving one open at the end are failures of the test. Every successful operation spoils the
// last error, so that code which reads it late reads kSpoiledError.
#pragma once

#include <deque>
#include <map>
#include <string>
#include <vector>

#include "platform/text.h"
#include "platform/wininet.h"
#include "tests/support/call_line.h"

namespace velandoc::testing {

/// What one send leads to.
struct Answer {
  DWORD error = 0;                       // not 0: the send fails with this error
  WideString status = OLESTR("200");     // as the platform hands it out; empty: not to be had
  std::vector<std::string> chunks = {};  // each is one read, at most the size asked for
  DWORD readError = 0;                   // not 0: the read behind the last chunk fails with it
  std::map<DWORD, WideString> headers = {};
};

class ScriptedWinInet : public WinInet {
 public:
  static constexpr DWORD kSpoiledError = 0xDEAD;
  /// The error of operations that the script makes fail without an error of their own.
  static constexpr DWORD kScriptedError = 12029;

  ScriptedWinInet() = default;
  ~ScriptedWinInet() override;

  /// One line for each call, in order, such as "HttpOpenRequestW(2, POST, /a, null, null, text/*,
  /// 0x400200)". Handles are numbered from 1.
  std::vector<std::string> calls;
  /// The lines that begin with `name`.
  std::vector<std::string> CallsOf(const std::string& name) const;

  /// Played in order; a send without an answer left is a failure of the test and of the send.
  std::deque<Answer> answers;
  /// Played in order, then 0 for ever.
  std::deque<DWORD> dialogResults;
  /// Names of operations that fail from now on.
  std::vector<std::string> failing;
  HWND activeWindow = nullptr;
  /// Bodies of the sends, one entry each, and what InternetWriteFile was given.
  std::vector<std::string> bodies;
  std::vector<std::string> headerBlocks;
  std::string written;
  /// How many handles the test expects to be left open.
  int expectedLeaks = 0;
  /// Closing a handle closes those below it, as the system does; otherwise that is a failure of the
  /// test. For owners that lose a request's handle and close its parent.
  bool closesChildren = false;

  int OpenHandles() const;

  HINTERNET InternetOpenW(LPCWSTR agent, DWORD accessType, LPCWSTR proxy, LPCWSTR proxyBypass,
                          DWORD flags) override;
  HINTERNET InternetConnectW(HINTERNET session, LPCWSTR serverName, INTERNET_PORT port,
                             LPCWSTR userName, LPCWSTR password, DWORD service, DWORD flags,
                             DWORD_PTR context) override;
  HINTERNET HttpOpenRequestW(HINTERNET connect, LPCWSTR verb, LPCWSTR objectName, LPCWSTR version,
                             LPCWSTR referrer, LPCWSTR* acceptTypes, DWORD flags,
                             DWORD_PTR context) override;
  BOOL HttpSendRequestW(HINTERNET request, LPCWSTR headers, DWORD headersLength, LPVOID optional,
                        DWORD optionalLength) override;
  BOOL HttpSendRequestExW(HINTERNET request, INTERNET_BUFFERSW* buffersIn,
                          INTERNET_BUFFERSW* buffersOut, DWORD flags, DWORD_PTR context) override;
  BOOL InternetWriteFile(HINTERNET request, LPCVOID buffer, DWORD size, DWORD* written) override;
  BOOL HttpEndRequestW(HINTERNET request, INTERNET_BUFFERSW* buffersOut, DWORD flags,
                       DWORD_PTR context) override;
  BOOL InternetReadFile(HINTERNET request, LPVOID buffer, DWORD size, DWORD* read) override;
  BOOL HttpQueryInfoW(HINTERNET request, DWORD infoLevel, LPVOID buffer, DWORD* size,
                      DWORD* index) override;
  DWORD InternetErrorDlg(HWND parent, HINTERNET request, DWORD error, DWORD flags,
                         LPVOID* data) override;
  BOOL InternetQueryOptionW(HINTERNET handle, DWORD option, LPVOID buffer, DWORD* size) override;
  BOOL InternetSetOptionW(HINTERNET handle, DWORD option, LPVOID buffer, DWORD size) override;
  BOOL InternetCloseHandle(HINTERNET handle) override;
  HWND GetActiveWindow() override;
  DWORD GetLastError() override;

 private:
  struct Handle {
    int parent = 0;  // 0 for a session
    bool open = true;
  };

  bool Fails(const std::string& name);
  BOOL Done(BOOL success, DWORD error = kScriptedError);
  int NumberOf(HINTERNET handle) const;
  void ExpectOpen(HINTERNET handle, const char* operation);
  HINTERNET NewHandle(HINTERNET parent);
  BOOL PlaySend();

  std::vector<Handle> m_handles;  // number 1 is at index 0
  Answer m_current;               // of the latest send
  std::size_t m_chunk = 0;
  DWORD m_lastError = kSpoiledError;
};

}  // namespace velandoc::testing
