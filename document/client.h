// CClient, the coclass Client: one document of a SharePoint library.
//
// One call opens it: who is working, where the document lies, which columns it has and what its row
// holds. Everything else answers from what that call learnt, a snapshot; only the three check-out
// operations go to the server again, and they refresh nothing here.
//
// Apartment-threaded. A call blocks its thread for all its requests, credentials and certificate
// dialogs included. No connection outlives the call that made it.
//
// Nothing is caught here. What the layers below raise (`_com_error` where the DOM fails before an
// answer came or memory ends, std::out_of_range where GetVariantValue says so) leaves the method as
// that exception. For the same reason no method sets the thread's error object.
#pragma once

#include <list>

#include "fields/field_record.h"
#include "fields/row_attributes.h"
#include "frontpage/document_meta.h"
#include "platform/atl/com_class_factory.h"
#include "platform/dispatch_impl.h"
#include "velandoc_idl.h"

struct IHTMLDocument2;

namespace velandoc {

/// Half a second as a part of a day. Dates less than this apart are of one second.
inline constexpr double HALF_SECOND = 1.0 / 172800.0;

/// "A document is open" means below: the server gave it a GUID. A null BSTR argument is empty text,
/// and a text ends at its first NUL. A null result pointer is E_POINTER, tested before anything
/// else, except in the two opening operations, which do not test it.
class CClient : public IDispatchImpl<IClient, &IID_IClient, &LIBID_VelandocLib, 1, 0>,
                public CComObjectRootEx<CComSingleThreadModel>,
                public CComCoClass<CClient, &CLSID_Client> {
 public:
  BEGIN_COM_MAP(CClient)
  COM_INTERFACE_ENTRY(IClient)
  COM_INTERFACE_ENTRY(IDispatch)
  END_COM_MAP()

  /// Opens the document at a path of a WebDAV share. E_FAIL, with `Success` unwritten and the
  /// document before still open, for a path that is none; otherwise as InitFromURL.
  STDMETHODIMP InitFromUNC(BSTR UNCPath, VARIANT_BOOL* Success) override;
  /// Forgets what was open and opens `URLPath`, in seven requests. Always S_OK; `Success` is false
  /// only if the user could not be learnt, and then only URL is set. A document that the server
  /// does not know is a success with an empty DocID.
  STDMETHODIMP InitFromURL(BSTR URLPath, VARIANT_BOOL* Success) override;

  // New BSTRs, empty for what is not known; no document needs to be open.

  /// As it was given.
  STDMETHODIMP get_URL(BSTR* pVal) override;
  /// The document's web, absolute, with a "/" at its end and without a port.
  STDMETHODIMP get_WebURL(BSTR* pVal) override;
  STDMETHODIMP get_ListID(BSTR* pVal) override;
  STDMETHODIMP get_ContentTypeID(BSTR* pVal) override;
  /// The document's GUID in braces.
  STDMETHODIMP get_DocID(BSTR* pVal) override;

  // The operations of soap/check_out.h on URL: S_OK with what they say. No document needs to be
  // open, and nothing that this object answers changes.

  STDMETHODIMP CheckOut(VARIANT_BOOL* Success) override;
  STDMETHODIMP CheckIn(BSTR Comment, INT CheckInType, VARIANT_BOOL* Success) override;
  /// 0 undone, 1 refused, -1 failed.
  STDMETHODIMP UndoCheckOut(INT* RetCode) override;

  /// When the document was checked out, as a FILETIME in one number. E_FAIL if that is not known as
  /// a date.
  STDMETHODIMP get_CheckOutTime(LONGLONG* pVal) override;
  /// -1 no document open, 0 nobody holds it, 1 the caller, 2 somebody else: by the display name, to
  /// the letter.
  STDMETHODIMP GetCheckOutStatus(INT* Status) override;
  /// The display name of who holds the document; empty for nobody.
  STDMETHODIMP get_SharePointCheckoutUser(BSTR* pVal) override;

  // With no document open: E_FAIL, and nothing is written.

  /// False too if one of the two dates is not known.
  STDMETHODIMP get_ModifiedSinceCheckOut(VARIANT_BOOL* pVal) override;
  /// CDocumentMeta::GetVariantValue, with `pVal` VT_EMPTY where that says false. `pVal` is cleared
  /// first, so it must be initialised.
  STDMETHODIMP get_FrontPageMetaInfo(BSTR MetaTag, VARIANT* pVal) override;
  /// As a FILETIME in one number. E_FAIL if it is not known as a date.
  STDMETHODIMP get_TimeLastModified(LONGLONG* pVal) override;
  /// The document was created within HALF_SECOND of its check-out, so the check-out is that of its
  /// first upload.
  STDMETHODIMP IsInitialCreation(VARIANT_BOOL* Flag) override;
  /// The caller holds the document, and changed or created it meanwhile.
  STDMETHODIMP ShouldAskForCheckIn(VARIANT_BOOL* Flag) override;
  /// The same as a date whose scale is linear before the epoch too. E_FAIL as TimeLastModified.
  STDMETHODIMP get_ModifiedTimeUTCOA(DOUBLE* pVal) override;
  /// The row has an attribute with an empty value, be it one of a field or not.
  STDMETHODIMP HasUnfilledFields(VARIANT_BOOL* Flag) override;
  STDMETHODIMP HasFields(VARIANT_BOOL* Flag) override;
  /// The row has an empty attribute whose whole name, "ows_" included, is that of a field. So in
  /// practice false; hosts are built on that.
  STDMETHODIMP HasUnfilledRequiredFields(VARIANT_BOOL* Flag) override;

  /// Shows the fields in a dialog and, when the user says OK, writes them to the server and takes
  /// over what the server then has. Always S_OK; the argument is neither written nor tested. With
  /// no document open the form is empty. Where no dialog can be shown nothing happens.
  ///
  /// The row stays as the open read it, so HasUnfilledFields answers afterwards as before.
  STDMETHODIMP EditFields(VARIANT_BOOL* HasUnfilledFields) override;

  // What EditFields is made of.

  /// The page of fields/form_generator.h.
  WideString BuildFieldsForm() const;
  /// Reads the controls of the page in the order of the fields. True if no required value is
  /// missing. At the first that is, the page's own alert has been shown, and `values` ends with it.
  /// False with empty `values` if there is no document or it has no script. A field whose value the
  /// page can't tell has no place in `values`, and the places of those behind it are one less.
  bool ReadFormValues(IHTMLDocument2* document, std::list<WideString>& values) const;
  /// Writes the values, by place, to the fields' columns, and lays the row that comes back over the
  /// fields. Nothing changes here if none comes back. Values are not escaped (soap/list_items.h).
  void UpdateFields(const std::list<WideString>& values);

  // For hosts made of the component's own code. Valid until the next open or the end.

  const CDocumentMeta& MetaInfo() const { return m_metaInfo; }
  const FieldList& Fields() const { return m_fields; }
  const RowAttributes& ItemAttributes() const { return m_itemAttributes; }
  const WideString& UserLogin() const { return m_userLogin; }
  /// The display name.
  const WideString& UserName() const { return m_userName; }
  /// Server-relative, as the server gave it.
  const WideString& WebPath() const { return m_webPath; }

 protected:
  ~CClient() = default;

 private:
  void ResetSession();
  HRESULT OpenDocument(LPCWSTR url);
  void ReadColumnsAndRow();
  bool IsDocumentOpen() const { return !m_docId.empty(); }
  /// The part behind the first ";#" of a row's attribute, the whole of one without; empty if there
  /// is none.
  WideString LookupItemAttribute(WideView key) const;
  /// FrontPageMetaInfo of `key` if that is a date; false otherwise.
  bool ReadDate(LPCWSTR key, DATE& date);

  WideString m_documentUrl;  // as given to InitFromURL
  WideString m_webUrl;       // root and m_webPath, ending in "/"
  WideString m_webPath;
  WideString m_userLogin;
  WideString m_userName;  // what the check-out's holder is compared with, not the login
  WideString m_docId;     // empty: no document is open
  WideString m_listId;
  WideString m_contentTypeId;
  CDocumentMeta m_metaInfo;
  RowAttributes m_itemAttributes;
  FieldList m_fields;
};

}  // namespace velandoc
