// Programs for Windows include <initguid.h> to get the identifiers' definitions; on Linux every
// header has them.
#pragma once
