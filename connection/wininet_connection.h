// CWinInetConnection, the one HTTP request object under the SharePoint and the HDFS protocols. A
// protocol derives from it and changes it by overriding virtual operations only.
//
// An object stands for one target URL and, at any moment, one request. It is a local object of the
// function that makes the exchange, is used by that one thread, and closes at its end what it has
// opened. Its URL lies inside it (about 14 KB in all), so that making one allocates nothing for the
// URL. There is no variable for its state: the three handles are the state.
//
// Nothing here raises an error or shows a message of its own. E_FAIL is the only failing HRESULT;
// the reason is in m_statusCode and m_lastError.
#pragma once

#include <vector>

#include "connection/inline_wide_string.h"
#include "connection/url_components.h"
#include "connection/utf8.h"
#include "platform/text.h"
#include "platform/wininet.h"

namespace velandoc {

class CWinInetConnection {
 public:
  /// `url` may be null. `escape` says that the URL still needs percent-escaping. A URL that does
  /// not escape or parse is not reported: the object has no host then, and the platform refuses
  /// that at OpenRequest or at the first send.
  CWinInetConnection(LPCWSTR url, LPCWSTR verb, bool escape);
  CWinInetConnection(const CWinInetConnection&) = delete;
  CWinInetConnection& operator=(const CWinInetConnection&) = delete;

  // The virtual operations, in the order of the table that derived classes replace entries of.

  /// Closes request, connection and session.
  virtual ~CWinInetConnection();
  virtual WideString GetVerb();
  virtual WideString GetHostName();
  virtual INTERNET_PORT GetPort();
  virtual WideString GetUrlPath();
  virtual WideString GetExtraInfo();
  /// For a protocol's own reading of m_response; does nothing here. To be called after a
  /// ReadResponse that returned true.
  virtual void ProcessResponse();
  /// One send. Non-zero if the request reached the server; otherwise the platform's last error
  /// tells why.
  virtual BOOL SendRequest();
  /// The authentication and certificate loop: S_OK for status 200 and for no other. Blocks while
  /// the platform asks the user. E_FAIL leaves the answer unread; the caller may still read it.
  virtual HRESULT SendWithRetry();
  virtual WideString GetHeaders();
  virtual WideString GetBody();
  /// Reads the whole body into m_response. False if a read failed; m_response then holds what had
  /// come.
  virtual bool ReadResponse();
  /// The same request once more, on a new handle: the first failure of OpenRequest and
  /// SendWithRetry, else S_OK.
  virtual HRESULT Resend();
  /// The null-ended list of the class's accept types, in static memory.
  virtual const LPCWSTR* GetAcceptTypes();

  /// Makes a new request with these headers (lines separated as the caller wrote them) and this
  /// body; null stands for empty. Session and connection are made once and then kept. A request
  /// handle that stands is overwritten and stays open: who wants another request over this object
  /// closes m_hRequest and sets it to null first.
  HRESULT Open(LPCWSTR headers, LPCWSTR body);
  HRESULT OpenRequest();
  /// Null leaves the URL as it is, and so does one that does not escape. One that does not parse
  /// leaves it cleared.
  void SetUrl(LPCWSTR url, bool escape);
  /// Non-zero and the header's value if the answer has it; 0 with `out` untouched if it has not, or
  /// if the value has more than 2047 characters. `infoLevel` is one of HTTP_QUERY_*.
  BOOL QueryHeader(DWORD infoLevel, WideString& out);
  /// The status of the latest answer, 0 if there is none.
  DWORD QueryStatusCode();
  /// The bytes as they came; no character set is implied.
  NarrowString GetResponseText() const { return m_response; }
  /// Sends the head of a PUT that announces `contentLength` bytes. The caller then writes them with
  /// InternetWriteFile, ends them with HttpEndRequestW and asks QueryStatusCode. Non-zero on
  /// success.
  BOOL BeginWrite(DWORD contentLength);

 protected:
  HINTERNET m_hSession = nullptr;
  HINTERNET m_hConnect = nullptr;

 public:
  HINTERNET m_hRequest = nullptr;

 protected:
  UrlComponents m_url;
  // Path and extra info as SetUrl found them. Nothing reads it back: the object name is made of
  // GetUrlPath and GetExtraInfo, which a derived class may override. It is kept for who looks at
  // the object in a debugger.
  InlineWideString m_resourcePath;
  NarrowString m_response;
  WideString m_headers;
  WideString m_body;

 public:
  WideString m_verb;       // may be assigned after construction
  DWORD m_statusCode = 0;  // of the latest query, 0 before any
  // Of the latest send that ended the loop; 0 if that one reached the server. One refusal too many
  // (401, 407) ends a call without touching it.
  DWORD m_lastError = 0;

 protected:
  std::vector<WideString> m_acceptTypes;
  // Points into m_acceptTypes, with a null behind the last. The platform reads it while the request
  // handle is in use.
  std::vector<LPCWSTR> m_acceptTypePointers;

 public:
  DWORD m_requestFlags;  // of HttpOpenRequestW; more may be ORed in after construction

 protected:
  DWORD m_sessionFlags = 0;  // of InternetOpenW
  bool m_streaming = false;  // BeginWrite has sent the head
  BOOL m_usePost = FALSE;  // the verb of BeginWrite; nothing sets it, so a streamed upload is a PUT

 private:
  void CloseHandle(HINTERNET& handle);
};

}  // namespace velandoc
