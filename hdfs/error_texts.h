// Error codes in words.
#pragma once

#include "platform/text.h"

namespace velandoc {

/// The system's text of a result, without the line end behind it. A result that has none is
/// "IDispatch error #N" above 0x80040200 and up to 0x8004FFFF, with N counted from 0x80040200, and
/// "Unknown error 0xN" everywhere else. Also good for a plain system error. The last error is lost.
///
/// The rules are those of _com_error::ErrorMessage. It is not called, since the compilers' versions
/// of it do not all ask for a text without inserts.
WideString ErrorMessage(HRESULT hr);

/// The text of `code` in the message table of `module`, with the line end that it has there; empty
/// if there is none.
WideString GetModuleErrorText(DWORD code, HMODULE module);

}  // namespace velandoc
