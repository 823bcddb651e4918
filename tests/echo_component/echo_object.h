// An automation object that shows how a script host calls it and hands out whatever it is asked
// for.
//
//   Sample(name)             method  the VARIANT of that name (variant_samples.h)
//   Describe(...)            method  its arguments as they came, with ", " between them
//   Text                     get, put
//   Item(key)                get with an argument: "item KEY"
//   Optional(a, b, c)        method  needs one argument, takes up to three; describes them
//   Child                    get     a new object
//   Held                     get, put, putref: any VARIANT; how it was put is told by HowPut
//   HowPut                   get     "put" or "putref"
//   LiveObjects              get     how many of these objects there are
//   ReadOnly                 get     "fixed"
//   Fail(number, text, how)  method  fails with that result; how: "rich" through EXCEPINFO (also
//   without a third
//                                    argument), "deferred" the same by its callback, "plain" as
//                                    Invoke's own result
//   IsItself(object)         method  whether the argument is the very object that Sample("unknown")
//   hands out default value                    "echo"
#pragma once

#include "platform/com.h"

namespace velandoc::test {

/// A new object with one reference.
IDispatch* NewEchoObject();
LONG LiveEchoObjects();

}  // namespace velandoc::test
