// CClient: what is known of the document.
#include <cmath>

#include "document/client.h"
#include "document/file_time.h"
#include "platform/mfc/module_state.h"
#include "platform/owners.h"
#include "platform/results.h"

namespace velandoc {
namespace {

constexpr LPCOLESTR kTimeLastModified = OLESTR("vti_timelastmodified");

}  // namespace

STDMETHODIMP CClient::get_URL(BSTR* pVal) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  return CopyText(m_documentUrl, pVal);
}

STDMETHODIMP CClient::get_WebURL(BSTR* pVal) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  return CopyText(m_webUrl, pVal);
}

STDMETHODIMP CClient::get_ListID(BSTR* pVal) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  return CopyText(m_listId, pVal);
}

STDMETHODIMP CClient::get_ContentTypeID(BSTR* pVal) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  return CopyText(m_contentTypeId, pVal);
}

STDMETHODIMP CClient::get_DocID(BSTR* pVal) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  return CopyText(m_docId, pVal);
}

STDMETHODIMP CClient::get_FrontPageMetaInfo(BSTR MetaTag, VARIANT* pVal) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  if (pVal == nullptr) return E_POINTER;
  if (!IsDocumentOpen()) return E_FAIL;
  m_metaInfo.GetVariantValue(MetaTag != nullptr ? MetaTag : OLESTR(""), *pVal);
  return S_OK;
}

bool CClient::ReadDate(LPCWSTR key, DATE& date) {
  Variant value;
  get_FrontPageMetaInfo(Bstr(key).Get(), &value.Get());
  if (value.Get().vt != VT_DATE) return false;
  date = value.Get().date;
  return true;
}

STDMETHODIMP CClient::get_TimeLastModified(LONGLONG* pVal) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  if (pVal == nullptr) return E_POINTER;
  if (!IsDocumentOpen()) return E_FAIL;
  DATE modified = 0;
  if (!ReadDate(kTimeLastModified, modified)) return E_FAIL;
  *pVal = FileTimeOfDate(modified);
  return S_OK;
}

STDMETHODIMP CClient::get_ModifiedTimeUTCOA(DOUBLE* pVal) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  if (pVal == nullptr) return E_POINTER;
  if (!IsDocumentOpen()) return E_FAIL;
  DATE modified = 0;
  if (!ReadDate(kTimeLastModified, modified)) return E_FAIL;
  // Not MirrorDate: that one leaves the last half second before the epoch as it is.
  if (!(modified >= 0.0)) {
    const double day = std::ceil(modified);
    modified = day - (modified - day);
  }
  *pVal = modified;
  return S_OK;
}

}  // namespace velandoc
