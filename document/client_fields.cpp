// CClient: the questions about the fields.
#include <algorithm>

#include "document/client.h"
#include "platform/mfc/module_state.h"
#include "platform/results.h"

namespace velandoc {
STDMETHODIMP CClient::HasFields(VARIANT_BOOL* Flag) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  if (Flag == nullptr) return E_POINTER;
  if (!IsDocumentOpen()) return E_FAIL;
  *Flag = AutomationBool(!m_fields.empty());
  return S_OK;
}

STDMETHODIMP CClient::HasUnfilledFields(VARIANT_BOOL* Flag) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  if (Flag == nullptr) return E_POINTER;
  if (!IsDocumentOpen()) return E_FAIL;
  // The whole row counts, columns that no field shows included.
  *Flag = AutomationBool(std::any_of(m_itemAttributes.begin(), m_itemAttributes.end(),
                                     [](const auto& entry) { return entry.second.empty(); }));
  return S_OK;
}

STDMETHODIMP CClient::HasUnfilledRequiredFields(VARIANT_BOOL* Flag) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  if (Flag == nullptr) return E_POINTER;
  if (!IsDocumentOpen()) return E_FAIL;
  // By the bare name, where the row's keys begin with "ows_"; and be the field required or not.
  // Hosts know the answer as it comes out of that.
  *Flag = AutomationBool(
      std::any_of(m_fields.begin(), m_fields.end(), [this](const CFieldRecord& field) {
        const auto found = m_itemAttributes.find(field.m_name);
        return found != m_itemAttributes.end() && found->second.empty();
      }));
  return S_OK;
}

}  // namespace velandoc
