// The table by which a class of MFC says which window messages it handles.
#pragma once

#include <span>

#include "platform/com.h"

class CWnd;

/// The handlers that there are: of WM_SIZE, with the kind of change and the client area's size.
using AFX_PMSG = void (CWnd::*)(UINT, int, int);

struct AFX_MSGMAP_ENTRY {
  UINT nMessage;
  AFX_PMSG pfn = nullptr;
};

/// What a map lacks is looked up in its base's.
struct AFX_MSGMAP {
  const AFX_MSGMAP* base = nullptr;
  std::span<const AFX_MSGMAP_ENTRY> entries;
};
