// CClient: who holds the document and since when, and the three operations that change it.
#include "document/client.h"
#include "document/file_time.h"
#include "platform/mfc/module_state.h"
#include "platform/owners.h"
#include "platform/results.h"
#include "soap/check_out.h"

namespace velandoc {
namespace {

constexpr LPCOLESTR kTimeCheckedOut = OLESTR("vti_sourcecontroltimecheckedout");
constexpr LPCOLESTR kTimeLastModified = OLESTR("vti_timelastmodified");
constexpr LPCOLESTR kTimeCreated = OLESTR("vti_timecreated");

enum CheckOutStatus : INT {
  kNoDocument = -1,
  kNotCheckedOut = 0,
  kCheckedOutToCaller = 1,
  kCheckedOutToAnother = 2,
};

}  // namespace

STDMETHODIMP CClient::CheckOut(VARIANT_BOOL* Success) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  if (Success == nullptr) return E_POINTER;
  *Success = AutomationBool(CheckOutFile(m_documentUrl.c_str()));
  return S_OK;
}

STDMETHODIMP CClient::CheckIn(BSTR Comment, INT CheckInType, VARIANT_BOOL* Success) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  if (Success == nullptr) return E_POINTER;
  *Success = AutomationBool(CheckInFile(m_documentUrl.c_str(), Comment, CheckInType));
  return S_OK;
}

STDMETHODIMP CClient::UndoCheckOut(INT* RetCode) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  if (RetCode == nullptr) return E_POINTER;
  *RetCode = velandoc::UndoCheckOut(m_documentUrl.c_str());
  return S_OK;
}

WideString CClient::LookupItemAttribute(WideView key) const {
  const auto found = m_itemAttributes.find(key);
  if (found == m_itemAttributes.end()) return {};
  const WideString& value = found->second;
  constexpr WideView kSeparator = OLESTR(";#");
  const std::size_t at = value.find(kSeparator);
  return at == WideString::npos ? value : value.substr(at + kSeparator.size());
}

STDMETHODIMP CClient::get_SharePointCheckoutUser(BSTR* pVal) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  return CopyText(LookupItemAttribute(OLESTR("ows_CheckoutUser")), pVal);
}

STDMETHODIMP CClient::GetCheckOutStatus(INT* Status) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  if (Status == nullptr) return E_POINTER;
  if (!IsDocumentOpen()) {
    *Status = kNoDocument;
    return S_OK;
  }
  Bstr user;
  get_SharePointCheckoutUser(user.Receive());
  if (user.View().empty()) {
    *Status = kNotCheckedOut;
  } else {
    // Display name against display name; the login plays no part.
    *Status = user.View() == m_userName ? kCheckedOutToCaller : kCheckedOutToAnother;
  }
  return S_OK;
}

STDMETHODIMP CClient::get_CheckOutTime(LONGLONG* pVal) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  if (pVal == nullptr) return E_POINTER;
  // Past FrontPageMetaInfo, and so past its test for an open document.
  Variant value;
  if (!m_metaInfo.GetVariantValue(kTimeCheckedOut, value.Get()) || value.Get().vt != VT_DATE) {
    return E_FAIL;
  }
  *pVal = FileTimeOfDate(value.Get().date);
  return S_OK;
}

STDMETHODIMP CClient::get_ModifiedSinceCheckOut(VARIANT_BOOL* pVal) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  if (pVal == nullptr) return E_POINTER;
  if (!IsDocumentOpen()) return E_FAIL;
  DATE checkedOut = 0;
  DATE modified = 0;
  // No tolerance here.
  *pVal = AutomationBool(ReadDate(kTimeCheckedOut, checkedOut) &&
                         ReadDate(kTimeLastModified, modified) &&
                         MirrorDate(modified) > MirrorDate(checkedOut));
  return S_OK;
}

STDMETHODIMP CClient::IsInitialCreation(VARIANT_BOOL* Flag) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  if (Flag == nullptr) return E_POINTER;
  if (!IsDocumentOpen()) return E_FAIL;
  DATE checkedOut = 0;
  DATE created = 0;
  // The dates as they are, not mirrored, and both bounds left out.
  *Flag = AutomationBool(ReadDate(kTimeCheckedOut, checkedOut) && ReadDate(kTimeCreated, created) &&
                         checkedOut + HALF_SECOND > created && created > checkedOut - HALF_SECOND);
  return S_OK;
}

STDMETHODIMP CClient::ShouldAskForCheckIn(VARIANT_BOOL* Flag) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  if (Flag == nullptr) return E_POINTER;
  if (!IsDocumentOpen()) return E_FAIL;
  INT status = kNoDocument;
  VARIANT_BOOL isWanted = VARIANT_FALSE;
  GetCheckOutStatus(&status);
  if (status == kCheckedOutToCaller) {
    get_ModifiedSinceCheckOut(&isWanted);
    if (isWanted == VARIANT_FALSE) IsInitialCreation(&isWanted);
  }
  *Flag = AutomationBool(isWanted != VARIANT_FALSE);
  return S_OK;
}

}  // namespace velandoc
