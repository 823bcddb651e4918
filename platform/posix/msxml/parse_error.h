// What get_parseError hands out.
#pragma once

#include "platform/posix/msxml/msxml.h"
#include "platform/posix/msxml/parser.h"

namespace velandoc::dom {

/// An object that tells of the load that `failure` comes from, and does not change with later ones.
/// get_url and get_srcText are empty.
HRESULT GiveParseError(const ParseFailure& failure, IXMLDOMParseError** error);

}  // namespace velandoc::dom
