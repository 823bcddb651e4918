// CWinHttpConnection, an HTTP request object over WinHTTP: no dialogs, no second attempts, for
// clients without a user at hand. It is no relative of CWinInetConnection, only of the same shape.
//
// An object stands for one target URL and, at any moment, one request; one thread uses it. Every
// answer is a success here, whatever its status: the owner reads m_statusCode. A certificate
// problem fails the send. E_FAIL is the only failing HRESULT, and no reason is kept.
//
// The destructor closes the request and nothing else. Connection and session stay open until the
// process ends, and so does a request that a later one replaces without its being closed.
#pragma once

#include <vector>

#include "connection/inline_wide_string.h"
#include "connection/url_components.h"
#include "connection/utf8.h"
#include "platform/mfc/file.h"
#include "platform/text.h"
#include "platform/winhttp.h"

namespace velandoc {

class CWinHttpConnection {
 public:
  /// `url` may be null; it is always escaped. One that does not escape or parse is not reported:
  /// the object has no host then, and the platform refuses that when something is sent.
  explicit CWinHttpConnection(LPCWSTR url);
  CWinHttpConnection(const CWinHttpConnection&) = delete;
  CWinHttpConnection& operator=(const CWinHttpConnection&) = delete;
  /// Not virtual, though the class has a virtual operation: who makes an object on the heap deletes
  /// it as what it is.
  ~CWinHttpConnection();

  /// For a protocol's own reading of the answer; does nothing here. Execute calls it after a body
  /// that was read to its end.
  virtual void ProcessResponse();

  /// `types` is null-ended; the texts are copied.
  void SetAcceptTypes(const LPCWSTR* types);
  /// A new request on the connection that is there, with the options and credentials set below. A
  /// request handle that stands is overwritten and stays open.
  HRESULT OpenRequest();
  /// Opens what is missing, always a new request, and sends its head without headers or body of the
  /// owner's. E_FAIL if m_streaming is set.
  HRESULT SendRequest();
  /// SendRequest, then the answer: its status, and its body unless m_keepBody is set. S_OK whatever
  /// the status.
  HRESULT Execute();
  /// Sends the stream from where it stands as the request's body, then reads the answer. The length
  /// told to the server is the low 32 bits of the stream's size. E_FAIL if a send or a write
  /// failed; S_OK without a status (0) if the answer could not be had.
  HRESULT SendStream(IStream* stream);
  /// Receives the answer if that was not done yet, then reads its body into m_sink or, without one,
  /// into m_responseText, where a NUL drops the rest of its chunk. False if the answer did not come
  /// or a read failed; what came before stays.
  bool ReadResponse();
  /// Non-zero and the header's value, of any length, if the answer has it; 0 with `out` untouched
  /// if it has not. `infoLevel` is one of WINHTTP_QUERY_*.
  BOOL QueryHeader(DWORD infoLevel, WideString& out);
  /// The status of the answer, 0 if there is none.
  DWORD QueryStatusCode();

  DWORD m_requestFlags = 0;  // of WinHttpOpenRequest

 protected:
  HINTERNET m_hSession = nullptr;
  HINTERNET m_hConnect = nullptr;

 public:
  HINTERNET m_hRequest = nullptr;

 protected:
  DWORD m_sessionFlags = 0;  // of WinHttpOpen

 public:
  // 0 from the opening of the session on, and nothing ever sets it: no reason of a failure is kept.
  DWORD m_lastError = 0;
  DWORD m_statusCode = 0;  // 0 before an answer

 protected:
  UrlComponents m_url;
  // Path and extra info. Nothing reads it back; it is kept for who looks at the object in a
  // debugger.
  InlineWideString m_resourcePath;

 public:
  WideString m_verb = OLESTR("GET");  // may be assigned after construction

 protected:
  // Emptied by each send before it would use them.
  WideString m_headers;
  WideString m_body;
  std::vector<WideString> m_acceptTypes;
  // Points into m_acceptTypes, with a null behind the last. The platform reads it while the request
  // handle is in use.
  std::vector<LPCWSTR> m_acceptTypePointers;
  bool m_streaming = false;  // nothing sets it

 public:
  NarrowString m_responseText;  // the body's bytes as they came, when there is no sink
  CFile* m_sink = nullptr;      // takes the body; the owner's

 protected:
  void* m_unused = nullptr;

 public:
  DWORD m_totalLength = 0;  // bytes that the head announces
  bool m_noRedirect = false;
  bool m_keepBody = false;  // Execute leaves the body unread
  // WinHttpReceiveResponse has been called. Stays set for all that follows on this object.
  bool m_responseStarted = false;

  // Where credentials come in. Nothing in this component sets them.
  static constexpr DWORD kNoPolicy = 0xFFFFFFFF;
  DWORD m_autoLogonPolicy = kNoPolicy;  // a value of WINHTTP_OPTION_AUTOLOGON_POLICY
  DWORD m_authScheme = 0;               // one of WINHTTP_AUTH_SCHEME_*; 0 for no credentials
  WideString m_userName;
  WideString m_password;

 private:
  bool QueryText(DWORD infoLevel, WideString& text);
};

}  // namespace velandoc
