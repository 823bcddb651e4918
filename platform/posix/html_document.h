// A page's document as far as this home has it: the way to the page's script. The operations that
// MSHTML declares behind get_Script are left out, so the table of a document ends there.
#pragma once

#include "platform/posix/com/com.h"

// An interface has no virtual destructor: its lifetime is its reference count, its binary layout
// COM's.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

DEFINE_GUID(IID_IHTMLDocument, 0x626FC520, 0xA41E, 0x11CF, 0xA7, 0x31, 0x00, 0xA0, 0xC9, 0x08, 0x26,
            0x37);
struct IHTMLDocument : IDispatch {
  virtual HRESULT STDMETHODCALLTYPE get_Script(IDispatch** script) = 0;
};

DEFINE_GUID(IID_IHTMLDocument2, 0x332C4425, 0x26CB, 0x11D0, 0xB4, 0x83, 0x00, 0xC0, 0x4F, 0xD9,
            0x01, 0x19);
struct IHTMLDocument2 : IHTMLDocument {};

#pragma GCC diagnostic pop
