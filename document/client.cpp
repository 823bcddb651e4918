#include "document/client.h"

#include "connection/url_components.h"
#include "document/unc_path.h"
#include "frontpage/current_user.h"
#include "frontpage/resolve_document.h"
#include "platform/mfc/module_state.h"
#include "platform/owners.h"
#include "platform/results.h"
#include "soap/list_fields.h"
#include "soap/list_items.h"
#include "soap/soap_namespaces.h"

namespace velandoc {
namespace {

LPCWSTR TextOrEmpty(BSTR text) { return text != nullptr ? text : OLESTR(""); }

}  // namespace

STDMETHODIMP CClient::InitFromUNC(BSTR UNCPath, VARIANT_BOOL* Success) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  const WideString url = UncToHttpUrl(TextOrEmpty(UNCPath));
  // A path that is no URL's leaves the session alone, where a URL that cannot be opened ends it.
  if (url.empty()) return E_FAIL;
  return InitFromURL(Bstr(url).Get(), Success);
}

STDMETHODIMP CClient::InitFromURL(BSTR URLPath, VARIANT_BOOL* Success) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  *Success = AutomationBool(OpenDocument(TextOrEmpty(URLPath)) == S_OK);
  return S_OK;
}

void CClient::ResetSession() {
  m_documentUrl.clear();
  m_webUrl.clear();
  m_webPath.clear();
  m_userLogin.clear();
  m_userName.clear();
  m_docId.clear();
  m_listId.clear();
  m_contentTypeId.clear();
  m_metaInfo = CDocumentMeta();
  m_itemAttributes.clear();
  m_fields.clear();
}

HRESULT CClient::OpenDocument(LPCWSTR url) {
  ResetSession();
  m_documentUrl = url;
  const WideString root = GetServerRoot(url);

  Bstr login;
  Bstr name;
  if (!GetCurrentUser(root.c_str(), &login, &name)) return E_FAIL;
  m_userLogin = login.Text();
  m_userName = name.Text();

  // A document that is not found is no failure: the host sees an empty DocID.
  Bstr docId;
  Bstr listId;
  Bstr contentTypeId;
  Bstr webPath;
  ResolveDocument(url, &docId, &listId, &contentTypeId, &webPath, &m_metaInfo);
  m_docId = docId.Text();
  m_listId = listId.Text();
  m_contentTypeId = contentTypeId.Text();
  m_webPath = webPath.Text();

  m_webUrl = root + m_webPath;
  if (!m_webUrl.empty() && m_webUrl.back() != OLESTR('/')) m_webUrl += OLESTR('/');
  ReadColumnsAndRow();
  return S_OK;
}

/// Asks even where the document was not found and the ids are empty: servers see the same seven
/// requests whatever they answer.
void CClient::ReadColumnsAndRow() {
  // The web's URL ends in "/" and the service's path begins with one. Servers have always been
  // asked with the doubled slash.
  CSoapConnection connection(AppendListsPath(m_webUrl).c_str());
  if (GetListContentType(connection, m_listId.c_str(), m_contentTypeId.c_str(), m_fields)) {
    GetListItems(connection, m_docId.c_str(), m_listId.c_str(), {}, m_itemAttributes);
  }
  OverlayRow(m_itemAttributes, m_fields);
}

}  // namespace velandoc
