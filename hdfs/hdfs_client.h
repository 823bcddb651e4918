// CHdfsClient, the coclass HdfsClient: files in HDFS over WebHDFS, through WinINet.
//
// A host sets server, path and user, then calls one method for a file operation. Each call makes a
// connection of its own; nothing of the network outlives a call except the stream that Stream
// returns.
//
// Apartment-threaded, no lock. A call blocks its thread for all its requests; a send that fails may
// put a dialog of the platform's over the active window. The body of a file is never held whole;
// the answers to GetText, Request, Delete, Rename and CreateFolder are.
#pragma once

#include "hdfs/error_reports.h"
#include "hdfs/hdfs_connection.h"
#include "hdfs/request_params.h"
#include "platform/atl/com_class_factory.h"
#include "platform/dispatch_impl.h"
#include "velandoc_idl.h"

namespace velandoc {

/// Every method runs in the funnel (automation_funnel.h), except put_Secure, get_ConnectionError,
/// get_Op, put_Op and GetText, which catch nothing and leave the thread's error object alone.
///
/// A null BSTR argument is empty text, and a text ends at its first NUL. A null result pointer is
/// E_POINTER, tested before anything else, unless told otherwise below.
///
/// A request that fails leaves its status and its reason in ConnectionError and in the thread's
/// error object; E_FAIL is the one result of that.
class CHdfsClient : public IDispatchImpl<IHdfsClient, &IID_IHdfsClient, &LIBID_VelandocLib, 1, 0>,
                    public IRawRequest,
                    public CComObjectRootEx<CComSingleThreadModel>,
                    public CComCoClass<CHdfsClient, &CLSID_HdfsClient>,
                    private HdfsAddress,
                    private ErrorReports {
 public:
  CHdfsClient();

  BEGIN_COM_MAP(CHdfsClient)
  COM_INTERFACE_ENTRY(IHdfsClient)
  COM_INTERFACE_ENTRY(IDispatch)
  COM_INTERFACE_ENTRY(IRawRequest)
  END_COM_MAP()

  // What a setter is given is stored as it comes and looked at by nobody before a request.

  /// 50070 at first, whatever Secure says. `pVal` is not tested for null.
  STDMETHODIMP get_Port(USHORT* pVal) override;
  STDMETHODIMP put_Port(USHORT newVal) override;
  STDMETHODIMP get_ServerName(BSTR* pVal) override;
  STDMETHODIMP put_ServerName(BSTR newVal) override;
  /// Not escaped.
  STDMETHODIMP get_HdfsPath(BSTR* pVal) override;
  STDMETHODIMP put_HdfsPath(BSTR newVal) override;
  /// Scheme, server and port in one: HdfsAddress::ParseBaseUrl. E_INVALIDARG if that says false, in
  /// which case a part may be taken over.
  STDMETHODIMP put_BaseUrl(BSTR newVal) override;
  STDMETHODIMP get_BaseUrl(BSTR* pVal) override;
  STDMETHODIMP put_UserName(BSTR newVal) override;
  STDMETHODIMP get_UserName(BSTR* pVal) override;
  STDMETHODIMP get_Secure(VARIANT_BOOL* pVal) override;
  STDMETHODIMP put_Secure(VARIANT_BOOL newVal) override;
  /// The URL of the file, without an operation.
  STDMETHODIMP get_URL(BSTR* pVal) override;
  /// What is known of the latest request; null with S_OK before the first.
  STDMETHODIMP get_ConnectionError(IConnectionError** pVal) override;
  /// The operation that Download, DownloadPreview, Stream and GetText ask for: "OPEN" at first. The
  /// methods below set it to their own and leave it so, and a download behind them asks for that
  /// until Op is set again. Hosts are built on it.
  STDMETHODIMP get_Op(BSTR* pVal) override;
  STDMETHODIMP put_Op(BSTR newVal) override;
  /// HDFSOptions. Only scHdfsReportSSLCertificateErrors, set at first, is ever looked at.
  STDMETHODIMP get_Options(INT* pVal) override;
  STDMETHODIMP put_Options(INT newVal) override;

  // Bodies. What fails leaves no local file and no result.

  /// Into `LocalPath`, or into a file of MakeLocalPath. E_INVALIDARG for a path together with
  /// `RandomName`, E_ACCESSDENIED if the file can't be made or no name is to be had, E_FAIL for any
  /// failure behind that. `SavedPath` may be null.
  STDMETHODIMP Download(VARIANT_BOOL RandomName, BSTR LocalPath, BSTR* SavedPath) override;
  /// The bytes EF BB BF and the first lines (CopyPreviewLines) into a temporary file of a name of
  /// its own. The three bytes are there whatever the file's coding is. Results as Download; a
  /// broken transfer is told in ConnectionError only.
  STDMETHODIMP DownloadPreview(LONG NumberOfLines, BSTR* SavedPath) override;
  /// A CHdfsIStreamOut over the body, which owns the connection.
  STDMETHODIMP Stream(IStream** pVal) override;
  /// The body as UTF-8, up to its first NUL.
  STDMETHODIMP GetText(BSTR* Text) override;
  /// IRawRequest: GET of any URL, read as GetText. Of the client's properties only the certificate
  /// option plays a part.
  STDMETHODIMP Request(BSTR URL, BSTR* Data) override;

  /// Whether a WebHDFS server answers at `URL`. S_OK with the answer; S_FALSE with FALSE for a URL
  /// that is none. `UserName` is a BSTR, which is kept, or VT_EMPTY; E_INVALIDARG for any other
  /// type, an argument left out among them, and for a null `URL`. Scheme, server, port and Op stay
  /// changed.
  STDMETHODIMP VerifyServer(BSTR URL, VARIANT UserName, VARIANT_BOOL* bRet) override;
  /// Sends a local file (BSTR) or an object's IStream, from the position that it has. E_INVALIDARG
  /// for permissions that are not three octal digits, E_NOINTERFACE for what is no source, the
  /// system's failure for a file that can't be opened. A success leaves the first answer, a 307,
  /// in ConnectionError. Lengths of 4 GiB and more are announced without their high half, and a
  /// stream without a length as 0.
  STDMETHODIMP Upload(VARIANT FileNameOrStream, VARIANT_BOOL OverwriteFlag,
                      BSTR OctalPermissions) override;

  // S_OK with TRUE if the server's answer holds "true", anywhere; S_OK with FALSE if it holds none.
  // The pointers may be null. A failed result writes the debugger line.

  STDMETHODIMP Delete(VARIANT_BOOL Recursive, VARIANT_BOOL* Success) override;
  STDMETHODIMP Rename(BSTR NewName, VARIANT_BOOL* Succes) override;
  /// E_INVALIDARG, with `Success` untouched, for permissions that are not three octal digits.
  STDMETHODIMP CreateFolder(BSTR OctalPermissions, VARIANT_BOOL* Success) override;

 protected:
  ~CHdfsClient() = default;

 private:
  /// Sends the request of `connection` and reads its body into the sink, if there is one. Every
  /// request but the second one of Upload goes out through here.
  HRESULT RunRequest(CHdfsConnection& connection);
  /// The whole body as text, raises if there is no memory for it.
  HRESULT ReadText(LPCWSTR url, BSTR* text);
  /// Sends a request of `verb` whose answer says whether something was done.
  HRESULT RunChange(LPCWSTR verb, const WideString& url, VARIANT_BOOL* success);
  /// Sets Op through the interface.
  void SelectOp(LPCWSTR op);
  /// The first request of an upload: S_OK or a failure, and where the body goes; empty if nowhere.
  HRESULT AskWhereToUpload(const WideString& url, WideString& location);
  /// The second one. False if the server did not take all of it.
  bool SendUpload(const WideString& location, IStream& source);

  LONG m_options = scHdfsReportSSLCertificateErrors;
};

}  // namespace velandoc
