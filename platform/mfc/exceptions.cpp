#include "platform/mfc/exceptions.h"

BOOL CException::GetErrorMessage(LPWSTR buffer, UINT size, UINT* helpContext) {
  if (helpContext != nullptr) *helpContext = 0;
  if (buffer != nullptr && size > 0) *buffer = 0;
  return FALSE;
}

void CException::Delete() {
  if (m_bAutoDelete) delete this;
}

void AfxThrowOleException(SCODE code) { throw new COleException(code); }
