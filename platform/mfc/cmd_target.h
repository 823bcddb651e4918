// The base of everything that handles messages: its class by name at run time, and its message map.
#pragma once

#include "platform/mfc/message_map.h"

/// One exists for each class.
struct CRuntimeClass {
  LPCSTR m_lpszClassName;
  const CRuntimeClass* m_pBaseClass;  // null for the first
};

class CCmdTarget {
 public:
  static const CRuntimeClass classCCmdTarget;

  CCmdTarget() = default;
  CCmdTarget(const CCmdTarget&) = delete;
  CCmdTarget& operator=(const CCmdTarget&) = delete;

  virtual const CRuntimeClass* GetRuntimeClass() const;
  virtual ~CCmdTarget() = default;
  bool IsKindOf(const CRuntimeClass& wanted) const;

 protected:
  virtual const AFX_MSGMAP* GetMessageMap() const;
};
