// The document of a page in a dialog's browser, IHTMLDocument2, and how its script is called.
//
// get_Script hands out the page's script object, a counted IDispatch. A function of the page is
// called by its name and positional arguments:
//
//   GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &id)
//     DISP_E_UNKNOWNNAME if the page has no function of that name. An id is good for the script
//     object that gave it.
//   Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &params, &result, ...)
//     `params` holds the arguments in reverse: rgvarg[cArgs - 1] is the script's first parameter.
//     No argument is named. A parameter for which there is no argument is `undefined` in the
//     script. Callers pass VT_BSTR (the whole text, null as an empty one) and VT_I2.
//     DISP_E_EXCEPTION if the script throws. `result` may be null; it is written only on success.
//
// Who calls reads the member bstrVal of the result whatever its type says. So a document of our own
// making answers a string with VT_BSTR (an empty one too), and every other value, numbers included,
// with VT_EMPTY and a null bstrVal.
//
// A call blocks its thread until the function has returned, an alert box that it opened included.
// Documents and script objects are called on their dialog's thread. They may be held for longer
// than the page lives: once it is gone, or the process that showed it has died, get_Script fails
// with a null pointer, and so do calls to a script object that is still held (E_FAIL).
#pragma once

#include "platform/com.h"

#ifdef _WIN32
// Behind com.h, which includes windows.h.
#include <mshtml.h>
#else
#include "platform/posix/html_document.h"
#endif
