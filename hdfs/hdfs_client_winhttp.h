// CHdfsClientWinHttp, the coclass HdfsClientWinHttp: files in HDFS over WebHDFS, through WinHTTP.
//
// The interface is that of CHdfsClient, and much of what it does. It is meant for hosts without a
// user at hand: no dialogs, no way around a certificate, and an answer that arrived in good order
// is a success whatever its status. A host that wants to know looks at ConnectionError.HttpCode.
//
// Several of its members do what nobody would make them do today. Hosts have long been built around
// that, so it stays; each such place says so.
//
// Apartment-threaded, no lock. A call blocks its thread for all its requests. The body of a file is
// never held whole; the answers to GetText, VerifyServer, Delete, Rename and CreateFolder are.
#pragma once

#include <string_view>

#include "hdfs/error_reports.h"
#include "hdfs/hdfs_http_connection.h"
#include "hdfs/request_params.h"
#include "platform/atl/com_class_factory.h"
#include "platform/dispatch_impl.h"
#include "velandoc_idl.h"

namespace velandoc {

/// The methods and get_ConnectionError run in the funnel (automation_funnel.h); the other
/// properties are plain reads and writes, which enter no module state, catch nothing and leave the
/// thread's error object alone.
///
/// A null BSTR argument is empty text, and a text ends at its first NUL. A null result pointer is
/// E_POINTER, tested before anything else, unless told otherwise below.
///
/// A request that WinHTTP could not bring to its end is E_FAIL, with the reason in ConnectionError
/// and in the thread's error object. No reason of WinHTTP's is ever known, so the text is always
/// "Unknown connection error with server." unless a refusal's body breaks off.
///
/// Query parameters stay: what Upload, Delete, Rename and CreateFolder send in theirs goes out with
/// every later request of the object too, of whatever operation, in the order of the names. Only a
/// later call that sends a parameter of the same name changes it. URL does not show them.
class CHdfsClientWinHttp
    : public IDispatchImpl<IHdfsClient, &IID_IHdfsClient, &LIBID_VelandocLib, 1, 0>,
      public CComObjectRootEx<CComSingleThreadModel>,
      public CComCoClass<CHdfsClientWinHttp, &CLSID_HdfsClientWinHttp>,
      private ErrorReports {
 public:
  CHdfsClientWinHttp();

  // No IRawRequest.
  BEGIN_COM_MAP(CHdfsClientWinHttp)
  COM_INTERFACE_ENTRY(IHdfsClient)
  COM_INTERFACE_ENTRY(IDispatch)
  END_COM_MAP()

  // What a setter is given is stored as it comes and looked at by nobody before a request. No
  // getter tests its pointer for null.

  /// 50070 at first, whatever Secure says.
  STDMETHODIMP get_Port(USHORT* pVal) override;
  STDMETHODIMP put_Port(USHORT newVal) override;
  STDMETHODIMP get_ServerName(BSTR* pVal) override;
  STDMETHODIMP put_ServerName(BSTR newVal) override;
  /// Not escaped.
  STDMETHODIMP get_HdfsPath(BSTR* pVal) override;
  STDMETHODIMP put_HdfsPath(BSTR newVal) override;
  /// Scheme, server and port in one: HdfsAddress::ParseBaseUrl. S_OK also for a URL that is none;
  /// what was taken over up to there stays.
  STDMETHODIMP put_BaseUrl(BSTR newVal) override;
  STDMETHODIMP get_BaseUrl(BSTR* pVal) override;
  STDMETHODIMP put_UserName(BSTR newVal) override;
  STDMETHODIMP get_UserName(BSTR* pVal) override;
  STDMETHODIMP get_Secure(VARIANT_BOOL* pVal) override;
  STDMETHODIMP put_Secure(VARIANT_BOOL newVal) override;
  /// The URL of the file, without an operation and without parameters.
  STDMETHODIMP get_URL(BSTR* pVal) override;
  /// What is known of the latest request; null with S_OK before the first. The one property that
  /// tests its pointer: E_POINTER for null.
  STDMETHODIMP get_ConnectionError(IConnectionError** pVal) override;
  /// The operation that Download, DownloadPreview, Stream, GetText and VerifyServer ask for: "OPEN"
  /// at first. Upload, Delete, Rename and CreateFolder set it to their own and leave it so.
  STDMETHODIMP get_Op(BSTR* pVal) override;
  STDMETHODIMP put_Op(BSTR newVal) override;
  /// 0 at first. Kept, and of no effect on any request.
  STDMETHODIMP get_Options(INT* pVal) override;
  STDMETHODIMP put_Options(INT newVal) override;

  // Bodies, of answers with any status: the file of a missing path holds the server's refusal.

  /// Into `LocalPath`, or into a file of MakeLocalPath. E_INVALIDARG for a path together with
  /// `RandomName`, E_ACCESSDENIED if the file can't be made or no name is to be had, E_FAIL for a
  /// request that failed, which leaves no file. `SavedPath` may be null.
  STDMETHODIMP Download(VARIANT_BOOL RandomName, BSTR LocalPath, BSTR* SavedPath) override;
  /// The bytes EF BB BF and the first lines (CopyPreviewLines) into a temporary file of a name of
  /// its own. Results as Download; a broken transfer is told in ConnectionError only.
  STDMETHODIMP DownloadPreview(LONG NumberOfLines, BSTR* SavedPath) override;
  /// A CHdfsIStreamOut over the body, which owns the connection.
  STDMETHODIMP Stream(IStream** pVal) override;
  /// The body in the ANSI code page, each chunk up to its first NUL. S_OK always: a request that
  /// failed gives what came of it, which is the empty text if nothing did.
  STDMETHODIMP GetText(BSTR* Text) override;

  /// Whether a WebHDFS server answers as the properties stand. S_OK with the answer. The arguments
  /// are tested and have no effect: BaseUrl, UserName and Op ("GETHOMEDIRECTORY") are to be set
  /// before, and stay as they are. E_INVALIDARG for a null `URL` and for a `UserName` that is
  /// neither a BSTR nor VT_EMPTY nor left out.
  STDMETHODIMP VerifyServer(BSTR URL, VARIANT UserName, VARIANT_BOOL* bRet) override;
  /// Sends a local file (BSTR) or an object's IStream, from the position that it has. E_INVALIDARG,
  /// E_NOINTERFACE and the system's failures as CHdfsClient. S_OK with nothing sent if the first
  /// answer is no 307: HttpCode of ConnectionError is then not 307. Lengths of 4 GiB and more are
  /// announced without their high half, and a stream without a length as 0.
  STDMETHODIMP Upload(VARIANT FileNameOrStream, VARIANT_BOOL OverwriteFlag,
                      BSTR OctalPermissions) override;

  // The pointers may be null. A failed result writes the debugger line.

  /// S_OK with TRUE if the answer holds "true", anywhere; S_OK with FALSE if it holds none.
  STDMETHODIMP Delete(VARIANT_BOOL Recursive, VARIANT_BOOL* Success) override;
  /// S_OK with FALSE if the answer begins with "true", and with TRUE for every other: the usual
  /// {"boolean":true}, but {"boolean":false} and a refusal as well. E_INVALIDARG for a null
  /// `NewName`.
  STDMETHODIMP Rename(BSTR NewName, VARIANT_BOOL* Succes) override;
  /// As Delete, but a GET, which servers refuse for this operation. The permissions are sent also
  /// if they are empty. E_INVALIDARG, with FALSE, for others that are not three octal digits.
  STDMETHODIMP CreateFolder(BSTR OctalPermissions, VARIANT_BOOL* Success) override;

 protected:
  ~CHdfsClientWinHttp() = default;

 private:
  /// The URL of the next request, with every query parameter so far.
  WideString RequestUrl() const;
  /// Sends the request of `connection` and reads the body unless m_keepBody is set. Every request
  /// but the second one of Upload goes out through here. S_OK whatever the status.
  HRESULT RunRequest(CHdfsHttpConnection& connection);
  /// Sets Op through the interface.
  void SelectOp(LPCWSTR op);
  /// Sends a request of `verb` for Op. `isDone` says of the answer whether something was done.
  HRESULT RunChange(LPCWSTR verb, bool (*isDone)(std::string_view body), VARIANT_BOOL* success);
  /// The first request of an upload: S_OK or a failure, and where the body goes; empty if nowhere.
  HRESULT AskWhereToUpload(WideString& location);
  /// The second one. False if the server did not take all of it, which is then told.
  bool SendUpload(const WideString& location, IStream& source);

  HdfsRequestParams m_params;
  LONG m_options = 0;
};

}  // namespace velandoc
