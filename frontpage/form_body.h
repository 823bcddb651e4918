// The form-like body of a FrontPage request.
#pragma once

#include "frontpage/front_page_handler.h"
#include "platform/text.h"

namespace velandoc {

/// A space becomes "+"; letters and digits of ASCII and - . _ ~ stay; every other UTF-16 unit
/// becomes "%" and its number in lower-case hexadecimal without padding.
///
/// That is no URL encoding, and servers of this protocol want it so: a unit goes out whole and not
/// as the bytes of its UTF-8 (U+00E9 is %e9, U+4E2D is %4e2d), and one below 16 has one digit.
WideString EncodeFormValue(WideView text);

/// "name=value" for each of the handler's parameters, in order, with "&" between. An empty value
/// gives "name=".
WideString BuildRequestBody(const CFrontPageHandler& handler);

}  // namespace velandoc
