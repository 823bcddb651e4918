#include "platform/mfc/cmd_target.h"

const CRuntimeClass CCmdTarget::classCCmdTarget = {"CCmdTarget", nullptr};

const CRuntimeClass* CCmdTarget::GetRuntimeClass() const { return &classCCmdTarget; }

bool CCmdTarget::IsKindOf(const CRuntimeClass& wanted) const {
  const CRuntimeClass* own = GetRuntimeClass();
  while (own != nullptr && own != &wanted) own = own->m_pBaseClass;
  return own != nullptr;
}

const AFX_MSGMAP* CCmdTarget::GetMessageMap() const {
  static constexpr AFX_MSGMAP kEmpty{};
  return &kEmpty;
}
