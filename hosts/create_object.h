// How the hosts come by an object: as registered, and else from the library that belongs to the
// program.
#pragma once

#include "platform/com.h"
#include "platform/text.h"

namespace velandoc {

/// The class that `progId` names; the component's own names are known without registration.
/// CO_E_CLASSSTRING for an unknown name; `clsid` is then untouched.
HRESULT FindClass(const WideString& progId, CLSID& clsid);

/// A new object, with one reference for the caller. A registered class comes first, even if its
/// library is not the one that belongs to this program; a class of the component's that is not
/// registered, or whose registered library is gone, comes from the latter. On failure `*object` is
/// null and the result that of FindClass or of the activation.
HRESULT CreateObject(const WideString& progId, REFIID iid, void** object);

}  // namespace velandoc
