#include "hdfs/connection_error.h"

#include "hdfs/error_texts.h"
#include "hdfs/rich_error.h"
#include "platform/mfc/module_state.h"
#include "platform/out_of_memory.h"
#include "platform/resources.h"

namespace velandoc {

STDMETHODIMP CConnectionError::get_HttpCode(LONG* HttpCode) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  if (HttpCode == nullptr) return E_POINTER;
  *HttpCode = m_httpCode;
  return S_OK;
}

STDMETHODIMP CConnectionError::get_Message(BSTR* Message) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  if (Message == nullptr) return E_POINTER;
  *Message = SysAllocStringLen(m_message.data(), static_cast<UINT>(m_message.size()));
  return *Message != nullptr ? S_OK : E_OUTOFMEMORY;
}

void SetConnectionErrorText(IConnectionError* errorObject, LONG code) {
  auto* error = dynamic_cast<CComObject<CConnectionError>*>(errorObject);
  if (error == nullptr) return;
  RaiseOutOfMemory(
      [&] { error->m_message = code != 0 ? ErrorMessage(code) : LoadModuleString(kReadError); });
}

}  // namespace velandoc
